#include "project/Paths.h"

#include "support/modGlobal.h"

namespace kestrum::project {

using modGlobal::CollapseSeparators;
using modGlobal::FileNameOf;
using modGlobal::Join;

String InWorkFolder(const support::Context& c, StringView name) {
    return Join(c, c.support.workFolder, name);
}

String InInstallFolder(const support::Context& c, StringView name) {
    return Join(c, c.host.installFolder, name);
}

String InInstallFolder(const support::Context& c, StringView folder, StringView name) {
    return Join(c, InInstallFolder(c, folder), name);
}

String DefaultCursor(const support::Context& c) {
    return Join(c, Join(c, InInstallFolder(c, u"template", u"default"), u"icons"), u"cursor.gif");
}

String PlayerCursor(const support::Context& c) {
    return Join(c, InWorkFolder(c, u"icons"), u"cursor.gif");
}

String OwnName(const support::Context& c, StringView name, StringView fallback) {
    const String own = FileNameOf(c, name);
    return own.empty() || own == u"." || own == u".." ? String(fallback) : own;
}

String PhotoName(const Context& c) {
    return OwnName(c, c.project.g_Project.photo, u"photo.gif");
}

String PhotoFile(const Context& c) {
    return InWorkFolder(c, PhotoName(c));
}

String RecordingFolder(const support::Context& c) {
    return c.support.packagePath + u"._tmp";
}

String Snapshot(const support::Context& c) {
    return Join(c, RecordingFolder(c), u"media.rec.tmp");
}

String NarrowPackage(const support::Context& c) {
    return CollapseSeparators(c, c.support.packagePath);
}

host::StoredFiles NarrowPaths(const support::Context& c, const host::StoredFiles& files) {
    return {CollapseSeparators(c, files.projectFile), CollapseSeparators(c, files.cursorImage),
            CollapseSeparators(c, files.photo), CollapseSeparators(c, files.indexText)};
}

}  // namespace kestrum::project
