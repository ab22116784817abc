// The text of the index journal, and its merge into a project file. The input is a project file, a NUL, a journal.
#include "Fuzz.h"
#include "media/package/Journal.h"
#include "media/package/ProjectXml.h"

using namespace kestrum;

namespace {

void ReadsBackAlike(const std::vector<media::JournalEntry>& entries) {
    const std::vector<media::JournalEntry> again = media::ParseJournal(media::FormatJournal(entries));
    fuzz::Require(again.size() == entries.size(), "a journal that was written holds as many entries as before");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const bool alike = again[i].pos == entries[i].pos && again[i].recDate == entries[i].recDate &&
                           again[i].title == entries[i].title && again[i].url == entries[i].url;
        fuzz::Require(alike, "an entry reads back as it was written");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input = fuzz::Bytes(data, size);
    const std::size_t end = std::min(input.find('\0'), input.size());
    const media::Bytes project(data, data + end);
    const std::string_view journal = input.substr(std::min(end + 1, size));
    const std::vector<media::JournalEntry> entries = media::ParseJournal(journal);
    ReadsBackAlike(entries);

    constexpr std::int64_t kLengthMs = 60'000;
    media::ChapterMarksOf(project);
    media::SetDuration(project, kLengthMs);
    for (const auto& merge : {media::ReplaceIndex, media::AddToIndex}) {
        const auto merged = merge(project, entries, kLengthMs);
        if (!merged) continue;
        const auto again = merge(merged->projectFile, {}, kLengthMs);
        fuzz::Require(again.has_value(), "a merged project file is one again");
    }
    return 0;
}
