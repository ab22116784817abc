#include "media/convert/ConvertArguments.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <string_view>

#include "media/package/Error.h"
#include "media/package/Journal.h"

namespace kestrum::media {

const char* const kConvertMp4Usage =
    "ksmedia convert-mp4 PACKAGE OUT.mp4 [--size WxH] [--bitrate KBPS] [--audio-bitrate KBPS] [--limit BYTES]\n"
    "                    [--camera WxH,TOP,LEFT] [--index FILE]\n"
    "  Writes \"pos MS\" lines while it works and \"end finished|stopped|size|memory|failed\" last. The line \"stop\"\n"
    "  on standard input, or its end if it is a pipe, ends it.\n";

namespace {

/// Whole decimal numbers of `text`, `count` of them, each pair parted by one character of `separators`.
template <class Number>
bool ReadNumbers(std::string_view text, std::string_view separators, std::vector<Number>& numbers) {
    numbers.clear();
    for (std::size_t i = 0; i <= separators.size(); ++i) {
        Number value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || value < 0) return false;
        numbers.push_back(value);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (i == separators.size()) return text.empty();
        if (text.empty() || text.front() != separators[i]) return false;
        text.remove_prefix(1);
    }
    return false;
}

bool ReadNumber(std::string_view text, int& value) {
    std::vector<int> numbers;
    if (!ReadNumbers<int>(text, "", numbers)) return false;
    value = numbers[0];
    return true;
}

bool ReadSize(std::string_view text, ConvertRequest& request) {
    std::vector<int> numbers;
    if (!ReadNumbers<int>(text, "x", numbers)) return false;
    request.width = numbers[0];
    request.height = numbers[1];
    return true;
}

bool ReadLimit(std::string_view text, ConvertRequest& request) {
    std::vector<std::int64_t> numbers;
    if (!ReadNumbers<std::int64_t>(text, "", numbers)) return false;
    request.sizeLimit = numbers[0];
    return true;
}

bool ReadCamera(std::string_view text, ConvertRequest& request) {
    std::vector<int> numbers;
    if (!ReadNumbers<int>(text, "x,,", numbers)) return false;
    request.camera = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return true;
}

bool ReadIndex(const std::string& path, ConvertRequest& request) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Error(ErrorKind::kMissing, "Cannot read the index file " + path + ".", errno);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    for (const JournalEntry& entry : ParseJournal(text))
        if (entry.pos >= 0) request.entries.push_back({entry.pos, entry.title});
    std::stable_sort(request.entries.begin(), request.entries.end(),
                     [](const auto& a, const auto& b) { return a.pos < b.pos; });
    request.entriesGiven = true;
    return true;
}

using OptionReader = std::function<bool(const std::string&, ConvertRequest&)>;

const std::map<std::string, OptionReader>& Options() {
    static const std::map<std::string, OptionReader> options = {
        {"--size", ReadSize},
        {"--limit", ReadLimit},
        {"--camera", ReadCamera},
        {"--index", ReadIndex},
        {"--bitrate", [](const std::string& text, ConvertRequest& r) { return ReadNumber(text, r.videoKbps); }},
        {"--audio-bitrate", [](const std::string& text, ConvertRequest& r) { return ReadNumber(text, r.audioKbps); }},
    };
    return options;
}

}  // namespace

std::optional<ConvertRequest> ParseConvertMp4(const std::vector<std::string>& arguments) {
    ConvertRequest request;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto option = Options().find(arguments[i]);
        if (option == Options().end()) {
            if (arguments[i].rfind("--", 0) == 0) return std::nullopt;
            files.push_back(arguments[i]);
            continue;
        }
        if (++i == arguments.size() || !option->second(arguments[i], request)) return std::nullopt;
    }
    if (files.size() != 2) return std::nullopt;
    request.package = files[0];
    request.output = files[1];
    return request;
}

}  // namespace kestrum::media
