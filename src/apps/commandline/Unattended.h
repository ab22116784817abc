// What is answered when nobody is there: one answer for each window that can come up (docs/command-line.md has the
// table). Decorators over the real box and presenter; each answer is printed as it is given.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "apps/commandline/Console.h"
#include "host/IEventLoop.h"
#include "host/IFormPresenter.h"
#include "host/IMessageBox.h"
#include "ui/Form.h"

namespace kestrum::app {

/// Answers message boxes: the answer that goes on with the work, No for the questions named.
class UnattendedBox final : public host::IMessageBox {
  public:
    explicit UnattendedBox(Console& console) : m_console(console) {}
    /// Questions with this text are answered No.
    void AnswerNo(const String& question) { m_refused.insert(question); }
    /// Text of the last box with an OK button alone; empty if there was none.
    const String& LastMessage() const { return m_lastMessage; }

    host::BoxAnswer Show(const String& text, host::BoxButtons buttons, const String& title) override;

  private:
    host::BoxAnswer AnswerTo(const String& text, host::BoxButtons buttons, const String& title) const;

    Console& m_console;
    std::set<String> m_refused;
    String m_lastMessage;
};

/// Draws nothing: forms of a program without a screen. A modal form pumps until it is unloaded.
class NoScreen final : public host::IFormPresenter {
  public:
    explicit NoScreen(host::IEventLoop& loop) : m_loop(loop) {}
    void Show(ui::Form&) override {}
    void ShowModal(ui::Form& form) override;
    void Close(ui::Form&) override {}
    void Refresh(ui::Form&) override {}
    host::WindowHandle Window(ui::Form&) override { return 0; }
    host::WindowHandle Surface(ui::Picture&) override { return 0; }
    void Changed(ui::Form&) override {}

  private:
    host::IEventLoop& m_loop;
};

/// Presses the buttons of forms that wait for a person, and prints the progress that forms show.
class UnattendedPresenter final : public host::IFormPresenter {
  public:
    UnattendedPresenter(host::IFormPresenter& screen, host::IEventLoop& loop, Console& console);
    /// Presses the cancel button of the form that is at work, as a user would who wants it to stop, until it has ended:
    /// a press may come at a moment when the form does not listen.
    void CancelWork();
    /// What a form is filled in with before its first button is pressed. A sentence, if the form does not offer what is
    /// wanted: then it is left, and the sentence becomes the last message.
    using Fill = std::function<String(ui::Form&)>;
    void FillIn(const String& form, Fill fill) { m_fills[form] = std::move(fill); }
    /// Text of the last frmMsgBox, or the last state of work that ended without success; empty if there was none.
    const String& LastMessage() const { return m_lastMessage; }

    void Show(ui::Form& form) override;
    void ShowModal(ui::Form& form) override;
    void Close(ui::Form& form) override;
    void Refresh(ui::Form& form) override;
    host::WindowHandle Window(ui::Form& form) override { return m_screen.Window(form); }
    host::WindowHandle Surface(ui::Picture& picture) override { return m_screen.Surface(picture); }
    void Changed(ui::Form& form) override;

  private:
    void Tell(ui::Form& form);
    void Answer(ui::Form& form);
    void WatchForAnswer(ui::Form& form);
    /// A publish dialog whose work has ended without closing it (its cancel button says so) is left.
    void LeaveIfEnded(ui::Form& form);
    /// Presses `button` if the user could; true once it was pressed.
    bool Press(ui::Form& form, const String& button);
    /// False if the form could not be filled in and was left.
    bool FilledIn(ui::Form& form);

    host::IFormPresenter& m_screen;
    host::IEventLoop& m_loop;
    Console& m_console;
    /// Forms that wait for an answer, each with the place in its list of buttons.
    std::map<ui::Form*, std::size_t> m_waiting;
    std::unique_ptr<host::ITimer> m_timer;
    std::map<String, Fill> m_fills;
    bool m_cancelled = false;
    String m_lastMessage;
    /// Caption of cmdCancel before the work began: with it the dialog says that there is nothing to cancel.
    String m_exitCaption;
};

}  // namespace kestrum::app
