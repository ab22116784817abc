// What a package tells of itself: the project file in it, its media, its index. Read through copies in a scratch folder
// that is gone afterwards; the package itself is only read. An interrupted package is described as a recovery would
// leave it.
#pragma once

#include <cstdint>
#include <vector>

#include "host/IPackageInspector.h"
#include "support/Context.h"
#include "support/Value.h"

namespace kestrum::app {

struct StoredFileDescription {
    String name;
    std::int64_t size = 0;  ///< bytes
};

struct EntryDescription {
    std::int64_t pos = 0;  ///< ms; below 0 for an entry without a place in the media
    String title;
    String date;
    String url;
    bool keyFrame = false;
};

struct PackageDescription {
    String title;
    String author;
    std::int32_t durationMs = 0;
    std::int32_t width = 0, height = 0;  ///< 0 without pictures
    std::vector<StoredFileDescription> storedFiles;
    std::vector<EntryDescription> index;
    /// "whole", "recording", "interrupted" or "damaged", as far as head and tail of the file tell.
    String state;
    /// What that means, in a sentence; empty for a whole one.
    String stateText;
};

/// Describes the package at `path`. Throws host::Error with a sentence for the user if that cannot be done: no such
/// file, not a package, of another generation, encrypted, damaged in front, no project file in it.
PackageDescription Describe(const support::Context& c, host::IPackageInspector& inspector, const String& path);

/// The description as a JSON value.
Value ToJson(const PackageDescription& description);

/// The description as lines for people.
String ToText(const PackageDescription& description);

}  // namespace kestrum::app
