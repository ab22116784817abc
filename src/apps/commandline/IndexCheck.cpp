#include "apps/commandline/IndexCheck.h"

#include <algorithm>
#include <map>

#include "project/CTime.h"
#include "support/Numbers.h"
#include "support/modGlobal.h"

namespace kestrum::app {
namespace {

/// One run over the index: what is found, and the list as it should be.
class Checker {
  public:
    Checker(const std::vector<IndexEntry>& entries, const Recording& recording) : m_recording(recording) {
        for (std::size_t i = 0; i < entries.size(); ++i)
            m_items.push_back({static_cast<std::int32_t>(i) + 1, entries[i], entries[i].Position()});
        for (const Item& item : m_items)
            if (item.pos) m_taken.insert(*item.pos);
    }

    IndexReport Run(std::optional<std::int64_t> notedMs) {
        MoveBackAll();
        MoveBackSingles();
        for (Item& item : m_items) CheckPlace(item);
        CheckOrder();
        CheckTwins();
        CheckStart();
        FindMissing();
        if (notedMs && *notedMs != m_recording.lengthMs)
            Add({FindingKind::Duration, 0, -1, {}, {PositionText(*notedMs), PositionText(m_recording.lengthMs)}});
        return {std::move(m_findings), Mend()};
    }

  private:
    struct Item {
        std::int32_t number = 0;  ///< 0: from the chapters
        IndexEntry entry;
        std::optional<std::int64_t> pos;
        bool dropped = false;

        bool InMedia() const { return pos && *pos >= 0 && !dropped; }
    };

    bool IsKeyFrame(std::int64_t ms) const { return m_recording.keyFrames.contains(ms); }

    void Add(Finding finding) { m_findings.push_back(std::move(finding)); }
    void AddFor(const Item& item, FindingKind kind, std::vector<String> more = {}) {
        std::vector<String> values = {NumberText(item.number), item.entry.title, PositionText(*item.pos)};
        values.insert(values.end(), more.begin(), more.end());
        Add({kind, item.number, *item.pos, item.entry.title, std::move(values)});
    }
    static String NumberText(std::int64_t number) { return host::FromUtf8(std::to_string(number)); }

    void Move(Item& item, std::int64_t to) {
        m_taken.erase(m_taken.find(*item.pos));
        m_taken.insert(to);
        item.pos = to;
        item.entry.pos = NumberText(to);
        m_changed = true;
    }

    /// An entry of the media whose position was moved below 0 is no link: it has no target.
    static bool BelongsToMedia(const Item& item) {
        return item.pos && (*item.pos >= 0 || (*item.pos < -1 && item.entry.url.empty()));
    }

    /// Every entry off by the same time, the first by the distance to 0: nothing else makes all of them fit again.
    void MoveBackAll() {
        std::vector<Item*> media;
        for (Item& item : m_items)
            if (BelongsToMedia(item)) media.push_back(&item);
        if (media.size() < 2) return;
        const auto lowest = std::min_element(media.begin(), media.end(),
                                             [](const Item* a, const Item* b) { return *a->pos < *b->pos; });
        const std::int64_t offset = *(*lowest)->pos;
        const auto fits = [&](std::int64_t shift) {
            return std::all_of(media.begin(), media.end(),
                               [&](const Item* item) { return IsKeyFrame(*item->pos - shift); });
        };
        if (offset == 0 || fits(0) || !fits(offset)) return;
        Add({FindingKind::IndexShifted, 0, offset, {}, {NumberText(offset)}});
        for (Item* item : media) Move(*item, *item->pos - offset);
    }

    /// One entry off its key frame whose title stands in the chapters at a place that no entry has.
    void MoveBackSingles() {
        for (Item& item : m_items) {
            if (!item.InMedia() || IsKeyFrame(*item.pos)) continue;
            const host::PackageChapter* chapter = FreeChapter(item.entry.title);
            if (!chapter) continue;
            AddFor(item, FindingKind::EntryShifted, {PositionText(chapter->ms)});
            Move(item, chapter->ms);
        }
    }

    const host::PackageChapter* FreeChapter(const String& title) const {
        const auto found =
            std::find_if(m_recording.chapters.begin(), m_recording.chapters.end(), [&](const auto& chapter) {
                return chapter.title == title && IsKeyFrame(chapter.ms) && !HasEntryAt(chapter.ms);
            });
        return found == m_recording.chapters.end() ? nullptr : &*found;
    }

    bool HasEntryAt(std::int64_t ms) const { return m_taken.contains(ms); }

