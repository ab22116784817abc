#include "media/package/Journal.h"

#include <charconv>

namespace kestrum::media {

namespace {

void AppendEscaped(std::string& target, std::string_view field) {
    for (const char c : field) {
        switch (c) {
            case '\\':
                target += "\\\\";
                break;
            case '\t':
                target += "\\t";
                break;
            case '\n':
                target += "\\n";
                break;
            case '\r':
                target += "\\r";
                break;
            default:
                target += c;
        }
    }
}

std::string Unescape(std::string_view field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const char next = field[i] == '\\' && i + 1 < field.size() ? field[i + 1] : '\0';
        const std::size_t known = std::string_view("\\tnr").find(next);
        if (next == '\0' || known == std::string_view::npos) {
            text += field[i];
            continue;
        }
        text += "\\\t\n\r"[known];
        ++i;
    }
    return text;
}

/// The part of `rest` before `separator`, which is taken off with it.
std::string_view TakeUntil(std::string_view& rest, char separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view part = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return part;
}

bool ParsePosition(std::string_view field, std::int64_t& position) {
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), position);
    return error == std::errc() && end == field.data() + field.size();
}

}  // namespace

std::string FormatJournal(const std::vector<JournalEntry>& entries) {
    std::string text;
    for (const JournalEntry& entry : entries) {
        text += std::to_string(entry.pos);
        for (const std::string* field : {&entry.recDate, &entry.title, &entry.url}) {
            text += '\t';
            AppendEscaped(text, *field);
        }
        text += '\n';
    }
    return text;
}

std::vector<JournalEntry> ParseJournal(std::string_view text) {
    std::vector<JournalEntry> entries;
    while (!text.empty()) {
        std::string_view line = TakeUntil(text, '\n');
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        JournalEntry entry;
        if (!ParsePosition(TakeUntil(line, '\t'), entry.pos)) continue;
        entry.recDate = Unescape(TakeUntil(line, '\t'));
        entry.title = Unescape(TakeUntil(line, '\t'));
        entry.url = Unescape(TakeUntil(line, '\t'));
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace kestrum::media
