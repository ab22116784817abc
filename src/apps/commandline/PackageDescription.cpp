#include "apps/commandline/PackageDescription.h"

#include <algorithm>
#include <set>

#include "apps/commandline/Diagnosis.h"
#include "apps/commandline/Scratch.h"
#include "project/CTime.h"
#include "support/Collection.h"
#include "support/Dictionary.h"
#include "support/modXml.h"

namespace kestrum::app {
namespace {

[[noreturn]] void Fail(const String& sentence) {
    throw host::Error(host::ErrorNumber::FileNotFound, u"info", sentence);
}

/// The positions in the text that ListIndex writes.
std::set<std::int64_t> KeyFrames(const support::Context& c, const String& package, const String& listFile) {
    std::set<std::int64_t> positions;
    if (c.host.ksLib.ListIndex(package, listFile) < 0 || !c.host.fs.FileExists(listFile)) return positions;
    for (const String& line : modGlobal::Split(host::FromUtf8(c.host.fs.ReadFile(listFile)), u"\n")) {
        const String number = modGlobal::Trim(modGlobal::Replace(line, u"\r", u""));
        if (!number.empty()) positions.insert(static_cast<std::int64_t>(Val(number)));
    }
    return positions;
}

String TextAt(const modXml::Node& node, StringView path) {
    const modXml::Node found = node.Select(path);
    return found ? found.Text() : String();
}

void ReadProject(const support::Context& c, const String& file, PackageDescription& description) {
    const modXml::Document document = modXml::Document::ParseBytes(c.host.fs.ReadFile(file));
    const modXml::Node project = document.Root().Child(u"project");
    if (!project) Fail(Sentence(c, u"msgNoProject", u"The package holds no project file that can be read."));
    description.title = TextAt(project, u"abstract/title");
    description.author = TextAt(project, u"abstract/author");
    const modXml::Node index = project.Child(u"index");
    if (!index) return;
    for (const modXml::Node& item : index.Children()) {
        EntryDescription entry;
        entry.pos = static_cast<std::int64_t>(Val(TextAt(item, u"pos")));
        entry.title = TextAt(item, u"title");
        entry.date = TextAt(item, u"recdate");
        entry.url = TextAt(item, u"url");
        description.index.push_back(std::move(entry));
    }
}

/// A number of any size in the writer's terms.
Value NumberValue(std::int64_t number) {
    return static_cast<double>(number);
}

Value ToJson(const EntryDescription& entry) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"pos_ms", NumberValue(entry.pos));
    object->Add(u"title", entry.title);
    object->Add(u"date", entry.date);
    object->Add(u"url", entry.url);
    object->Add(u"key_frame", entry.keyFrame);
    return object;
}

Value ToJson(const StoredFileDescription& file) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"name", file.name);
    object->Add(u"size", NumberValue(file.size));
    return object;
}

template <class Items>
Value ListOf(const Items& items) {
    auto list = std::make_shared<Collection>();
    for (const auto& item : items) list->Add(ToJson(item));
    return list;
}

String NumberText(std::int64_t number) {
    return host::FromUtf8(std::to_string(number));
}

String NoProjectSentence(const support::Context& c) {
    return Sentence(c, u"msgNoProject", u"The package holds no project file that can be read.");
}

bool HasDamage(const host::PackageInspection& file, host::DamageKind kind) {
    return std::any_of(file.damages.begin(), file.damages.end(),
                       [&](const host::PackageDamage& damage) { return damage.kind == kind; });
}

/// Throws the sentence about a file that cannot be described.
void RequireReadable(const support::Context& c, const host::PackageInspection& file, const String& path) {
    if (const auto refusal = RefusalOf(c, file, path)) Fail(*refusal);
    for (const FindingKind kind : {FindingKind::FrontDamaged, FindingKind::StoredFilesDamaged}) {
        const bool front = kind == FindingKind::FrontDamaged;
        const Finding finding{kind, 0, -1, {}, {}};
        if (HasDamage(file, front ? host::DamageKind::Front : host::DamageKind::StoredFiles))
            Fail(WhatOf(c, finding) + u" " + MeansOf(c, finding));
    }
    if (!file.hasProject) Fail(NoProjectSentence(c));
}

