// A folder of this command alone, below the temporary folder, for as long as the object lives.
#pragma once

#include "apps/commandline/Texts.h"
#include "host/Error.h"

namespace kestrum::app {

class Scratch {
  public:
    /// Throws host::Error with a sentence for the user if the folder cannot be made.
    Scratch(const support::Context& c, const String& prefix) : m_c(c) {
        do {
            m_path = modGlobal::Join(c, c.host.shell.Environment(u"temp"), prefix + c.host.fs.TemporaryName());
        } while (c.host.fs.FolderExists(m_path) || c.host.fs.FileExists(m_path));
        if (!modGlobal::MakeFolderTree(c, m_path))
            throw host::Error(host::ErrorNumber::FileNotFound, u"scratch",
                              Sentence(c, u"msgNoScratch", u"The folder \"%s1\" cannot be made.", {m_path}));
    }
    ~Scratch() { modGlobal::DeleteFolder(m_c, m_path); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const String& Path() const { return m_path; }
    String File(StringView name) const { return modGlobal::Join(m_c, m_path, name); }

  private:
    const support::Context& m_c;
    String m_path;
};

}  // namespace kestrum::app
