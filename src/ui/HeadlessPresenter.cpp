#include "ui/HeadlessPresenter.h"

#include <algorithm>
#include <stdexcept>

#include "ui/Form.h"
#include "ui/Names.h"

namespace kestrum::ui {
namespace {

constexpr std::int32_t kLookEveryMs = 50;
constexpr std::int32_t kTickMask = 0x7FFFFFFF;

String Digits(std::int64_t number) {
    const std::string text = std::to_string(number);
    return String(text.begin(), text.end());
}

}  // namespace

HeadlessPresenter::HeadlessPresenter(host::IEventLoop& loop) : m_loop(loop), m_alive(std::make_shared<bool>(true)) {}

HeadlessPresenter::~HeadlessPresenter() {
    *m_alive = false;
}

HeadlessPresenter& HeadlessPresenter::Add(String form, String line, std::function<bool(Form&)> perform) {
    m_acts.push_back({std::move(form), std::move(line), std::move(perform), 0, {}});
    Wake();
    return *this;
}

HeadlessPresenter& HeadlessPresenter::Click(String form, String control) {
    const String line = u"click " + form + u"." + control;
    return Add(std::move(form), line, [control](Form& target) { return target.Click(control); });
}

HeadlessPresenter& HeadlessPresenter::Select(String form, String control, std::int32_t index) {
    const String line = u"select " + form + u"." + control + u" " + Digits(index);
    return Add(std::move(form), line, [control, index](Form& target) { return target.Select(control, index); });
}

HeadlessPresenter& HeadlessPresenter::Type(String form, String control, String text) {
    const String line = u"type " + form + u"." + control + u" " + text;
    return Add(std::move(form), line, [control, text](Form& target) { return target.Type(control, text); });
}

HeadlessPresenter& HeadlessPresenter::Slide(String form, String control, std::int32_t value) {
    const String line = u"slide " + form + u"." + control + u" " + Digits(value);
    return Add(std::move(form), line, [control, value](Form& target) { return target.Slide(control, value); });
}

HeadlessPresenter& HeadlessPresenter::PressEnter(String form) {
    const String line = u"enter " + form;
    return Add(std::move(form), line, [](Form& target) { return target.PressEnter(); });
}

HeadlessPresenter& HeadlessPresenter::PressEscape(String form) {
    const String line = u"escape " + form;
    return Add(std::move(form), line, [](Form& target) { return target.PressEscape(); });
}

HeadlessPresenter& HeadlessPresenter::UserCloses(String form) {
    const String line = u"user closes " + form;
    return Add(std::move(form), line, [](Form& target) { return target.CloseByUser(); });
}

HeadlessPresenter& HeadlessPresenter::UserClosesInVain(String form) {
    const String line = u"user closes " + form + u" in vain";
    return Add(std::move(form), line, [](Form& target) { return !target.CloseByUser(); });
}

HeadlessPresenter& HeadlessPresenter::Do(String form, String what, std::function<void(Form&)> act) {
    return Add(std::move(form), std::move(what), [act = std::move(act)](Form& target) {
        act(target);
        return true;
    });
}

HeadlessPresenter& HeadlessPresenter::After(std::int32_t ms) {
    m_acts.back().delay = ms;
    return *this;
}

HeadlessPresenter& HeadlessPresenter::When(std::function<bool(Form&)> condition) {
    m_acts.back().condition = std::move(condition);
    return *this;
}

std::vector<String> HeadlessPresenter::LeftOverActs() const {
    std::vector<String> lines;
    for (const Act& act : m_acts) lines.push_back(act.line);
    return lines;
}

void HeadlessPresenter::Appear(Form& form) {
    std::erase(m_shown, &form);
    m_shown.push_back(&form);
    Wake();
}

void HeadlessPresenter::Show(Form& form) {
    m_transcript.push_back(u"show " + form.Name());
    Appear(form);
}

void HeadlessPresenter::ShowModal(Form& form) {
    m_transcript.push_back(u"modal " + form.Name());
    m_modal.push_back(&form);
    Appear(form);
    const std::int32_t since = m_loop.TickCount();
    m_loop.RunUntil([&] { return !form.IsLoaded() || RanOutOfPatience(since); });
    if (form.IsLoaded()) throw std::logic_error("Nobody answers the modal form " + host::ToUtf8(form.Name()));
}

bool HeadlessPresenter::RanOutOfPatience(std::int32_t since) {
    const std::int32_t now = m_loop.TickCount();
    const auto age = static_cast<std::int32_t>((static_cast<std::uint32_t>(now) - static_cast<std::uint32_t>(since)) &
                                               static_cast<std::uint32_t>(kTickMask));
    return m_acts.empty() && age > m_patience;
}

void HeadlessPresenter::Close(Form& form) {
    const bool wasShown = std::find(m_shown.begin(), m_shown.end(), &form) != m_shown.end();
    if (wasShown) m_transcript.push_back(u"close " + form.Name());
    std::erase(m_shown, &form);
    std::erase(m_modal, &form);
    Wake();
}

void HeadlessPresenter::Refresh(Form&) {}

host::WindowHandle HeadlessPresenter::Window(Form& form) {
    const auto found = std::find(m_shown.begin(), m_shown.end(), &form);
    return found == m_shown.end() ? 0 : static_cast<host::WindowHandle>(found - m_shown.begin()) + 1;
}

host::WindowHandle HeadlessPresenter::Surface(Picture& picture) {
    constexpr host::WindowHandle kControlsOfAForm = 1000;
    const host::WindowHandle window = Window(picture.Owner());
    const std::vector<Control*>& controls = picture.Owner().Controls();
    const auto place = std::find(controls.begin(), controls.end(), &picture) - controls.begin();
    return window == 0 ? 0 : window * kControlsOfAForm + static_cast<host::WindowHandle>(place);
}

void HeadlessPresenter::Changed(Form&) {}

void HeadlessPresenter::Wake() {
    if (m_posted || m_acts.empty()) return;
    m_posted = true;
    m_loop.Post([this, alive = m_alive] {
        if (!*alive) return;
        m_posted = false;
        Step();
    });
}

void HeadlessPresenter::WakeIn(std::int32_t ms) {
    m_timer = m_loop.StartTimer(u"user", std::max(ms, 1), host::TimerReentry::Entered, [this] {
        HeadlessPresenter& self = *this;  // the closure ends with the timer
        self.m_timer.reset();
        self.Step();
    });
}

Form* HeadlessPresenter::Target(const String& name) const {
    const auto found =
        std::find_if(m_shown.rbegin(), m_shown.rend(), [&](Form* form) { return SameName(form->Name(), name); });
    if (found == m_shown.rend() || !(*found)->IsVisible()) return nullptr;
    const bool blocked = !m_modal.empty() && m_modal.back() != *found;
    return blocked ? nullptr : *found;
}

void HeadlessPresenter::Step() {
    if (m_acts.empty() || m_timer) return;
    Act& next = m_acts.front();
    Form* form = Target(next.form);
    if (form == nullptr) return;  // Appear and Close wake the script again
    if (next.delay > 0) {
        const std::int32_t delay = std::exchange(next.delay, 0);
        WakeIn(delay);
    } else if (next.condition && !next.condition(*form)) {
        WakeIn(kLookEveryMs);
    } else {
        Perform(*form);
    }
}

void HeadlessPresenter::Perform(Form& form) {
    const Act act = std::move(m_acts.front());
    m_acts.pop_front();
    m_transcript.push_back(act.line);
    Wake();  // a handler that opens a modal form pumps for the next act
    if (!act.perform(form)) throw std::logic_error("A user cannot do this: " + host::ToUtf8(act.line));
}

}  // namespace kestrum::ui
