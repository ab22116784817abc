#include "project/StoredProject.h"

#include <tuple>

#include "host/ResumeNext.h"
#include "project/Paths.h"
#include "support/modGlobal.h"
#include "support/modXml.h"

namespace kestrum::project {
namespace {

String UnsavedCopy(const support::Context& c) {
    return c.support.packagePath + u".unsaved";
}

bool IsOlder(const host::DateTime& a, const host::DateTime& b) {
    const auto key = [](const host::DateTime& t) {
        return std::make_tuple(t.year, t.month, t.day, t.hour, t.minute, t.second, t.millisecond);
    };
    return key(a) < key(b);
}

/// Puts the copy of a failed store in the place of the older stored file. A package written since is another story.
void PreferUnsavedCopy(const support::Context& c) {
    const String copy = UnsavedCopy(c);
    if (!c.host.fs.FileExists(copy)) return;
    host::ResumeNext{c.host.trace}([&] {
        if (!IsOlder(c.host.fs.FileTime(copy), c.host.fs.FileTime(c.support.packagePath)))
            c.host.fs.CopyFile(copy, InWorkFolder(c, u"project.ksp"));
    });
}

/// Only a whole copy ever bears the name.
bool KeepUnsavedCopy(const support::Context& c, const String& projectFile) {
    const String copy = UnsavedCopy(c), half = copy + u".tmp";
    if (modGlobal::SafeCopyFile(c, projectFile, half) && modGlobal::SafeMoveFile(c, half, copy, true)) return true;
    modGlobal::SafeDeleteFile(c, half);
    return false;
}

/// The cursor lies where it was unpacked until the template files are applied.
String CursorToStore(const support::Context& c) {
    const String cursor = PlayerCursor(c);
    return c.host.fs.FileExists(cursor) ? cursor : InWorkFolder(c, u"cursor.gif");
}

/// Content of a file; empty if it cannot be read.
std::string TextOf(const support::Context& c, const String& file) {
    std::string text;
    host::ResumeNext{c.host.trace}.Set(text, [&] { return c.host.fs.ReadFile(file); });
    return text;
}

bool Fetch(const support::Context& c, const host::StoredFiles& targets) {
    return c.host.ksLib.GetExtendDataFromProject(NarrowPackage(c), NarrowPaths(c, targets)) != -1;
}

bool Store(const support::Context& c, const host::StoredFiles& files) {
    bool stored = false;
    host::ResumeNext{c.host.trace}.Set(
        stored, [&] { return c.host.ksLib.SetExtendDataInProject(NarrowPackage(c), NarrowPaths(c, files)) != -1; });
    return stored;
}

}  // namespace

bool HoldsMedia(const support::Context& c) {
    return c.host.fs.FileExists(c.support.packagePath) && c.host.ksLib.IsEmptyProject(NarrowPackage(c)) == 0;
}

bool Unpack(const Context& c) {
    const host::StoredFiles targets{InWorkFolder(c, u"project.ksp"), InWorkFolder(c, u"cursor.gif"),
                                    InWorkFolder(c, u"photo.gif"), InWorkFolder(c, u"inteIndex.txt")};
    // A second attempt finds a new worker if the first one died. A package that could not be read for a moment must not
    // look like one without files: an older snapshot would take their place.
    if (!Fetch(c, targets) && !Fetch(c, targets)) return false;
    c.project.storedProject = TextOf(c, targets.projectFile);
    PreferUnsavedCopy(c);
    return true;
}

bool StoredByOther(const Context& c) {
    if (c.project.storedProject.empty() || !c.host.fs.FileExists(c.support.packagePath)) return false;
    const String look = InWorkFolder(c, u"project.ksp.now");
    const bool fetched = host::ResumeNext{c.host.trace}.If([&] { return Fetch(c, {look, u"", u"", u""}); });
    const std::string now = fetched ? TextOf(c, look) : std::string();
    modGlobal::SafeDeleteFile(c, look);
    return !now.empty() && now != c.project.storedProject;
}

bool Pack(const Context& c) {
    const host::StoredFiles files{c.project.g_Project.WrittenTo(), CursorToStore(c), PhotoFile(c),
                                  InWorkFolder(c, u"inteIndex.txt")};
    if (!c.host.fs.FileExists(files.projectFile)) return true;
    if (Store(c, files) || Store(c, files)) {
        c.project.storedProject = TextOf(c, files.projectFile);
        modGlobal::SafeDeleteFile(c, UnsavedCopy(c));
        return true;
    }
    c.host.trace.Note(u"The project could not be stored in " + c.support.packagePath);
    return KeepUnsavedCopy(c, files.projectFile);
}

String VersionOf(const support::Context& c, const String& file) {
    String version;
    host::ResumeNext{c.host.trace}.Set(
        version, [&] { return modXml::Document::ParseBytes(c.host.fs.ReadFile(file)).Root().AttributeAt(0); });
    return version;
}

}  // namespace kestrum::project
