// Path and file routines of modGlobal.

#include <algorithm>

#include "host/ResumeNext.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modGlobal {
namespace {

constexpr double kBytesPerMB = 1024.0 * 1024.0;
/// What a network path answers: just enough.
constexpr std::int64_t kNetworkFreeMB = 101;

bool HasDriveLetters(const support::Context& c) {
    return c.host.fs.Separator() == u'\\';
}

/// Where the last component's separator stands. Where paths have backslashes a slash separates too, whatever wrote it.
std::size_t LastSeparator(const support::Context& c, StringView path) {
    return HasDriveLetters(c) ? path.find_last_of(u"\\/") : path.rfind(c.host.fs.Separator());
}

/// Runs `statement`; false, with a trace, if it failed.
template <class Statement>
bool Attempt(const support::Context& c, Statement&& statement) {
    return host::ResumeNext{c.host.trace}(std::forward<Statement>(statement));
}

}  // namespace

String CollapseSeparators(const support::Context& c, StringView path) {
    const char16_t separator = c.host.fs.Separator();
    String out;
    for (const char16_t unit : path) {
        const bool networkMark = out.size() == 1 && c.host.fs.IsNetworkPath(String(path));
        const bool doubled = unit == separator && !out.empty() && out.back() == separator;
        if (!doubled || networkMark) out += unit;
    }
    return out;
}

String Join(const support::Context& c, StringView folder, StringView name) {
    if (folder.empty()) return String(name);
    const char16_t separator = c.host.fs.Separator();
    String path(folder);
    if (path.back() != separator) path += separator;  // the root must not turn into a network path
    return CollapseSeparators(c, path + String(name.substr(std::min(name.find_first_not_of(separator), name.size()))));
}

String FileNameOf(const support::Context& c, StringView path) {
    const std::size_t separator = LastSeparator(c, path);
    return String(separator == StringView::npos ? path : path.substr(separator + 1));
}

String FolderOf(const support::Context& c, StringView path) {
    const std::size_t separator = LastSeparator(c, path);
    if (separator == 0) return String(path.substr(0, 1));  // of the root's own entries
    return String(separator == StringView::npos ? StringView() : path.substr(0, separator));
}

String WithoutExtension(const support::Context& c, StringView path) {
    const std::size_t point = FileNameOf(c, path).rfind(u'.');
    if (point == String::npos) return String(path);
    return String(path.substr(0, path.size() - FileNameOf(c, path).size() + point));
}

String BaseOfPresentation(StringView fullName) {
    const std::size_t last4 = fullName.size() - std::min<std::size_t>(fullName.size(), 4);
    const std::size_t cut = LowerCase(fullName.substr(last4)) == u"pptx" ? 5 : 4;
    return String(fullName.substr(0, fullName.size() - std::min(fullName.size(), cut)));
}

String PackagePathOf(StringView fullName) {
    return BaseOfPresentation(fullName) + u".ktr";
}

String DriveNameOf(const support::Context& c, StringView path) {
    return String(HasDriveLetters(c) ? path.substr(0, 2) : path);
}

bool SafeCopyFile(const support::Context& c, const String& source, const String& target) {
    if (!c.host.fs.FileExists(source)) return false;
    return Attempt(c, [&] {
        if (c.host.fs.FileExists(target)) c.host.fs.ClearReadOnly(target);
        c.host.fs.CopyFile(source, target);
    });
}

bool SafeMoveFile(const support::Context& c, const String& source, const String& target, bool silent) {
    if (!c.host.fs.FileExists(source)) {
        if (!silent) modMsgBox::MsgBox(c, u"Move File Error: The source file " + source + u" does not exist");
        return false;
    }
    try {
        if (c.host.fs.FileExists(target)) {
            c.host.fs.ClearReadOnly(target);
            c.host.fs.DeleteFile(target);
        }
        c.host.fs.MoveFile(source, target);
        return true;
    } catch (const host::Error& error) {
        c.host.trace.Skipped(error);
        if (!silent) modMsgBox::MsgBox(c, u"Move File Error:" + error.Description());
        return false;
    }
}

bool SafeDeleteFile(const support::Context& c, const String& path) {
    if (!c.host.fs.FileExists(path)) return true;
    return Attempt(c, [&] { c.host.fs.DeleteFile(path); });
}

