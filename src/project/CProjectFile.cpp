#include "project/CProjectFile.h"

#include <utility>

#include "project/CTime.h"

namespace kestrum {

CProjectFile::CProjectFile(const support::Context& c) : m_c(c), m_document(std::make_shared<modXml::Document>()) {}

std::int32_t CProjectFile::duration() const {
    return CTime::GetSecond(durationText);
}

void CProjectFile::SetDuration(std::int32_t ms) {
    durationText = CTime::GetString(ms, u"ms");
}

void CProjectFile::AddIndex(String itemTitle, String pos, String recDate, String url, String length, String posEnd,
                            bool selected, std::int32_t before) {
    CIndexItem item;
    item.title = std::move(itemTitle);
    item.pos = std::move(pos);
    item.RecDate = std::move(recDate);
    item.Url = std::move(url);
    item.Length = std::move(length);
    item.PosEnd = std::move(posEnd);
    item.Selected = selected;
    if (before >= 1 && before <= index.Count())
        index.Insert(std::move(item), before);
    else
        index.Add(std::move(item));
}

void CProjectFile::RemoveIndex(std::int32_t i) {
    if (i == kAllItems)
        index.RemoveAll();
    else
        index.Remove(i);
}

void CProjectFile::SetTitle(std::int32_t i, String itemTitle) {
    index.Item(i).title = std::move(itemTitle);
}

void CProjectFile::SetLastItem(String itemTitle, String pos, String recDate, String url, const String& /*length*/,
                               const String& /*posEnd*/, bool /*selected*/, std::int32_t /*before*/) {
    CIndexItem& last = index.Item(index.Count());
    last.title = std::move(itemTitle);
    last.pos = std::move(pos);
    last.RecDate = std::move(recDate);
    if (!url.empty()) last.Url = std::move(url);
}

}  // namespace kestrum
