#include "publish/Captions.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "publish/CaptionText.h"
#include "support/JSON.h"
#include "support/Numbers.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum::publish {

namespace {

constexpr StringView kSection = u"frmExportMp4";
/// No lecture's captions are larger; what is, is no captions.
constexpr std::int64_t kLargestFile = 8 << 20;

String Sentence(const support::Context& c, StringView key, StringView fallback, const String& first,
                const String& second) {
    const String text = modLanguage::GetResString(c, kSection, key, fallback);
    return modGlobal::Replace(modGlobal::Replace(text, u"%s1", first), u"%s2", second);
}

/// The package's name without folder and ending; the deck has the same.
String BaseName(const support::Context& c) {
    const String name = modGlobal::FileNameOf(c, c.support.packagePath);
    return name.substr(0, name.rfind(u'.'));
}

struct CaptionFile {
    String name;
    String language;
    CaptionFormat format;
};

bool IsLanguage(const String& text) {
    const String lower = modGlobal::LowerCase(text);
    return !lower.empty() && lower.size() <= 16 && lower != u"ktr" && lower[0] >= u'a' && lower[0] <= u'z' &&
           lower.find_first_not_of(u"abcdefghijklmnopqrstuvwxyz0123456789-") == String::npos;
}

/// What `name` says of itself, nothing if it is no caption file of this package.
std::optional<CaptionFile> Recognised(const String& name, const String& base) {
    const std::size_t point = name.rfind(u'.');
    if (point == String::npos || !name.starts_with(base) || point < base.size()) return std::nullopt;
    const String ending = modGlobal::LowerCase(name.substr(point));
    if (ending != u".vtt" && ending != u".srt") return std::nullopt;
    const CaptionFormat format = ending == u".vtt" ? CaptionFormat::WebVtt : CaptionFormat::SubRip;
    if (point == base.size()) return CaptionFile{name, {}, format};
    const String language = name.substr(base.size() + 1, point - base.size() - 1);
    if (name[base.size()] != u'.' || !IsLanguage(language)) return std::nullopt;
    return CaptionFile{name, language, format};
}

/// One file for each language, the .vtt before the .srt.
std::vector<CaptionFile> FilesBeside(const support::Context& c) {
    std::vector<CaptionFile> files;
    for (const String& name : c.host.fs.ListFolder(modGlobal::FolderOf(c, c.support.packagePath)))
        if (const auto file = Recognised(name, BaseName(c))) files.push_back(*file);
    const auto order = [](const CaptionFile& a, const CaptionFile& b) {
        return a.language != b.language ? a.language < b.language : a.format < b.format;
    };
    std::stable_sort(files.begin(), files.end(), order);
    const auto same = [](const CaptionFile& a, const CaptionFile& b) { return a.language == b.language; };
    files.erase(std::unique(files.begin(), files.end(), same), files.end());
    return files;
}

String Unreadable(const support::Context& c, const String& file) {
    return Sentence(c, u"msgCaptionsUnreadable", u"There are no captions in %s1 that can be read.", file, {});
}

/// Adds the file's captions, or says in `remarks` why not.
void Take(const support::Context& c, const CaptionFile& file, Captions& captions, String& remarks) {
    CaptionText text;
    const String path = modGlobal::Join(c, modGlobal::FolderOf(c, c.support.packagePath), file.name);
    try {
        if (c.host.fs.FileSize(path) <= kLargestFile) text = ReadCaptions(c.host.fs.ReadFile(path), file.format);
    } catch (const host::Error&) {
        text = {};
    }
    if (text.cues == 0) {
        remarks += u" " + Unreadable(c, file.name);
        return;
    }
    if (text.leftOut > 0)
        remarks += u" " + Sentence(c, u"msgCaptionsLeftOut", u"In %s1, %s2 without proper times are left out.",
                                   file.name, ToText(text.leftOut));
    captions.tracks.push_back({file.name, file.language, text.webVtt});
}

String Names(const Captions& captions) {
    String names;
    for (const CaptionTrack& track : captions.tracks) names += (names.empty() ? u"" : u", ") + track.file;
    return names;
}

}  // namespace

Captions FindCaptions(const support::Context& c) {
    Captions captions;
    String remarks;
    try {
        for (const CaptionFile& file : FilesBeside(c)) Take(c, file, captions, remarks);
    } catch (const host::Error&) {
        captions.tracks.clear();
    }
    const String base = BaseName(c);
    captions.sentence =
        captions.tracks.empty()
            ? Sentence(c, u"msgNoCaptions", u"Captions: none. To add some, put %s1 or %s2 beside the package.",
                       base + u".vtt", base + u".srt")
            : Sentence(c, u"msgCaptions", u"Captions: %s1.", Names(captions), {});
    captions.sentence += remarks;
    return captions;
}

String CaptionsScript(support::State& state, const Captions& captions) {
    auto list = std::make_shared<Collection>();
    for (const CaptionTrack& track : captions.tracks) {
        auto entry = std::get<std::shared_ptr<Dictionary>>(JSON::ParseJson(state, u"{}"));
        entry->Add(u"lang", track.language);
        entry->Add(u"label", String());
        entry->Add(u"text", track.webVtt);
        list->Add(entry);
    }
    return u"var captions = " + JSON::ToJsonText(list) + u";\n";
}

}  // namespace kestrum::publish
