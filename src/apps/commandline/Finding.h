// What can be wrong with a package, and how it is told: one kind of finding, three sentences (what it is, what it means
// for the lecture, what --repair does about it), and a word that stays the same for scripts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/Context.h"

namespace kestrum::app {

enum class FindingKind {
    // The file
    FrontDamaged,
    StoredFilesDamaged,
    KeyFrameListDamaged,
    MediaDamaged,
    CutOff,
    Interrupted,
    Unfinished,  ///< the traces of a recording that did not end lie beside the package
    Unsaved,     ///< a project file that could not be stored lies beside the package
    NoProject,
    ProjectUnreadable,
    ProjectVersion,
    // The index
    IndexShifted,  ///< every entry by the same time
    EntryShifted,  ///< one entry; the chapters have its place
    StartMissing,  ///< no entry at 0
    EntryMissing,  ///< the chapters have it
    EntryTwice,    ///< the same entry again
    PlaceTwice,    ///< another entry at the same place
    Unsorted,
    PastEnd,
    NotOnKeyFrame,
    PositionUnreadable,
    Duration,
};

/// How a kind is told. "%s1" ... in the sentences stand for the finding's values.
struct FindingText {
    FindingKind kind;
    const char* word;     ///< in the JSON output
    bool mendable;        ///< --repair does something about it
    const char16_t* key;  ///< of the first sentence; the others have "Means" and "Repair" behind it
    const char16_t* what;
    const char16_t* means;
    const char16_t* repair;
};

/// Every kind.
const std::vector<FindingText>& FindingTexts();
const FindingText& TextOf(FindingKind kind);

struct Finding {
    FindingKind kind = FindingKind::FrontDamaged;
    std::int32_t entry = 0;  ///< number in the index from 1; 0: not about one entry
    std::int64_t pos = -1;   ///< ms in the media; -1: none
    String title;            ///< of the entry
    std::vector<String> values;
    bool mended = false;

    /// The same thing, found again.
    bool IsSame(const Finding& other) const {
        return kind == other.kind && title == other.title && (pos == other.pos || entry == 0);
    }
};

/// The three sentences of a finding, from the language file.
String WhatOf(const support::Context& c, const Finding& finding);
String MeansOf(const support::Context& c, const Finding& finding);
String RepairOf(const support::Context& c, const Finding& finding);

}  // namespace kestrum::app
