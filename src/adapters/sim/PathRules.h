// How the scripted file system writes paths: as Linux does ("/home/anna", "//server/share") or as Windows does
// ("C:\Users\Anna", "\\server\share"): there either slash separates, case does not count, a path without a drive lies
// on the current one, and some characters are in no name. A *normal* path is absolute, has single separators of the
// platform's kind (but for the two in front of a network path) and none at its end; a drive's root is "C:".
#pragma once

#include "host/String.h"

namespace kestrum::sim {

enum class PathStyle { Linux, Windows };

class PathRules {
  public:
    explicit PathRules(PathStyle style) : m_windows(style == PathStyle::Windows) {}

    char16_t Separator() const { return m_windows ? u'\\' : u'/'; }
    /// The root that every desk has.
    String Root() const { return m_windows ? u"C:" : u"/"; }
    bool IsNetworkPath(StringView path) const;
    /// The one writing of a path; a relative one begins at `current`.
    String Normal(StringView path, StringView current) const;
    /// Of a normal path; a root is its own parent.
    String ParentOf(const String& normal) const;
    String NameOf(const String& normal) const;
    bool IsRoot(const String& normal) const;
    /// Two writings of one name.
    bool Same(StringView a, StringView b) const;
    /// Both normal: `path` lies in `folder` or deeper.
    bool IsBelow(StringView path, StringView folder) const;
    /// A file may be called so.
    bool IsName(StringView name) const;

    /// Order of the paths in a map: two writings of one path are the same key.
    struct Less {
        bool foldCase;
        bool operator()(const String& a, const String& b) const;
    };
    Less Order() const { return {m_windows}; }

  private:
    bool IsSeparator(char16_t unit) const { return unit == u'/' || (m_windows && unit == u'\\'); }
    bool HasDrive(StringView path) const;
    String Absolute(StringView path, StringView current) const;

    bool m_windows;
};

}  // namespace kestrum::sim