    void CheckPlace(const Item& item) {
        if (!item.pos)
            return Add({FindingKind::PositionUnreadable,
                        item.number,
                        -1,
                        item.entry.title,
                        {NumberText(item.number), item.entry.title, item.entry.pos}});
        if (*item.pos < 0 || IsKeyFrame(*item.pos)) return;
        if (*item.pos >= m_recording.lengthMs)
            return AddFor(item, FindingKind::PastEnd, {PositionText(m_recording.lengthMs)});
        const auto behind = m_recording.keyFrames.upper_bound(*item.pos);
        const bool anyBefore = behind != m_recording.keyFrames.begin();
        AddFor(item, FindingKind::NotOnKeyFrame, {PositionText(anyBefore ? *std::prev(behind) : 0)});
    }

    /// Each entry against the highest before it.
    void CheckOrder() {
        std::int64_t last = -1;
        for (const Item& item : m_items) {
            if (!item.InMedia()) continue;
            if (*item.pos < last) {
                AddFor(item, FindingKind::Unsorted);
                m_unsorted = true;
            }
            last = std::max(last, *item.pos);
        }
    }

    void CheckTwins() {
        std::map<std::int64_t, const IndexEntry*> firstAt;
        for (Item& item : m_items) {
            if (!item.InMedia()) continue;
            const auto [first, isFirst] = firstAt.emplace(*item.pos, &item.entry);
            if (isFirst) continue;
            const bool same = *first->second == item.entry;
            AddFor(item, same ? FindingKind::EntryTwice : FindingKind::PlaceTwice);
            item.dropped = same;
            m_changed = m_changed || same;
        }
    }

    /// The entry at 0 may be one that the chapters still have: FindMissing brings that one back.
    void CheckStart() {
        std::optional<std::int64_t> first;
        for (const Item& item : m_items)
            if (item.InMedia() && (!first || *item.pos < *first)) first = item.pos;
        const bool chapterAtStart = std::any_of(m_recording.chapters.begin(), m_recording.chapters.end(),
                                                [](const auto& chapter) { return chapter.ms == 0; });
        if (first && *first != 0 && !(chapterAtStart && IsKeyFrame(0)))
            Add({FindingKind::StartMissing, 0, *first, {}, {PositionText(*first)}});
    }

    void FindMissing() {
        for (const host::PackageChapter& chapter : m_recording.chapters) {
            if (HasEntryAt(chapter.ms) || !IsKeyFrame(chapter.ms)) continue;
            Add({FindingKind::EntryMissing, 0, chapter.ms, chapter.title, {chapter.title, PositionText(chapter.ms)}});
            m_items.push_back({0, {NumberText(chapter.ms), chapter.title, {}, {}}, chapter.ms});
            m_taken.insert(chapter.ms);
            m_changed = m_unsorted = true;
        }
    }

    /// Entries without a place in the media stay behind the entry that they follow.
    IndexMend Mend() {
        std::vector<std::pair<std::int64_t, IndexEntry>> ordered;
        std::int64_t place = -1;
        for (const Item& item : m_items) {
            if (item.dropped) continue;
            if (item.InMedia()) place = *item.pos;
            ordered.emplace_back(place, item.entry);
        }
        if (m_unsorted)
            std::stable_sort(ordered.begin(), ordered.end(),
                             [](const auto& a, const auto& b) { return a.first < b.first; });
        IndexMend mend{{}, m_changed || m_unsorted};
        for (auto& entry : ordered) mend.entries.push_back(std::move(entry.second));
        return mend;
    }

    const Recording& m_recording;
    std::vector<Item> m_items;
    std::multiset<std::int64_t> m_taken;  ///< positions that have an entry
    std::vector<Finding> m_findings;
    bool m_changed = false;
    bool m_unsorted = false;
};

}  // namespace

std::optional<std::int64_t> IndexEntry::Position() const {
    try {
        return ToInt32(modGlobal::Trim(pos));
    } catch (const host::Error&) {
        return std::nullopt;
    }
}

IndexReport CheckIndex(const std::vector<IndexEntry>& entries, std::optional<std::int64_t> notedMs,
                       const Recording& recording) {
    return Checker(entries, recording).Run(notedMs);
}

String PositionText(std::int64_t ms) {
    return CTime::GetString(static_cast<std::int32_t>(std::clamp<std::int64_t>(ms, 0, 0x7FFFFFFF)), u"ms");
}

}  // namespace kestrum::app