bool DeleteFolder(const support::Context& c, const String& path) {
    if (!c.host.fs.FolderExists(path)) return true;
    return Attempt(c, [&] { c.host.fs.DeleteFolder(path); });
}

std::int32_t MakeFolder(const support::Context& c, const String& path) {
    if (!c.host.fs.FolderExists(FolderOf(c, path))) return 1;
    std::int32_t stage = 2;
    Attempt(c, [&] {
        if (c.host.fs.FolderExists(path)) c.host.fs.DeleteFolder(path);
        stage = 3;
        c.host.fs.CreateFolder(path);
        if (c.host.fs.FolderExists(path)) stage = 0;
    });
    return stage;
}

bool EnsureFolder(const support::Context& c, const String& path) {
    const auto text = [&](StringView key) { return modLanguage::GetResString(c, u"frmCommon", key, u""); };
    switch (MakeFolder(c, path)) {
        case 0:
            return true;
        case 1:
            modMsgBox::MsgBox(c, Replace(text(u"msgParentFolderNotExist"), u"%s", path));
            return false;
        case 2:
            modMsgBox::MsgBox(c, text(u"msgDeleteFolder"));
            return false;
        default:
            modMsgBox::MsgBox(c, Replace(text(u"msgCreateFolder"), u"%s", FolderOf(c, path)));
            return false;
    }
}

bool MakeFolderTree(const support::Context& c, const String& path) {
    if (path.empty() || c.host.fs.FolderExists(path)) return true;
    const String parent = FolderOf(c, path);
    if (parent != path && !MakeFolderTree(c, parent)) return false;
    return Attempt(c, [&] { c.host.fs.CreateFolder(path); });
}

std::int64_t GetFileSizeBytes(const support::Context& c, const String& path) {
    return c.host.fs.FileExists(path) ? c.host.fs.FileSize(path) : 0;
}

std::int64_t GetFileSizeKB(const support::Context& c, const String& path) {
    return static_cast<std::int64_t>(RoundHalfEven(static_cast<double>(GetFileSizeBytes(c, path)) / 1024.0));
}

bool TestFolderWritable(const support::Context& c, const String& folder) {
    String probe = Join(c, folder, u"tmp.txt");
    // A user's own file of this name must outlive the test.
    for (int i = 1; c.host.fs.FileExists(probe); ++i) probe = Join(c, folder, u"tmp" + ToText(i) + u".txt");
    return Attempt(c, [&] {
        c.host.fs.WriteFile(probe, "");
        c.host.fs.DeleteFile(probe);
    });
}

std::int64_t GetFreeSpaceMB(const support::Context& c, const String& path) {
    if (c.host.fs.IsNetworkPath(path)) return kNetworkFreeMB;
    const String drive = HasDriveLetters(c) ? path.substr(0, 3) : path;
    return static_cast<std::int64_t>(RoundHalfEven(static_cast<double>(c.host.fs.FreeBytes(drive)) / kBytesPerMB));
}

bool ClearReadOnly(const support::Context& c, const String& folder) {
    return Attempt(c, [&] { c.host.fs.ClearReadOnlyTree(folder); });
}

bool CheckFreeSpace(const support::Context& c, const String& path, double bytesNeeded, bool mayRetry) {
    const double need = bytesNeeded / kBytesPerMB;
    while (static_cast<double>(GetFreeSpaceMB(c, path)) < need) {
        String text = modLanguage::GetResString(c, u"frmCommon", u"msgSpaceNotEnough",
                                                u"There is not enough space on drive \"%s1\"! The free space must "
                                                u"bigger than \"%s2\" MB for this action.");
        text = Replace(text, u"%s1", DriveNameOf(c, path));
        text = Replace(text, u"%s2", FormatPattern(need, u"0"));
        if (!mayRetry) {
            modMsgBox::MsgBox(c, text);
            return false;
        }
        const host::BoxAnswer answer = modMsgBox::MsgBox(c, text, host::BoxButtons::RetryCancel, {});
        if (answer == host::BoxAnswer::Cancel) return false;
    }
    return true;
}

}  // namespace kestrum::modGlobal
