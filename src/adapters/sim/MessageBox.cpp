#include "adapters/sim/MessageBox.h"

#include <algorithm>

#include "adapters/sim/Failure.h"

namespace kestrum::sim {

void MessageBox::AnswerAfter(std::int64_t ms, host::BoxAnswer answer, std::function<void()> meanwhile) {
    m_answers.push_back(Planned{ms, answer, std::move(meanwhile)});
}

host::BoxAnswer MessageBox::Affirmative(host::BoxButtons buttons) {
    switch (buttons) {
        case host::BoxButtons::YesNo:
        case host::BoxButtons::YesNoCancel:
            return host::BoxAnswer::Yes;
        case host::BoxButtons::RetryCancel:
            return host::BoxAnswer::Cancel;
        default:
            return host::BoxAnswer::Ok;
    }
}

host::BoxAnswer MessageBox::Show(const String& text, host::BoxButtons buttons, const String& title) {
    m_shown.push_back(ShownBox{text, buttons, title});
    m_transcript.Add(u"box " + text);
    if (m_answers.empty()) {
        if (buttons == host::BoxButtons::Ok || m_answersAll) return Affirmative(buttons);
        throw Failure("no answer was planned for the message box: " + host::ToUtf8(text));
    }
    Planned planned = std::move(m_answers.front());
    m_answers.pop_front();
    m_loop.Advance(planned.ms);
    if (planned.meanwhile) planned.meanwhile();
    return planned.answer;
}

bool MessageBox::WasShown(const String& text) const {
    return std::any_of(m_shown.begin(), m_shown.end(), [&](const ShownBox& box) { return box.text == text; });
}

}  // namespace kestrum::sim
