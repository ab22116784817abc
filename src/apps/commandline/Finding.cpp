#include "apps/commandline/Finding.h"

#include <algorithm>

#include "apps/commandline/Texts.h"

namespace kestrum::app {

const std::vector<FindingText>& FindingTexts() {
    using Kind = FindingKind;
    static const std::vector<FindingText> kTexts = {
        {Kind::FrontDamaged, "front_damaged", false, u"msgVfyFront",
         u"The beginning of the file is damaged: what lies in it cannot be told any more.",
         u"The lecture cannot be opened. The sound and pictures behind the damage may still be there.",
         u"Nothing; copy the file from where it came from once more, or keep it for a rescue by hand."},
        {Kind::StoredFilesDamaged, "stored_files_damaged", false, u"msgVfyFiles",
         u"The stored files (project file, index, pictures) are damaged.",
         u"The lecture cannot be opened in Kestrum; its sound and pictures play in any player.",
         u"Nothing; sound and pictures are left as they are."},
        {Kind::KeyFrameListDamaged, "key_frame_list_damaged", true, u"msgVfyCues",
         u"The list of key frames at the end of the file is damaged.",
         u"Players may not find a slide's place; sound and pictures are all there.",
         u"Writes the list anew from the recording itself."},
        {Kind::MediaDamaged, "media_damaged", false, u"msgVfyMedia",
         u"The recording is damaged from %s1 to %s2 (%s3 bytes).",
         u"There the picture or the sound may be wrong or missing; everything else plays.",
         u"Nothing; what was recorded there cannot be brought back, and what is left of it stays."},
        {Kind::CutOff, "cut_off", true, u"msgVfyCut", u"The file ends at %s1, but the lecture was %s2 long.",
         u"The rest of the recording is not in this file: it was cut off, in copying perhaps.",
         u"Makes a whole package of what is there; compare with the original first."},
        {Kind::Interrupted, "interrupted", true, u"msgVfyInterrupted",
         u"The recording did not come to its end: %s1 of it are in the file.",
         u"A crash or a power failure ended it; nothing that reached the disk is lost.",
         u"Finishes the package: every piece that was recorded, with all entries of the index."},
        {Kind::Unfinished, "unfinished", true, u"msgVfyUnfinished",
         u"The traces of a recording that did not end lie beside the package.",
         u"The next command that opens the lecture would check and finish it first.",
         u"Checks and finishes it now, and takes the traces away."},
        {Kind::Unsaved, "unsaved", true, u"msgVfyUnsaved",
         u"A project file that could not be stored lies beside the package.",
         u"The index in the package may be older than that one.",
         u"Stores the newer of the two; a copy of the other is kept."},
        {Kind::NoProject, "no_project", false, u"msgVfyNoProject", u"The package holds no project file.",
         u"There is a recording, but no index and no title: players show it as one piece.",
         u"Nothing; record into the lecture once more, or publish it from its presentation."},
        {Kind::ProjectUnreadable, "project_unreadable", false, u"msgVfyProjectXml",
         u"The project file in the package cannot be read: %s1",
         u"The lecture cannot be opened in Kestrum. Its sound and pictures are whole, and players still show the "
         u"slides as chapters.",
         u"Nothing; the file stays as it is, so that it can be mended by hand."},
        {Kind::ProjectVersion, "project_version", false, u"msgVfyProjectVersion",
         u"The project file in the package has version \"%s1\"; this program reads version 8.",
         u"The lecture cannot be opened with this version of Kestrum.",
         u"Nothing; open the lecture with the version that recorded it."},
        {Kind::IndexShifted, "shifted", true, u"msgVfyIndexShifted",
         u"All entries of the index lie %s1 ms away from their slides.", u"Every jump goes to the wrong moment.",
         u"Moves them back to the key frames where their slides begin."},
        {Kind::EntryShifted, "shifted", true, u"msgVfyShifted",
         u"Entry %s1 \"%s2\" lies at %s3; its slide begins at %s4.", u"The jump to it goes to the wrong moment.",
         u"Moves it back to where the chapters of the package have it."},
        {Kind::StartMissing, "missing", true, u"msgVfyStart",
         u"The index begins at %s1; no entry stands for what was recorded before.",
         u"The beginning of the lecture cannot be jumped to.", u"Puts an entry \"----\" at the beginning."},
        {Kind::EntryMissing, "missing", true, u"msgVfyMissing",
         u"The entry \"%s1\" at %s2 is missing: the chapters of the package have it, the index does not.",
         u"The slide cannot be jumped to and is not found by a search.", u"Takes it over into the index."},
        {Kind::EntryTwice, "duplicate", true, u"msgVfyTwice", u"Entry %s1 \"%s2\" at %s3 is there twice.",
         u"The same slide is listed a second time.", u"Takes the second one out; nothing is lost with it."},
        {Kind::PlaceTwice, "duplicate", false, u"msgVfyPlaceTwice",
         u"Entry %s1 \"%s2\" stands at %s3, where another entry stands already.",
         u"Only one of the two slides can be the one that is seen there.",
         u"Nothing; which of the two is right only a person can tell."},
        {Kind::Unsorted, "unsorted", true, u"msgVfyUnsorted",
         u"Entry %s1 \"%s2\" at %s3 stands behind an entry that comes later in the recording.",
         u"The lecture opens only with a question, and the entry would be dropped.",
         u"Puts the entries into the order of the recording; none is dropped."},
        {Kind::PastEnd, "past_end", true, u"msgVfyPastEnd",
         u"Entry %s1 \"%s2\" lies at %s3, at or behind the end of the recording (%s4).",
         u"Nothing was recorded there, so that the jump to it leads nowhere.",
         u"Takes the entry out of the index; it stays in the copy that is kept."},
        {Kind::NotOnKeyFrame, "not_on_key_frame", true, u"msgVfyOffKey",
         u"Entry %s1 \"%s2\" lies at %s3, where the recording has no key frame; the one before is at %s4.",
         u"A player cannot begin there and shows another moment.",
         u"Takes the entry out of the index; it stays in the copy that is kept."},
        {Kind::PositionUnreadable, "position_unreadable", false, u"msgVfyPosition",
         u"Entry %s1 \"%s2\" has the position \"%s3\", which is no number.",
         u"The lecture opens only with a question, and the entry would be dropped.",
         u"Nothing; where the slide belongs only a person can tell."},
        {Kind::Duration, "duration", true, u"msgVfyDuration",
         u"The project notes a length of %s1; the recording is %s2 long.",
         u"Entries behind the noted length would be dropped, and players show the wrong length.",
         u"Notes the length of the recording."},
    };
    return kTexts;
}

const FindingText& TextOf(FindingKind kind) {
    const auto& texts = FindingTexts();
    return *std::find_if(texts.begin(), texts.end(), [&](const FindingText& text) { return text.kind == kind; });
}

String WhatOf(const support::Context& c, const Finding& finding) {
    const FindingText& text = TextOf(finding.kind);
    return Sentence(c, text.key, text.what, finding.values);
}

String MeansOf(const support::Context& c, const Finding& finding) {
    const FindingText& text = TextOf(finding.kind);
    return Sentence(c, String(text.key) + u"Means", text.means, finding.values);
}

String RepairOf(const support::Context& c, const Finding& finding) {
    const FindingText& text = TextOf(finding.kind);
    return Sentence(c, String(text.key) + u"Repair", text.repair, finding.values);
}

}  // namespace kestrum::app
