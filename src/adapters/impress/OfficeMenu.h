// The commands that Kestrum's extension puts into an office's menu and toolbar: whoever drives the office takes them
// over, hears what its user picks, and says what each command looks like. An office has one such driver at a time; it
// is noticed when the driver has died.
#pragma once

#include <functional>
#include <map>
#include <memory>

#include "host/IEventLoop.h"

namespace kestrum::impress {

class OfficeModel;

/// What a command looks like.
struct CommandState {
    bool enabled = true;
    bool visible = true;
    bool operator==(const CommandState&) const = default;
};

class OfficeMenu {
  public:
    /// Takes the commands over, all disabled; null if the office has no extension of ours. Raises host::Error with a
    /// sentence if another program has them.
    static std::unique_ptr<OfficeMenu> TakeOver(const std::shared_ptr<OfficeModel>& office, host::IEventLoop& loop);
    /// Gives the commands back.
    ~OfficeMenu();
    OfficeMenu(const OfficeMenu&) = delete;
    OfficeMenu& operator=(const OfficeMenu&) = delete;

    /// From now on `picked` is called from the loop with the id of each command that is picked, those too that were
    /// picked before. While it runs, the presentation in whose window the command was picked is the active one.
    void OnPick(std::function<void(const String& id)> picked);
    /// Shows these states; a command that was never named stays disabled. Returns at once.
    void Show(const std::map<String, CommandState>& states);

  private:
    struct Shared;
    class Receiver;
    explicit OfficeMenu(std::shared_ptr<Shared> shared);
    static void Deliver(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> m_shared;
};

}  // namespace kestrum::impress
