#include "apps/kestrum/BatchProgram.h"

namespace kestrum::app {

BatchProgram::BatchProgram(Console& console)
    : m_box(console),
      m_presenter(m_screen, m_loop, console),
      m_host{m_office,
             m_loop,
             m_ground.fs,
             m_monitors,
             m_hooks,
             m_windows,
             m_ground.processes,
             m_ground.shell,
             m_ground.settings,
             m_power,
             m_box,
             m_fileDialog,
             m_presenter,
             m_media.ksLib,
             m_media.ksOptimize,
             m_ksHook,
             m_ground.fmtConvert,
             m_media.recSystemAudio,
             m_ground.ksEditorControl,
             m_ground.scip2,
             m_ground.trace,
             InstallFolder()} {}

const String& BatchProgram::LastMessage() const {
    return m_presenter.LastMessage().empty() ? m_box.LastMessage() : m_presenter.LastMessage();
}

}  // namespace kestrum::app
