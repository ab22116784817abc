// The platform's message box, answered from a queue. A box that no answer waits for fails the test, unless it has
// only an OK button: that one is taken as read.
#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Transcript.h"
#include "host/IMessageBox.h"

namespace kestrum::sim {

/// A box that was shown.
struct ShownBox {
    String text;
    host::BoxButtons buttons = host::BoxButtons::Ok;
    String title;
};

class MessageBox : public host::IMessageBox {
  public:
    MessageBox(EventLoop& loop, Transcript& transcript) : m_loop(loop), m_transcript(transcript) {}

    host::BoxAnswer Show(const String& text, host::BoxButtons buttons, const String& title) override;

    /// The next box gets this answer.
    void Answer(host::BoxAnswer answer) { AnswerAfter(0, answer, nullptr); }
    /// The next box stays open for `ms`, events run, then `meanwhile` happens, then it gets the answer.
    void AnswerAfter(std::int64_t ms, host::BoxAnswer answer, std::function<void()> meanwhile);

    /// Every box without a planned answer gets its affirmative one: OK, Yes, Cancel for Retry.
    void AnswerAll() { m_answersAll = true; }

    const std::vector<ShownBox>& Shown() const { return m_shown; }
    /// True if a box with exactly this text was shown.
    bool WasShown(const String& text) const;
    std::size_t AnswersLeft() const { return m_answers.size(); }

  private:
    struct Planned {
        std::int64_t ms;
        host::BoxAnswer answer;
        std::function<void()> meanwhile;
    };
    EventLoop& m_loop;
    Transcript& m_transcript;
    static host::BoxAnswer Affirmative(host::BoxButtons buttons);

    bool m_answersAll = false;
    std::deque<Planned> m_answers;
    std::vector<ShownBox> m_shown;
};

}  // namespace kestrum::sim