void TellState(const support::Context& c, const host::PackageInspection& file, PackageDescription& description) {
    switch (file.state) {
        case host::PackageState::Recording:
            description.state = u"recording";
            description.stateText = Sentence(c, u"msgStateRecording", u"It is being recorded at the moment.");
            break;
        case host::PackageState::Interrupted:
            description.state = u"interrupted";
            description.stateText = Sentence(c, u"msgStateInterrupted",
                                             u"The recording did not come to its end, or the file was cut off; "
                                             u"what is shown is what is there. kestrum verify tells more.");
            break;
        case host::PackageState::Damaged:
            description.state = u"damaged";
            description.stateText =
                Sentence(c, u"msgStateDamaged", u"The file is damaged. kestrum verify tells where.");
            break;
        case host::PackageState::Sound:
        case host::PackageState::Foreign:
        case host::PackageState::Missing:
            description.state = u"whole";
            break;
    }
}

}  // namespace

PackageDescription Describe(const support::Context& c, host::IPackageInspector& inspector, const String& path) {
    const host::PackageInspection file = inspector.Inspect(path, false, nullptr);
    RequireReadable(c, file, path);
    const Scratch scratch(c, u"_ksinfo_");
    const host::StoredFiles files{scratch.File(u"project.ksp"), scratch.File(u"cursor.gif"), scratch.File(u"photo.gif"),
                                  scratch.File(u"inteIndex.txt")};
    if (c.host.ksLib.GetExtendDataFromProject(path, files) < 0) Fail(NoProjectSentence(c));
    PackageDescription description;
    description.durationMs = c.host.ksLib.GetLength(path);
    c.host.ksLib.GetFileHeaderDim(path, description.width, description.height);
    for (const String& stored : {files.projectFile, files.cursorImage, files.photo, files.indexText}) {
        if (!c.host.fs.FileExists(stored)) continue;
        description.storedFiles.push_back({modGlobal::FileNameOf(c, stored), c.host.fs.FileSize(stored)});
    }
    ReadProject(c, files.projectFile, description);
    const std::set<std::int64_t> keyFrames = KeyFrames(c, path, scratch.File(u"media.key"));
    for (EntryDescription& entry : description.index) entry.keyFrame = keyFrames.contains(entry.pos);
    TellState(c, file, description);
    return description;
}

Value ToJson(const PackageDescription& description) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"title", description.title);
    object->Add(u"author", description.author);
    object->Add(u"duration_ms", NumberValue(description.durationMs));
    object->Add(u"width", NumberValue(description.width));
    object->Add(u"height", NumberValue(description.height));
    object->Add(u"stored_files", ListOf(description.storedFiles));
    object->Add(u"index", ListOf(description.index));
    object->Add(u"state", description.state);
    object->Add(u"state_text", description.stateText);
    return object;
}

String ToText(const PackageDescription& description) {
    const String state = description.stateText.empty() ? String() : u"state:    " + description.stateText + u"\n";
    String text = state + u"title:    " + description.title + u"\nauthor:   " + description.author + u"\nlength:   " +
                  CTime::GetString(description.durationMs, u"sec") + u"\npicture:  " + NumberText(description.width) +
                  u"x" + NumberText(description.height) + u"\nstored:   ";
    for (const StoredFileDescription& file : description.storedFiles) {
        if (&file != &description.storedFiles.front()) text += u", ";
        text += file.name + u" (" + NumberText(file.size) + u" bytes)";
    }
    text += u"\nindex:\n";
    for (const EntryDescription& entry : description.index) {
        const String time = entry.pos < 0 ? u"-" : CTime::GetString(static_cast<std::int32_t>(entry.pos), u"sec");
        text += String(std::size_t{10} - std::min<std::size_t>(time.size(), 9), u' ') + time + u"  " + entry.title +
                (entry.pos < 0 || entry.keyFrame ? u"" : u"  (not at a key frame)") + u"\n";
    }
    return text;
}

}  // namespace kestrum::app
