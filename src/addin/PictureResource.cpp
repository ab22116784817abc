#include "addin/PictureResource.h"

#include <algorithm>
#include <array>

namespace kestrum::addin {
namespace {

struct Entry {
    StringView controlId;
    PictureResource picture;
};

constexpr std::array<Entry, 6> kPictures{{{u"rec", {101, PictureKind::Icon}},
                                          {u"wbk", {101, PictureKind::Bitmap}},
                                          {u"wst", {102, PictureKind::Bitmap}},
                                          {u"hlp", {103, PictureKind::Bitmap}},
                                          {u"abt", {104, PictureKind::Bitmap}},
                                          {u"xld", {105, PictureKind::Bitmap}}}};

}  // namespace

std::optional<PictureResource> PictureOf(StringView controlId) {
    const auto* entry =
        std::find_if(kPictures.begin(), kPictures.end(), [&](const Entry& one) { return one.controlId == controlId; });
    if (entry == kPictures.end()) return std::nullopt;
    return entry->picture;
}

}  // namespace kestrum::addin
