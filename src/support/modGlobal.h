// Small routines that all rooms share: paths, files that give a flag instead of failing, texts, times, ticks.
#pragma once

#include "support/Context.h"
#include "support/DateText.h"
#include "support/Numbers.h"

namespace kestrum::modGlobal {

// --- Paths -----------------------------------------------------------------------------------------------------------

/// `folder` + separator + `name` with doubled separators reduced.
String Join(const support::Context& c, StringView folder, StringView name);
/// Doubled separators reduced to one; the two in front of a network path stay.
String CollapseSeparators(const support::Context& c, StringView path);
/// What follows the last separator.
String FileNameOf(const support::Context& c, StringView path);
/// What stands before the last separator; empty without one, the root itself for its own entries.
String FolderOf(const support::Context& c, StringView path);
/// The path without the extension of its last component (from the last point on).
String WithoutExtension(const support::Context& c, StringView path);
/// Full name of a presentation without its extension: 5 characters go if it ends in "pptx" in any case, else 4.
String BaseOfPresentation(StringView fullName);
/// The package of a presentation: its base and ".ktr".
String PackagePathOf(StringView fullName);
/// What to call the drive of a path in a message: its first two characters where drives have letters, else the path.
String DriveNameOf(const support::Context& c, StringView path);

// --- Files. Each gives true on success and keeps failures to itself unless told.
// ---------------------------------------

/// False if the source is missing. Replaces a target, a read-only one too.
bool SafeCopyFile(const support::Context& c, const String& source, const String& target);
/// Replaces a target. Unless `silent`, a failure shows a box (re-enters).
bool SafeMoveFile(const support::Context& c, const String& source, const String& target, bool silent);
/// A missing file counts as success.
bool SafeDeleteFile(const support::Context& c, const String& path);
/// With all content; a missing folder counts as success.
bool DeleteFolder(const support::Context& c, const String& path);
/// Makes an empty folder: one that exists is deleted with all its content first. 0 success, 1 parent missing,
/// 2 deletion failed, 3 creation failed.
std::int32_t MakeFolder(const support::Context& c, const String& path);
/// MakeFolder with a box on failure (re-enters).
bool EnsureFolder(const support::Context& c, const String& path);
/// Makes the folder and all missing parents; keeps what exists.
bool MakeFolderTree(const support::Context& c, const String& path);
/// 0 if missing.
std::int64_t GetFileSizeBytes(const support::Context& c, const String& path);
/// Divided by 1024, rounded; 0 if missing.
std::int64_t GetFileSizeKB(const support::Context& c, const String& path);
/// A file can be made in the folder. Leaves nothing behind and touches no file that is there.
bool TestFolderWritable(const support::Context& c, const String& folder);
/// Free megabytes (of 1024 * 1024), rounded; always 101 for a network path.
std::int64_t GetFreeSpaceMB(const support::Context& c, const String& path);
/// Makes every file below the folder writable.
bool ClearReadOnly(const support::Context& c, const String& folder);
/// True if `bytesNeeded` are free where `path` lies. Otherwise a box, with Retry if `mayRetry` (re-enters).
bool CheckFreeSpace(const support::Context& c, const String& path, double bytesNeeded, bool mayRetry);

// --- Texts -----------------------------------------------------------------------------------------------------------

/// "&H" and two upper-case hexadecimal digits for each byte of the code units, low byte first; empty stays empty.
String EncodeHexText(StringView text);
/// The text of a hexadecimal form. Anything else decodes to an empty text, not to itself.
String DecodeHexText(StringView text);
/// Every `what` in `text` becomes `with`.
String Replace(StringView text, StringView what, StringView with);
/// Without blanks at both ends.
String Trim(StringView text);
/// ASCII letters in lower case.
String LowerCase(StringView text);
/// The pieces between the separators; one empty piece for an empty text.
std::vector<String> Split(StringView text, StringView separator);
/// Without tabs (9) and vertical tabs (11).
String StripControlChars(StringView text);
/// Trimmed, without "http://" anywhere and "https://" in front.
String StripUrlScheme(StringView url);
/// The same, cut at the first "/".
String GetUrlHost(StringView url);
/// For HTML text; "&eq" becomes "=" first.
String HtmlEscape(StringView text);

// --- Times -----------------------------------------------------------------------------------------------------------

/// "1:05:09": hours, minutes, seconds.
String SecondsToText(std::int32_t seconds);
/// The millisecond tick with its sign bit cleared.
std::int32_t GetPositiveTick(host::IEventLoop& loop);
/// Milliseconds between two positive ticks, across a wrap. Error 6 on overflow.
std::int32_t TickDiff(std::int32_t earlier, std::int32_t later);
/// Sections of the settings in which the recorders of a user mark what they do.
constexpr StringView kPowerPointTokens = u"tokens\\PowerPoint";
constexpr StringView kLarkspinTokens = u"tokens\\Larkspin";
/// The heartbeat of owner "PowerPoint" or "Larkspin" is less than 60000 ms old. Error 13 if it is no number.
bool IsTokenFresh(const support::Context& c, StringView owner);
/// The owner has marked a recording, and its heartbeat is fresh. Any failure counts as no.
bool IsRecordingLive(const support::Context& c, StringView owner);
/// Version of the system as major * 10 + minor, 63 for 6.3 and later.
std::int32_t GetOsVersion(const support::Context& c);
/// The user's folder for data that stays on this computer; at most 260 characters, up to the first NUL.
String GetLocalAppDataPath(const support::Context& c);

}  // namespace kestrum::modGlobal
