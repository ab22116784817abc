#include "apps/commandline/Unattended.h"

namespace kestrum::app {
namespace {

using host::BoxAnswer;
using host::BoxButtons;

constexpr std::int32_t kWatchMs = 50;

/// The buttons to press on a form, in order, each as soon as it can be pressed.
const std::map<String, std::vector<String>>& Buttons() {
    static const std::map<String, std::vector<String>> kButtons = {
        {u"frmVolSetting", {u"cmdRec"}},
        {u"frmLargeCapSize", {u"cmdContinue"}},
        {u"frmDiffCapSize", {u"cmdContinue"}},
        {u"frmVolMsg", {u"cmdOK"}},
        {u"frmMsgBox", {u"cmdOK"}},
        {u"frmMsgLink", {u"cmdOK"}},
        {u"frmExportMp4", {u"cmdPublish"}},
    };
    return kButtons;
}

/// Labels whose text tells the state of long work, by form.
const std::map<String, String>& StatusLabels() {
    static const std::map<String, String> kLabels = {{u"frmStatus", u"lStatus"}, {u"frmExportMp4", u"txtConvert"}};
    return kLabels;
}

String CaptionOf(ui::Form& form, const String& control) {
    const auto* label = dynamic_cast<ui::CaptionedControl*>(form.FindControl(control));
    return label ? label->Caption() : String();
}

}  // namespace

BoxAnswer UnattendedBox::Show(const String& text, BoxButtons buttons, const String& title) {
    const BoxAnswer answer = AnswerTo(text, buttons, title);
    if (buttons == BoxButtons::Ok) m_lastMessage = text;
    static const std::map<BoxAnswer, String> kWords = {{BoxAnswer::Ok, u"OK"},
                                                       {BoxAnswer::Cancel, u"Cancel"},
                                                       {BoxAnswer::Retry, u"Retry"},
                                                       {BoxAnswer::Yes, u"Yes"},
                                                       {BoxAnswer::No, u"No"}};
    m_console.Notice(text + u" [" + kWords.at(answer) + u"]");
    return answer;
}

BoxAnswer UnattendedBox::AnswerTo(const String& text, BoxButtons buttons, const String& title) const {
    // Asked of each value of a project file that cannot be read: going on would drop it from the file.
    if (title == u"Load project.ksp") return BoxAnswer::Cancel;
    switch (buttons) {
        case BoxButtons::YesNo:
        case BoxButtons::YesNoCancel:
            return m_refused.contains(text) ? BoxAnswer::No : BoxAnswer::Yes;
        case BoxButtons::RetryCancel:
            return BoxAnswer::Cancel;
        case BoxButtons::Ok:
        case BoxButtons::OkCancel:
            break;
    }
    return BoxAnswer::Ok;
}

void NoScreen::ShowModal(ui::Form& form) {
    m_loop.RunUntil([&form] { return !form.IsLoaded(); });
}

UnattendedPresenter::UnattendedPresenter(host::IFormPresenter& screen, host::IEventLoop& loop, Console& console)
    : m_screen(screen), m_loop(loop), m_console(console) {}

void UnattendedPresenter::Show(ui::Form& form) {
    m_screen.Show(form);
    Tell(form);
    WatchForAnswer(form);
}

void UnattendedPresenter::ShowModal(ui::Form& form) {
    Tell(form);
    WatchForAnswer(form);
    m_screen.ShowModal(form);
}

void UnattendedPresenter::Close(ui::Form& form) {
    m_waiting.erase(&form);
    if (m_waiting.empty()) m_timer.reset();
    m_screen.Close(form);
}

void UnattendedPresenter::Refresh(ui::Form& form) {
    m_screen.Refresh(form);
    Tell(form);
}

void UnattendedPresenter::Changed(ui::Form& form) {
    m_screen.Changed(form);
    Tell(form);
}

void UnattendedPresenter::CancelWork() {
    m_cancelled = true;
    const auto waiting = m_waiting;  // a form that is not at work closes
    for (const auto& [form, place] : waiting) {
        if (m_waiting.contains(form) && form->Name() == u"frmExportMp4") Press(*form, u"cmdCancel");
    }
}

void UnattendedPresenter::Tell(ui::Form& form) {
    if (form.Name() == u"frmMsgBox") m_lastMessage = CaptionOf(form, u"lMsg");
    const auto label = StatusLabels().find(form.Name());
    if (label != StatusLabels().end()) m_console.Progress(CaptionOf(form, label->second));
}

void UnattendedPresenter::WatchForAnswer(ui::Form& form) {
    if (!Buttons().contains(form.Name())) return;
    m_waiting.emplace(&form, 0);
    if (m_timer) return;
    m_timer = m_loop.StartTimer(u"unattended answers", kWatchMs, host::TimerReentry::Entered, [this] {
        const auto waiting = m_waiting;  // an answer may close forms
        for (const auto& entry : waiting) {
            if (m_waiting.contains(entry.first)) Answer(*entry.first);
        }
    });
}

void UnattendedPresenter::Answer(ui::Form& form) {
    const std::vector<String>& buttons = Buttons().at(form.Name());
    std::size_t& place = m_waiting.at(&form);
    if (place >= buttons.size()) return LeaveIfEnded(form);
    const ui::Control* button = form.FindControl(buttons[place]);
    if (!button || !button->IsUsable() || !form.IsVisible()) return;
    m_exitCaption = CaptionOf(form, u"cmdCancel");
    if (!FilledIn(form)) return;
    const String& name = buttons[place];
    ++place;  // before the press: its handler may close the form or pump
    Press(form, name);
}

bool UnattendedPresenter::FilledIn(ui::Form& form) {
    const auto fill = m_fills.find(form.Name());
    if (fill == m_fills.end()) return true;
    const String sentence = fill->second(form);
    if (sentence.empty()) return true;
    m_lastMessage = sentence;
    Press(form, u"cmdCancel");
    return false;
}

void UnattendedPresenter::LeaveIfEnded(ui::Form& form) {
    if (form.Name() != u"frmExportMp4") return;
    if (CaptionOf(form, u"cmdCancel") != m_exitCaption) {
        if (m_cancelled) form.Click(u"cmdCancel");
        return;
    }
    m_lastMessage = CaptionOf(form, u"txtConvert");
    Press(form, u"cmdCancel");
}

bool UnattendedPresenter::Press(ui::Form& form, const String& button) {
    const String caption = CaptionOf(form, button);
    const String title = form.Caption().empty() ? form.Name() : form.Caption();
    const String message = form.Name() == u"frmMsgBox" ? CaptionOf(form, u"lMsg") : title;
    m_console.Notice(message + u" [" + (caption.empty() ? button : caption) + u"]");
    return form.Click(button);
}

}  // namespace kestrum::app
