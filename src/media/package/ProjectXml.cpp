#include "media/package/ProjectXml.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <set>

#include "media/package/ProjectText.h"

namespace kestrum::media {

namespace {

pugi::xml_node IndexNode(const pugi::xml_document& document) {
    return document.document_element().child("project").child("index");
}

/// The index element, made if there is none; empty if this is no project file.
pugi::xml_node RequireIndex(pugi::xml_document& document) {
    pugi::xml_node index = IndexNode(document);
    pugi::xml_node project = document.document_element().child("project");
    if (index || !project) return index;
    index = project.append_child("index");
    index.append_attribute("duration");
    index.append_attribute("type") = "OL";
    return index;
}

std::optional<std::int64_t> ParseNumber(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// Control characters are no legal XML, and a title needs none but the CR between its paragraphs.
std::string WithoutControls(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(),
                              [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\r'; }),
               text.end());
    return text;
}

void FillItem(pugi::xml_node item, const JournalEntry& entry) {
    item.append_child("title").text() = WithoutControls(entry.title).c_str();
    item.append_child("recdate").text() = WithoutControls(entry.recDate).c_str();
    item.append_child("pos").text() = std::to_string(entry.pos).c_str();
    if (!entry.url.empty()) item.append_child("url").text() = WithoutControls(entry.url).c_str();
}

/// Leaves first: the library's own removal descends once a level, and a file can be nested deeper than the stack.
void RemoveBelow(const pugi::xml_node& top) {
    for (pugi::xml_node node = top; top.first_child();) {
        while (node.first_child()) node = node.first_child();
        pugi::xml_node parent = node.parent();
        parent.remove_child(node);
        node = parent;
    }
}

/// The journal's entries of which something was recorded; counts the others.
std::vector<JournalEntry> Recorded(const std::vector<JournalEntry>& journal, std::int64_t lengthMs, int& withoutMedia) {
    std::vector<JournalEntry> recorded;
    std::copy_if(journal.begin(), journal.end(), std::back_inserter(recorded),
                 [&](const JournalEntry& entry) { return entry.pos < lengthMs; });
    withoutMedia = static_cast<int>(journal.size() - recorded.size());
    return recorded;
}

MergedProject Finish(pugi::xml_document& document, pugi::xml_node index, std::int64_t lengthMs, int withoutMedia) {
    pugi::xml_attribute duration = index.attribute("duration");
    if (!duration) duration = index.prepend_attribute("duration");
    duration = DurationText(lengthMs).c_str();
    const auto items = index.children();
    return {SerialiseProject(document), static_cast<int>(std::distance(items.begin(), items.end())), withoutMedia};
}

/// The first item behind `ms`, where one for `ms` goes in front.
pugi::xml_node FirstBehind(pugi::xml_node index, std::int64_t ms) {
    for (pugi::xml_node item : index.children())
        if (ParseNumber(item.child_value("pos")).value_or(-1) > ms) return item;
    return {};
}

}  // namespace

std::vector<ChapterMark> ChapterMarksOf(const Bytes& projectFile) {
    pugi::xml_document document;
    std::vector<ChapterMark> marks;
    if (!ParseProject(document, projectFile)) return marks;
    for (const pugi::xml_node& item : IndexNode(document).children()) {
        const auto ms = ParseNumber(item.child_value("pos"));
        if (ms && *ms >= 0 && *ms <= 0x7FFFFFFF) marks.push_back({*ms, item.child_value("title")});
    }
    return marks;
}

std::optional<MergedProject> ReplaceIndex(const Bytes& projectFile, const std::vector<JournalEntry>& journal,
                                          std::int64_t lengthMs) {
    pugi::xml_document document;
    if (!ParseProject(document, projectFile)) return std::nullopt;
    pugi::xml_node index = RequireIndex(document);
    if (!index) return std::nullopt;
    RemoveBelow(index);
    int withoutMedia = 0;
    for (const JournalEntry& entry : Recorded(journal, lengthMs, withoutMedia))
        FillItem(index.append_child("item"), entry);
    return Finish(document, index, lengthMs, withoutMedia);
}

std::optional<MergedProject> AddToIndex(const Bytes& projectFile, const std::vector<JournalEntry>& journal,
                                        std::int64_t lengthMs) {
    pugi::xml_document document;
    if (!ParseProject(document, projectFile)) return std::nullopt;
    pugi::xml_node index = RequireIndex(document);
    if (!index) return std::nullopt;
    std::set<std::int64_t> known;
    for (const pugi::xml_node& item : index.children()) known.insert(ParseNumber(item.child_value("pos")).value_or(-1));
    int withoutMedia = 0;
    for (const JournalEntry& entry : Recorded(journal, lengthMs, withoutMedia)) {
        if (entry.pos < 0 || !known.insert(entry.pos).second) continue;
        const pugi::xml_node behind = FirstBehind(index, entry.pos);
        FillItem(behind ? index.insert_child_before("item", behind) : index.append_child("item"), entry);
    }
    return Finish(document, index, lengthMs, withoutMedia);
}

std::optional<MergedProject> SetDuration(const Bytes& projectFile, std::int64_t lengthMs) {
    return AddToIndex(projectFile, {}, lengthMs);
}

std::string DurationText(std::int64_t ms) {
    const auto seconds = static_cast<long long>(ms / 1000);
    const auto fraction = static_cast<long long>(ms % 1000);
    char text[64];
    std::snprintf(text, sizeof(text), "%02lld:%02lld", seconds / 60 % 60, seconds % 60);
    std::string result = text;
    if (fraction != 0) {
        std::snprintf(text, sizeof(text), ".%03lld", fraction);
        result += text;
    }
    return seconds >= 3600 ? std::to_string(seconds / 3600) + ":" + result : result;
}

}  // namespace kestrum::media
