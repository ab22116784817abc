#include "adapters/sim/World.h"

namespace kestrum::sim {

World::World()
    : m_host{app,
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
             kInstallFolder} {
    for (const char16_t* folder : {u"/home/anna", u"/home/anna/.local/share", u"/tmp/user", u"/opt/kestrum"}) {
        fs.PutFolder(folder);
    }
}

}  // namespace kestrum::sim
