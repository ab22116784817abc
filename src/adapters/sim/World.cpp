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

}  // namespace

World::World(PathStyle style)
    : places(PlacesOf(style)),
      fs(faults, loop, style),
      processes(faults, loop, transcript, style),
      m_host{app,
             loop,
             fs,
             monitors,
             hooks,
             windows,
             processes,
             shell,
             settings,
             power,
             box,
             fileDialog,
             presenter,
             ksLib,
             ksOptimize,
             ksHook,
             m_fmtConvert,
             recSystemAudio,
             m_ksEditorControl,
             m_scip2,
             trace,
             places.installFolder} {
    for (const String& folder : {places.home, places.appData, places.localData, places.temp, places.installFolder}) {
        fs.PutFolder(folder);
    }
}

}  // namespace kestrum::sim
