#include "apps/commandline/Repair.h"

#include <algorithm>

#include "apps/commandline/Scratch.h"
#include "host/ResumeNext.h"
#include "project/modKspXml.h"
#include "project/modMediaKs.h"
#include "project/modProject.h"

namespace kestrum::app {
namespace {

constexpr std::int64_t kBytesPerMegabyte = 1 << 20;

[[noreturn]] void Fail(const String& sentence) {
    throw host::Error(host::ErrorNumber::Automation, u"verify", sentence);
}

String FreeName(const support::Context& c, const String& base) {
    String name = base;
    for (int number = 2; c.host.fs.FileExists(name); ++number) name = base + host::FromUtf8(std::to_string(number));
    return name;
}

/// The copy has its name only when it is whole.
void CopyWhole(const support::Context& c, const String& source, const String& target) {
    const String part = target + u".tmp";
    try {
        c.host.fs.CopyFile(source, part);
        if (c.host.fs.FileSize(part) != c.host.fs.FileSize(source)) Fail(u"the copy is shorter than the file.");
        c.host.fs.MoveFile(part, target);
    } catch (const host::Error& error) {
        host::ResumeNext{c.host.trace}([&] { c.host.fs.DeleteFile(part); });
        Fail(Sentence(c, u"msgNoCopy",
                      u"The package cannot be copied to \"%s1\" before it is mended (%s2); nothing was changed.",
                      {target, error.Description()}));
    }
}

void CheckRoom(const support::Context& c, const String& package) {
    const std::int64_t needed = c.host.fs.FileSize(package) / kBytesPerMegabyte + 1;
    const std::int64_t free = c.host.fs.FreeBytes(package) / kBytesPerMegabyte;
    if (free > needed) return;
    Fail(Sentence(
        c, u"msgNoRoomForCopy",
        u"Only %s1 MB are free beside the package, but the copy that is kept of it needs %s2 MB; make room, or "
        u"copy the package to another disk and mend it there. Nothing was changed.",
        {ToText(free), ToText(needed)}));
}

void FillItem(modXml::Node item, const IndexEntry& entry) {
    item.Append(u"title").SetText(entry.title);
    item.Append(u"recdate").SetText(entry.date);
    item.Append(u"pos").SetText(entry.pos);
    if (!entry.url.empty()) item.Append(u"url").SetText(entry.url);
}

/// Puts the entries into the project file in the package, through the media library, and nothing else.
void StoreIndex(const support::Context& c, const String& package, const std::vector<IndexEntry>& entries) {
    const Scratch scratch(c, u"_ksverify_");
    const host::StoredFiles files{scratch.File(u"project.ksp"), {}, {}, {}};
    if (c.host.ksLib.GetExtendDataFromProject(package, files) < 0) return;
    modXml::Document document = modXml::Document::ParseBytes(c.host.fs.ReadFile(files.projectFile));
    modXml::Node index = document.Root().Select(u"project/index");
    for (const modXml::Node& item : index.Children()) index.Remove(item);
    for (const IndexEntry& entry : entries) FillItem(index.Append(u"item"), entry);
    modKspXml::SaveXmlPretty(c.host.fs, document, files.projectFile);
    if (c.host.ksLib.SetExtendDataInProject(package, files) < 0)
        Fail(Sentence(c, u"msgNotStored", u"The mended index could not be stored in the package."));
}

/// Opens the project as every command does: its rules bring index and length in step with the recording.
void OpenByTheRules(const project::Context& c, const String& package) {
    const Scratch scratch(c, u"_ksproj_");
    c.support.projectSource = u"KTR";
    c.support.packagePath = package;
    c.support.packageFolder = modGlobal::FolderOf(c, package);
    c.support.workFolder = scratch.Path();
    c.support.projectFileName = u"project.ksp";
    bool continued = false;
    modProject::OpenProject(c, false, continued);
}

void AddNew(const std::vector<Finding>& more, std::vector<Finding>& found) {
    for (const Finding& finding : more) {
        const bool known =
            std::any_of(found.begin(), found.end(), [&](const Finding& other) { return other.IsSame(finding); });
        if (!known) found.push_back(finding);
    }
}

}  // namespace

bool CanMend(const Diagnosis& diagnosis) {
    const auto& findings = diagnosis.findings;
    const bool closed = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.kind == FindingKind::FrontDamaged || finding.kind == FindingKind::StoredFilesDamaged;
    });
    return !closed && std::any_of(findings.begin(), findings.end(),
                                  [](const Finding& finding) { return TextOf(finding.kind).mendable; });
}

String KeepOriginal(const support::Context& c, const String& package) {
    CheckRoom(c, package);
    const String copy = FreeName(c, package + u".before-repair");
    CopyWhole(c, package, copy);
    const String unsaved = UnsavedCopyOf(package);
    if (c.host.fs.FileExists(unsaved)) CopyWhole(c, unsaved, FreeName(c, copy + u".unsaved"));
    return copy;
}

void Mend(const project::Context& c, host::IPackageInspector& inspector, const String& package,
          std::vector<Finding>& found) {
    // A project file that waits beside the package counts by its date: nothing may be written before it is taken up.
    const bool waits = c.host.fs.FileExists(UnsavedCopyOf(package));
    Diagnosis now = Diagnose(c, inspector, package, false, nullptr);
    if (!waits && now.file.state == host::PackageState::Interrupted) {
        modMediaKs::VerifyMedia(c, package, true, false);
        now = Diagnose(c, inspector, package, false, nullptr);
        AddNew(now.findings, found);
    }
    if (!waits && now.readable && now.mend.changed) StoreIndex(c, package, now.mend.entries);
    if (now.file.holdsMedia && now.readable) OpenByTheRules(c, package);
}

}  // namespace kestrum::app
