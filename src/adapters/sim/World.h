// The scripted world: one object that owns every port, on virtual time. A test makes its own, scripts what the world
// does, hands `host()` to the program and then asks what a user, a file or the next program sees.
#pragma once

#include <optional>

#include "adapters/sim/Application.h"
#include "adapters/sim/CommandBars.h"
#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Faults.h"
#include "adapters/sim/FileDialog.h"
#include "adapters/sim/FileSystem.h"
#include "adapters/sim/InputHooks.h"
#include "adapters/sim/KsHook.h"
#include "adapters/sim/KsLib.h"
#include "adapters/sim/KsOptimize.h"
#include "adapters/sim/MessageBox.h"
#include "adapters/sim/Monitors.h"
#include "adapters/sim/Power.h"
#include "adapters/sim/Processes.h"
#include "adapters/sim/RecSystemAudio.h"
#include "adapters/sim/SettingsStore.h"
#include "adapters/sim/ShellFolders.h"
#include "adapters/sim/Trace.h"
#include "adapters/sim/Transcript.h"
#include "adapters/sim/Windows.h"
#include "host/Host.h"
#include "ui/HeadlessPresenter.h"

namespace kestrum::sim {

/// Where things lie on a desk.
struct Places {
    String installFolder, home, temp, appData, localData;
};

/// Ports that take the place of the world's own, by name; the others stay the world's.
struct Instead {
    host::IApplication* app = nullptr;
    host::IEventLoop* loop = nullptr;
    host::IFileSystem* fs = nullptr;
    host::IInputHooks* hooks = nullptr;
    host::IWindows* windows = nullptr;
    host::IProcesses* processes = nullptr;
    host::IShellFolders* shell = nullptr;
    host::IMessageBox* box = nullptr;
    host::IFormPresenter* presenter = nullptr;
    host::IKsLib* ksLib = nullptr;
    host::IKsOptimize* ksOptimize = nullptr;
    host::ITrace* trace = nullptr;
    std::optional<String> installFolder = std::nullopt;
};

class World {
  public:
    /// A quiet desk: an empty home folder, temp and data folders, an install folder without files, one monitor of
    /// 1920 by 1080, a microphone, no presentation. `style` is how its paths and program names are written.
    explicit World(PathStyle style = PathStyle::Linux);
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    host::Host& host() { return m_host; }
    /// The world's ports with some exchanged, for a test that brings real ones. The world and they outlive the answer.
    host::Host HostWith(const Instead& instead);

    const Places places;

    Faults faults;
    Transcript transcript;
    EventLoop loop;
    FileSystem fs;
    Monitors monitors{transcript};
    Application app{faults, transcript, monitors};
    /// For a session on Office; one on another host is made without.
    CommandBars commandBars{faults};
    InputHooks hooks{faults, loop};
    Windows windows{loop, transcript};
    Processes processes;
    ShellFolders shell{places.temp, places.appData, places.localData};
    SettingsStore settings{faults};
    Power power;
    MessageBox box{loop, transcript};
    FileDialog fileDialog;
    ui::HeadlessPresenter presenter{loop};
    KsLib ksLib{faults, transcript, loop, fs};
    KsOptimize ksOptimize{faults, transcript, loop, fs};
    KsHook ksHook{faults, transcript, windows};
    RecSystemAudio recSystemAudio{transcript};
    Trace trace;

    /// What the program does when the user clicks one of its commands ("rec", "mnuMP4" ...); the test connects it.
    std::function<void(const String& id)> onCommand;

    /// The places of a Linux desk.
    static constexpr char16_t kInstallFolder[] = u"/opt/kestrum";
    static constexpr char16_t kHome[] = u"/home/anna";

  private:
    host::IFmtConvert m_fmtConvert;
    host::IKsEditorControl m_ksEditorControl;
    host::IScip2 m_scip2;
    host::Host m_host;
};

}  // namespace kestrum::sim
