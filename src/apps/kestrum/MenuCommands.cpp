#include "apps/kestrum/MenuCommands.h"

#include "addin/Busy.h"
#include "apps/commandline/Preflight.h"
#include "apps/commandline/Texts.h"
#include "host/ResumeNext.h"
#include "support/modGlobal.h"
#include "support/modMsgBox.h"

namespace kestrum::app {
namespace {

constexpr std::int32_t kLookMs = 500;
/// What changes seldom and costs more (settings, monitors) is looked at every so many looks.
constexpr std::int32_t kSeldom = 10;

/// Why a recording of the active presentation could not be kept; nothing if it can, or if it has never been saved: the
/// command itself has a word for that.
std::optional<String> CheckActiveDeck(const addin::Context& c) {
    String deck;
    host::ResumeNext{c.host.trace}.Set(deck, [&] { return c.host.app.ActivePresentation()->FullName(); });
    if (modGlobal::FolderOf(c, deck).empty()) return std::nullopt;
    if (auto sentence = CheckDeck(c, deck)) return sentence;
    return CheckSound(c);
}

}  // namespace

MenuCommands::MenuCommands(ScreenProgram& program, Session& session, impress::ImpressOffice& office)
    : m_program(program), m_session(session), m_office(office), m_menu(office.Menu()) {
    if (!m_menu) return;
    Look();
    m_look = session.c.host.loop.StartTimer(u"menu", kLookMs, host::TimerReentry::Entered, [this] { Look(); });
    m_menu->OnPick([this](const String& id) { Pick(id); });
}

void MenuCommands::Pick(const String& id) {
    if (m_running || m_session.addIn.CommandBusy) return;
    {
        const addin::Busy running(m_running);
        Show();
        Run(id);
    }
    Show();
}

/// In a Wayland session the user's own Impress need not be an X client.
std::optional<String> MenuCommands::CheckShowIsFound() {
    bool isFound = true;
    if (m_program.IsWayland()) {
        host::ResumeNext{m_session.c.host.trace}.Set(isFound, [this] { return m_office.HasXWindows(); });
    }
    if (isFound) return std::nullopt;
    return Sentence(
        m_session.c, u"msgWaylandOffice",
        u"This Impress runs as a Wayland program, so its slide show cannot be found on the screen. Close it "
        u"and record with \"kestrum record\", or start Impress with GDK_BACKEND=x11.");
}

std::optional<String> MenuCommands::RefusalOf(const String& id) {
    if (id != u"rec") return std::nullopt;
    if (auto sentence = CheckActiveDeck(m_session.c)) return sentence;
    if (auto sentence = CheckShowIsFound()) return sentence;
    return m_program.AskForScreen();
}

void MenuCommands::Run(const String& id) {
    if (const auto refusal = RefusalOf(id)) return modMsgBox::MsgBox(m_session.c, *refusal);
    try {
        m_session.addIn.NotesButton(id);
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(m_session.c, error.Description());
    }
}

void MenuCommands::Look() {
    if (m_looks++ % kSeldom == 0) {
        m_otherRecording = CheckNoRecording(m_session.c).has_value();
        m_resolutionOnOffer = m_session.addIn.GetChangeResVisible();
    }
    Show();
}

void MenuCommands::Show() {
    if (!m_menu) return;
    const bool busy = m_running || m_session.addIn.CommandBusy;
    const bool enabled = !busy && !m_session.recording.g_Recording && !m_otherRecording;
    std::map<String, impress::CommandState> states;
    for (const StringView id : dsrImagePowerPoint::CommandIds()) {
        states[String(id)] = {enabled, id != u"mnuChangeRes" || m_resolutionOnOffer};
    }
    m_menu->Show(states);
}

}  // namespace kestrum::app
