// What holds for the time of a command: it may count as busy, and its scratch folder is gone on every way out.
#pragma once

#include "addin/Context.h"
#include "project/modProject.h"

namespace kestrum::addin {

class CommandScope {
  public:
    /// Sets `busy`, if there is one, until the command ends.
    CommandScope(const Context& c, bool* busy) : m_c(c), m_busy(busy) {
        if (m_busy) *m_busy = true;
    }
    ~CommandScope() {
        DeleteFolder();
        if (m_busy) *m_busy = false;
    }
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

    /// The scratch folder of the session is this command's from now on. A command or a recording that begins while this
    /// one is open gets another one, and must not lose it when this one ends.
    void OwnFolder() { m_folder = m_c.support.workFolder; }
    void DeleteFolder() {
        if (!m_folder.empty()) modProject::DeleteWorkFolder(m_c, m_folder);
    }

  private:
    const Context& m_c;
    bool* m_busy;
    String m_folder;
};

}  // namespace kestrum::addin
