// Forms without a screen: a queue of the user's acts is carried out on the forms as they come up, and a transcript
// tells what was shown and done. For tests and for batch use. A script that does not fit the program is an error: an
// act that a form refuses and a modal form that nobody answers throw std::logic_error out of the pump, and the owner
// asks LeftOverActs() at the end.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "host/IEventLoop.h"
#include "host/IFormPresenter.h"

namespace kestrum::ui {

class HeadlessPresenter : public host::IFormPresenter {
  public:
    explicit HeadlessPresenter(host::IEventLoop& loop);
    ~HeadlessPresenter() override;

    // The script. Acts run in order, each from a pump once its form is on screen and no other modal form is above it.

    HeadlessPresenter& Click(String form, String control);
    HeadlessPresenter& Select(String form, String control, std::int32_t index);
    HeadlessPresenter& Type(String form, String control, String text);
    HeadlessPresenter& Slide(String form, String control, std::int32_t value);
    HeadlessPresenter& PressEnter(String form);
    HeadlessPresenter& PressEscape(String form);
    /// The close button of the frame, which must be accepted.
    HeadlessPresenter& UserCloses(String form);
    /// The same, which the form must refuse.
    HeadlessPresenter& UserClosesInVain(String form);
    /// Anything else: looks at the form, or lets the hostile thing happen while it is up.
    HeadlessPresenter& Do(String form, String what, std::function<void(Form&)> act);
    /// Delays the act added last by `ms` of the loop's time, from when it could run.
    HeadlessPresenter& After(std::int32_t ms);
    /// Holds the act added last until `condition` is true; looked at every 50 ms of the loop's time.
    HeadlessPresenter& When(std::function<bool(Form&)> condition);

    /// Time of the loop for which a modal form may wait without any act in the queue; 1 hour unless set.
    void SetPatience(std::int32_t ms) { m_patience = ms; }

    /// "show frmStatus", "modal frmMsgBox", "click frmMsgBox.cmdOK", "close frmMsgBox" ... in order.
    const std::vector<String>& Transcript() const { return m_transcript; }
    /// Acts that never ran, as transcript lines.
    std::vector<String> LeftOverActs() const;
    /// Forms on screen, in the order in which they came up.
    const std::vector<Form*>& OnScreen() const { return m_shown; }

    void Show(Form& form) override;
    void ShowModal(Form& form) override;
    void Close(Form& form) override;
    void Refresh(Form& form) override;
    /// A number from 1 for each form on screen.
    host::WindowHandle Window(Form& form) override;
    /// A number of its own for each picture of a form on screen.
    host::WindowHandle Surface(Picture& picture) override;
    void Changed(Form& form) override;

  private:
    struct Act {
        String form;
        String line;
        std::function<bool(Form&)> perform;
        std::int32_t delay = 0;
        std::function<bool(Form&)> condition;
    };

    HeadlessPresenter& Add(String form, String line, std::function<bool(Form&)> perform);
    void Appear(Form& form);
    void Wake();
    void WakeIn(std::int32_t ms);
    void Step();
    Form* Target(const String& name) const;
    void Perform(Form& form);
    bool RanOutOfPatience(std::int32_t since);

    host::IEventLoop& m_loop;
    std::deque<Act> m_acts;
    std::vector<String> m_transcript;
    std::vector<Form*> m_shown;
    std::vector<Form*> m_modal;
    std::unique_ptr<host::ITimer> m_timer;
    std::shared_ptr<bool> m_alive;
    std::int32_t m_patience = 3'600'000;
    bool m_posted = false;
};

}  // namespace kestrum::ui
