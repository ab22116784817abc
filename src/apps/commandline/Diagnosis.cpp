#include "apps/commandline/Diagnosis.h"

#include "apps/commandline/Scratch.h"
#include "host/Error.h"
#include "project/CProjectFile.h"
#include "project/CTime.h"
#include "support/modXml.h"

namespace kestrum::app {
namespace {

using host::DamageKind;
using host::FileKind;
using host::PackageState;

constexpr std::int32_t kMinorsPerMajor = 256;
constexpr std::int32_t kGeneration = 8;
constexpr std::int32_t kEncrypted = 1;

String NumberText(std::int64_t number) {
    return host::FromUtf8(std::to_string(number));
}

String VersionText(std::int32_t version) {
    return NumberText(version / kMinorsPerMajor) + u"." + NumberText(version % kMinorsPerMajor);
}

/// The sentence about what is no package.
String ForeignSentence(const support::Context& c, const host::PackageInspection& file, const String& path) {
    switch (file.kind) {
        case FileKind::Missing:
            return Sentence(c, u"msgNoPackage", u"There is no package \"%s1\".", {path});
        case FileKind::Folder:
            return Sentence(c, u"msgIsFolder", u"\"%s1\" is a folder, not a Kestrum package.", {path});
        case FileKind::NoFile:
            return Sentence(c, u"msgIsNoFile", u"\"%s1\" is a pipe or a device, not a Kestrum package.", {path});
        case FileKind::NoPermission:
            return Sentence(c, u"msgNoPermission",
                            u"\"%s1\" may not be read; ask its owner for the right to read it, or copy it as its "
                            u"owner.",
                            {path});
        case FileKind::EmptyFile:
            return Sentence(c, u"msgEmptyFile",
                            u"\"%s1\" is not a Kestrum package: the file is empty, 0 bytes; copy it once more from "
                            u"where it came from.",
                            {path});
        case FileKind::ForeignMatroska:
            return Sentence(c, u"msgForeignMatroska",
                            u"\"%s1\" is not a Kestrum package but a Matroska movie of another program; players show "
                            u"it, Kestrum has no index for it.",
                            {path});
        case FileKind::Foreign:
            return Sentence(c, u"msgNotAPackage", u"\"%s1\" is not a Kestrum package.", {path});
        case FileKind::Unreadable:
        case FileKind::Package:
            break;
    }
    return Sentence(c, u"msgUnreadable", u"\"%s1\" cannot be read: %s2", {path, file.reason});
}

std::optional<String> GenerationSentence(const support::Context& c, std::int32_t version, const String& path) {
    const std::int32_t major = version / kMinorsPerMajor;
    if (major < kGeneration)
        return Sentence(c, u"msgOldGeneration",
                        u"\"%s1\" is a recording of an older generation (format %s2); open its presentation in "
                        u"Kestrum, which offers to convert it.",
                        {path, VersionText(version)});
    if (version > kGeneration * kMinorsPerMajor && version != 0x7FFF)
        return Sentence(c, u"msgNewGeneration",
                        u"\"%s1\" was made by a newer Kestrum (format %s2); upgrade to open it.",
                        {path, VersionText(version)});
    return std::nullopt;
}

void AddDamages(const host::PackageInspection& file, std::vector<Finding>& findings) {
    for (const host::PackageDamage& damage : file.damages) {
        const String begin = PositionText(damage.beginMs), end = PositionText(damage.endMs);
        switch (damage.kind) {
            case DamageKind::Front:
                findings.push_back({FindingKind::FrontDamaged, 0, -1, {}, {}});
                break;
            case DamageKind::StoredFiles:
                findings.push_back({FindingKind::StoredFilesDamaged, 0, -1, {}, {}});
                break;
            case DamageKind::KeyFrameList:
                findings.push_back({FindingKind::KeyFrameListDamaged, 0, -1, {}, {}});
                break;
            case DamageKind::Media:
                findings.push_back(
                    {FindingKind::MediaDamaged, 0, damage.beginMs, {}, {begin, end, NumberText(damage.bytes)}});
                break;
            case DamageKind::CutOff:
                findings.push_back({FindingKind::CutOff, 0, damage.beginMs, {}, {begin, end}});
                break;
        }
    }
}

/// What lies beside the package, and the end that a recording did not have.
void AddInterruption(const support::Context& c, const host::PackageInspection& file, const String& path,
                     std::vector<Finding>& findings) {
    const bool explained = std::any_of(file.damages.begin(), file.damages.end(), [](const auto& damage) {
        return damage.kind == DamageKind::CutOff || damage.kind == DamageKind::KeyFrameList;
    });
    if (file.state == PackageState::Interrupted && !explained)
        findings.push_back({FindingKind::Interrupted, 0, -1, {}, {PositionText(file.lengthMs)}});
    if (c.host.fs.FileExists(SnapshotOf(c, path))) findings.push_back({FindingKind::Unfinished, 0, -1, {}, {}});
    if (c.host.fs.FileExists(UnsavedCopyOf(path))) findings.push_back({FindingKind::Unsaved, 0, -1, {}, {}});
}

String ChildText(const modXml::Node& node, StringView name) {
    const modXml::Node child = node.Child(name);
    return child ? child.Text() : String();
}

struct ProjectIndex {
    std::vector<IndexEntry> entries;
    std::optional<std::int64_t> notedMs;
};

/// Throws host::Error for a text that is no project file.
ProjectIndex ReadIndex(const modXml::Document& document) {
    const modXml::Node index = document.Root().Select(u"project/index");
    if (!index) throw host::Error(host::ErrorNumber::TypeMismatch, u"verify", u"it has no index.");
    ProjectIndex read;
    for (const modXml::Node& item : index.Children())
        read.entries.push_back(
            {ChildText(item, u"pos"), ChildText(item, u"title"), ChildText(item, u"recdate"), ChildText(item, u"url")});
    try {
        read.notedMs = CTime::GetSecond(index.Attribute(u"duration").value_or(u""));
    } catch (const host::Error&) {
        read.notedMs = -1;
    }
    return read;
}

String VersionOf(const modXml::Document& document) {
    return document.Root().AttributeCount() > 0 ? document.Root().AttributeAt(0) : String();
}

void CheckProject(const support::Context& c, const String& projectFile, Diagnosis& diagnosis) {
    const modXml::Document document = modXml::Document::ParseBytes(c.host.fs.ReadFile(projectFile));
    const String version = VersionOf(document);
    if (version.empty() || version.front() != u'0' + CProjectFile::kMajorVersion) {
        diagnosis.findings.push_back({FindingKind::ProjectVersion, 0, -1, {}, {version}});
        return;
    }
    const ProjectIndex project = ReadIndex(document);
    const host::PackageInspection& file = diagnosis.file;
    Recording recording{{file.keyFrames.begin(), file.keyFrames.end()}, file.lengthMs, {}};
    // The chapters are those of the last storing: older than the entries that a recovery brings.
    if (file.state == PackageState::Sound || file.state == PackageState::Damaged) recording.chapters = file.chapters;
    IndexReport report = CheckIndex(project.entries, project.notedMs, recording);
    diagnosis.findings.insert(diagnosis.findings.end(), report.findings.begin(), report.findings.end());
    diagnosis.entries = static_cast<std::int32_t>(project.entries.size());
    diagnosis.mend = std::move(report.mend);
    diagnosis.readable = true;
}

void LookIntoProject(const support::Context& c, const String& path, Diagnosis& diagnosis) {
    const host::PackageInspection& file = diagnosis.file;
    const auto has = [&](DamageKind kind) {
        return std::any_of(file.damages.begin(), file.damages.end(),
                           [&](const auto& damage) { return damage.kind == kind; });
    };
    if (has(DamageKind::Front) || has(DamageKind::StoredFiles)) return;
    if (!file.hasProject) {
        if (file.holdsMedia || file.entriesWait) diagnosis.findings.push_back({FindingKind::NoProject, 0, -1, {}, {}});
        return;
    }
    const Scratch scratch(c, u"_ksverify_");
    const host::StoredFiles files{scratch.File(u"project.ksp"), {}, {}, {}};
    try {
        if (c.host.ksLib.GetExtendDataFromProject(path, files) < 0)
            throw host::Error(host::ErrorNumber::FileNotFound, u"verify", u"it cannot be taken out of the package.");
        CheckProject(c, files.projectFile, diagnosis);
    } catch (const host::Error& error) {
        diagnosis.findings.push_back({FindingKind::ProjectUnreadable, 0, -1, {}, {error.Description()}});
    }
}

}  // namespace

std::optional<String> RefusalOf(const support::Context& c, const host::PackageInspection& file, const String& path) {
    if (file.kind != FileKind::Package) return ForeignSentence(c, file, path);
    if (c.host.ksLib.GetECTState(path) == kEncrypted)
        return Sentence(c, u"msgEncrypted",
                        u"\"%s1\" is encrypted; open its presentation in Kestrum, which decrypts it first.", {path});
    return GenerationSentence(c, file.formatVersion, path);
}

Diagnosis Diagnose(const support::Context& c, host::IPackageInspector& inspector, const String& path, bool everything,
                   const std::function<void(std::int32_t)>& onPercent) {
    Diagnosis diagnosis;
    diagnosis.file = inspector.Inspect(path, everything, onPercent);
    diagnosis.refusal = RefusalOf(c, diagnosis.file, path);
    if (!diagnosis.refusal && diagnosis.file.state == PackageState::Recording)
        diagnosis.refusal = Sentence(c, u"msgIsRecording",
                                     u"\"%s1\" is being recorded or written at the moment; verify it when that has "
                                     u"ended.",
                                     {path});
    if (diagnosis.refusal || diagnosis.file.cancelled) return diagnosis;
    AddDamages(diagnosis.file, diagnosis.findings);
    AddInterruption(c, diagnosis.file, path, diagnosis.findings);
    LookIntoProject(c, path, diagnosis);
    return diagnosis;
}

String SnapshotOf(const support::Context& c, const String& package) {
    return modGlobal::Join(c, package + u"._tmp", u"media.rec.tmp");
}

String UnsavedCopyOf(const String& package) {
    return package + u".unsaved";
}

}  // namespace kestrum::app
