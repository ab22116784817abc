// What the program says on the terminal. Results and notices go to standard output, a line each; the one sentence of a
// failure goes to standard error. Progress overwrites its line on a terminal and is thinned out elsewhere.
#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "host/String.h"

namespace kestrum::app {

class Console {
  public:
    /// `terminal`: standard output is one.
    explicit Console(bool terminal = false);

    /// A line of the result, such as "package: PATH".
    void Result(const std::string& line);
    /// A line about what is going on.
    void Notice(const String& text);
    /// The state of long work; shown when it differs from the last one.
    void Progress(const String& text);
    /// The same with a percentage, for work that may be over before anybody has read a line: the first second says
    /// nothing, and elsewhere than on a terminal only every tenth percent is a line.
    void Percent(const String& text, std::int32_t percent);
    /// From now on notices and progress go to standard error, so that standard output holds the result alone.
    void ResultsOnly() { m_resultsOnly = true; }
    /// The one sentence of a failure.
    void Failure(const String& sentence);

  private:
    void EndProgress();
    std::ostream& Side() const;

    bool m_terminal;
    bool m_resultsOnly = false;
    std::chrono::steady_clock::time_point m_begun = std::chrono::steady_clock::now();
    bool m_progressShown = false;
    String m_lastProgress;
};

/// One line of `text`: line breaks become blanks.
String OneLine(const String& text);

}  // namespace kestrum::app
