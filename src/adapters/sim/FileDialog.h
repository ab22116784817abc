// The file dialog, answered from a queue: a path, or none for a user who cancels. Without an answer the user cancels.
#pragma once

#include <deque>
#include <vector>

#include "host/IFileDialog.h"

namespace kestrum::sim {

class FileDialog : public host::IFileDialog {
  public:
    std::optional<String> OpenFile(const host::FileQuestion& question) override {
        asked.push_back(question);
        if (answers.empty()) return std::nullopt;
        std::optional<String> answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::deque<std::optional<String>> answers;
    std::vector<host::FileQuestion> asked;
};

}  // namespace kestrum::sim
