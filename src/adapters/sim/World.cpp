#include "adapters/sim/World.h"

namespace kestrum::sim {

namespace {

Places PlacesOf(PathStyle style) {
    if (style == PathStyle::Linux)
        return {World::kInstallFolder, World::kHome, u"/tmp/user", u"/home/anna/.local/share",
                u"/home/anna/.local/share"};
    return {u"C:\\Program Files\\Kestrum", u"C:\\Users\\Anna", u"C:\\Users\\Anna\\AppData\\Local\\Temp",
            u"C:\\Users\\Anna\\AppData\\Roaming", u"C:\\Users\\Anna\\AppData\\Local"};
}

template <class Port>
Port& Either(Port* other, Port& own) {
    return other != nullptr ? *other : own;
}

}  // namespace

World::World(PathStyle style)
    : places(PlacesOf(style)),
      fs(faults, loop, style),
      processes(faults, loop, transcript, style),
      m_host(HostWith({})) {
    for (const String& folder : {places.home, places.appData, places.localData, places.temp, places.installFolder}) {
        fs.PutFolder(folder);
    }
}

host::Host World::HostWith(const Instead& instead) {
    return {Either<host::IApplication>(instead.app, app),
            Either<host::IEventLoop>(instead.loop, loop),
            Either<host::IFileSystem>(instead.fs, fs),
            monitors,
            Either<host::IInputHooks>(instead.hooks, hooks),
            Either<host::IWindows>(instead.windows, windows),
            Either<host::IProcesses>(instead.processes, processes),
            Either<host::IShellFolders>(instead.shell, shell),
            settings,
            power,
            Either<host::IMessageBox>(instead.box, box),
            fileDialog,
            Either<host::IFormPresenter>(instead.presenter, presenter),
            Either<host::IKsLib>(instead.ksLib, ksLib),
            Either<host::IKsOptimize>(instead.ksOptimize, ksOptimize),
            ksHook,
            m_fmtConvert,
            recSystemAudio,
            m_ksEditorControl,
            m_scip2,
            Either<host::ITrace>(instead.trace, trace),
            instead.installFolder.value_or(places.installFolder)};
}

}  // namespace kestrum::sim
