#include "apps/commandline/Console.h"

#include <iostream>

namespace kestrum::app {

Console::Console(bool terminal) : m_terminal(terminal) {}

void Console::Result(const std::string& line) {
    EndProgress();
    std::cout << line << std::endl;
}

std::ostream& Console::Side() const {
    return m_resultsOnly ? std::cerr : std::cout;
}

void Console::Notice(const String& text) {
    EndProgress();
    Side() << host::ToUtf8(OneLine(text)) << std::endl;
}

void Console::Progress(const String& text) {
    if (text == m_lastProgress || text.empty()) return;
    m_lastProgress = text;
    if (m_terminal) {
        Side() << '\r' << host::ToUtf8(OneLine(text)) << "\x1b[K" << std::flush;
        m_progressShown = true;
    } else {
        Side() << host::ToUtf8(OneLine(text)) << std::endl;
    }
}

void Console::Percent(const String& text, std::int32_t percent) {
    constexpr std::chrono::seconds kQuiet{1};
    constexpr std::int32_t kStepOfLines = 10;
    if (std::chrono::steady_clock::now() - m_begun < kQuiet) return;
    if (!m_terminal) percent -= percent % kStepOfLines;
    Progress(text + u": " + host::FromUtf8(std::to_string(percent)) + u" %");
}

void Console::Failure(const String& sentence) {
    EndProgress();
    std::cerr << "kestrum: " << host::ToUtf8(OneLine(sentence)) << std::endl;
}

void Console::EndProgress() {
    if (m_progressShown) Side() << std::endl;
    m_progressShown = false;
}

String OneLine(const String& text) {
    String line;
    for (const char16_t unit : text) {
        const bool blank = unit == u'\r' || unit == u'\n' || unit == u'\t';
        if (!blank) line += unit;
        if (blank && !line.empty() && line.back() != u' ') line += u' ';
    }
    while (!line.empty() && line.back() == u' ') line.pop_back();
    return line;
}

}  // namespace kestrum::app
