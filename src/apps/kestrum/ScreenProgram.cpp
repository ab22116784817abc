#include "apps/kestrum/ScreenProgram.h"

#include "adapters/linux/SystemChecks.h"

namespace kestrum::app {
namespace {

[[noreturn]] void Refuse(const String& sentence) {
    throw host::Error(host::ErrorNumber::Automation, u"screen", sentence);
}

/// Gives `unattended` back; throws the sentence if the screen of this session cannot be recorded. Asked before the
/// toolkit starts, which would end the process without a display.
bool CheckScreen(bool unattended) {
    namespace checks = platform::SystemChecks;
    const bool isWayland = checks::SessionType() == checks::Session::Wayland;
    if (isWayland && !checks::HasScreenCast()) {
        Refuse(
            u"This is a Wayland session whose desktop gives no program the picture of the screen (it has no desktop "
            u"portal with screen casts); log in to an X11 session and record there.");
    }
    if (isWayland && !checks::CanOpenDisplay()) {
        Refuse(
            u"This is a Wayland session without XWayland, which Impress and the recorder need; switch it on, or log in "
            u"to an X11 session and record there.");
    }
    if (!checks::CanOpenDisplay()) {
        Refuse(u"The display cannot be opened; start the recorder from a graphical X11 session.");
    }
    return unattended;
}

}  // namespace

ScreenProgram::ScreenProgram(Console& console, bool unattended)
    : m_unattended(CheckScreen(unattended)),
      m_isWayland(platform::SystemChecks::SessionType() == platform::SystemChecks::Session::Wayland),
      m_application(m_argumentCount, m_arguments),
      m_box(m_loop, u"Kestrum for PowerPoint"),
      m_answers(console),
      m_presenter(m_screen, m_loop, console) {}

host::Host ScreenProgram::Ports(host::IApplication& office) {
    host::IMessageBox& box = m_unattended ? static_cast<host::IMessageBox&>(m_answers) : m_box;
    host::IFormPresenter& presenter = m_unattended ? static_cast<host::IFormPresenter&>(m_presenter) : m_screen;
    return {office,
            m_loop,
            m_ground.fs,
            m_monitors,
            m_hooks,
            m_windows,
            m_ground.processes,
            m_ground.shell,
            m_ground.settings,
            m_power,
            box,
            m_fileDialog,
            presenter,
            m_media.ksLib,
            m_media.ksOptimize,
            m_ksHook,
            m_ground.fmtConvert,
            m_media.recSystemAudio,
            m_ground.ksEditorControl,
            m_ground.scip2,
            m_ground.trace,
            InstallFolder()};
}

void ScreenProgram::LeaveQuestions() {
    constexpr std::int32_t kLookMs = 200;
    const auto leave = [this] {
        m_fileDialog.Leave();
        m_box.Leave();
        m_screen.LeaveDialogs();
        m_media.ksLib.LeaveQuestion();
    };
    leave();
    m_leaving = m_loop.StartTimer(u"leave questions", kLookMs, host::TimerReentry::Entered, leave);
}

const String& ScreenProgram::LastMessage() const {
    return m_presenter.LastMessage().empty() ? m_answers.LastMessage() : m_presenter.LastMessage();
}

}  // namespace kestrum::app
