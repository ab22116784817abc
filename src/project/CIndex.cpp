#include "project/CIndex.h"

#include <utility>

#include "project/CTime.h"
#include "support/Numbers.h"

namespace kestrum {
namespace {

bool LiesInMedia(const CIndexItem& item) {
    return ToDouble(item.pos) >= 0;
}

String Negated(const String& pos) {
    return CTime::GetString(ToInt32(-ToDouble(pos)), u"sec");
}

}  // namespace

void CIndex::Add(String title, String pos, String recDate, String url, String length, String posEnd, bool selected) {
    CIndexItem item;
    item.title = std::move(title);
    item.pos = std::move(pos);
    item.RecDate = std::move(recDate);
    item.Url = std::move(url);
    item.Length = std::move(length);
    item.PosEnd = std::move(posEnd);
    item.Selected = selected;
    items.Add(std::move(item));
}

void CIndex::Clear() {
    items.RemoveIf([](const CIndexItem& item) { return !item.Selected; });
}

void CIndex::CopyTo(CIndex& target) const {
    const IndexItems source = items;  // the target may be this list itself
    for (const CIndexItem& item : source)
        target.Add(item.title, item.pos, item.RecDate, item.Url, item.Length, item.PosEnd, false);
}

void CIndex::UpdatePos() {
    std::int32_t offset = 0;
    for (CIndexItem& item : items) {
        if (!LiesInMedia(item)) continue;
        const std::int32_t length = ToInt32(ToDouble(item.PosEnd) - ToDouble(item.pos));
        offset = ToInt32(static_cast<double>(offset) + length);
        item.pos = ToText(offset - length);
        item.PosEnd = ToText(offset);
    }
}

void CIndex::UpdateLen(host::IKsLib& ksLib, const String& mediaFile) {
    for (std::int32_t i = 1; i <= count(); ++i) {
        CIndexItem& item = items.Item(i);
        if (!LiesInMedia(item)) {
            item.Length = item.Url.find(u"vplayer") == String::npos ? u"-" : Negated(item.pos);
            continue;
        }
        std::int32_t end = NextKsPos(i);
        if (end < 0) end = ksLib.GetLength(mediaFile);
        item.PosEnd = ToText(end);
        item.Length = CTime::GetString(ToInt32(end - ToDouble(item.pos)), u"sec");
    }
}

std::int32_t CIndex::PrevKsPosEnd(std::int32_t i) const {
    for (std::int32_t k = i - 1; k >= 1; --k)
        if (LiesInMedia(items.Item(k))) return ToInt32(items.Item(k).PosEnd);
    return -1;
}

std::int32_t CIndex::NextKsPos(std::int32_t i) const {
    for (std::int32_t k = i + 1; k <= count(); ++k)
        if (LiesInMedia(items.Item(k))) return ToInt32(items.Item(k).pos);
    return -1;
}

}  // namespace kestrum
