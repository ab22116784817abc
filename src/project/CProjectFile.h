// The description of one recorded lecture (`project.ksp`) in memory: a flat copy of every value beside the document it
// came from, so that nobody else touches the tree. Decides the file's format, what is corrected on reading, in which
// order it is written, and that a failed write never replaces a whole file.
#pragma once

#include <cstdint>
#include <memory>

#include "host/String.h"
#include "project/IndexItems.h"
#include "support/Context.h"
#include "support/modXml.h"

namespace kestrum {

class CProjectFile {
  public:
    /// The major version of the project format that this program reads and writes.
    static constexpr std::int32_t kMajorVersion = 8;
    /// Item number that makes RemoveIndex remove all.
    static constexpr std::int32_t kAllItems = -99;

    explicit CProjectFile(const support::Context& c);
    CProjectFile(const CProjectFile&) = delete;
    CProjectFile& operator=(const CProjectFile&) = delete;

    String ver;
    String title, author, manager, company, category, keywords, comments;
    /// kbit/s.
    String audioBitrate;
    /// "96", "192" or "320" after a Load.
    String videoBitrate;
    /// Empty (no webcam), "160x120", "240x180" or "320x240" after a Load.
    String videoSize;
    String videoPreview;
    /// Width "x" height of the recording.
    String screenSize;
    /// Name of the recorded monitor.
    String screenName;
    /// The field `template`: name of a folder under the install folder's `template`.
    String template_;
    String photoSize, photo, soundVolume, sound, showcursor, realcursor;
    /// Data of the last upload.
    String serverUrl, folderID, contentID;
    /// The entries, one-based.
    IndexItems index;
    String indexType;
    /// Media length as CTime text.
    String durationText;
    /// The path that the last Load was asked for.
    String fileName;

    /// Media length in ms, from `durationText`; throws host::Error as CTime::GetSecond does.
    std::int32_t duration() const;
    /// Stores `ms` into `durationText`.
    void SetDuration(std::int32_t ms);

    /// Fills the object from the file. False: no such file or another major version (both silently), or the user gave
    /// up. A value that cannot be read asks by a box (re-enters) and keeps what the field held; a bad entry is left
    /// out. Corrections are written back at once.
    bool Load(const String& file);

    /// Appends an entry, or inserts it in front of entry `before` if that is between 1 and the count.
    void AddIndex(String itemTitle, String pos, String recDate, String url, String length, String posEnd, bool selected,
                  std::int32_t before);
    /// Removes entry `i`, all for kAllItems. Throws host::Error 9 outside the list.
    void RemoveIndex(std::int32_t i);
    /// Throws host::Error 9 outside the list.
    void SetTitle(std::int32_t i, String itemTitle);
    /// Overwrites the last entry: title, position and date always, the url if given; the rest is ignored. Throws
    /// host::Error 9 on an empty list.
    void SetLastItem(String itemTitle, String pos, String recDate, String url, const String& length,
                     const String& posEnd, bool selected, std::int32_t before);

    /// Writes the object to `file`, to that of the last Load if empty; either way the name that the last Load was
    /// asked for stays. Once a Load was asked for, entries at or beyond the duration are left out and removed. Never
    /// throws; a failure shows a box (re-enters) and leaves the old or the new file whole, the new one perhaps still
    /// under `file` + ".tmp". False only for a file found too short or an old one that cannot be deleted; an element
    /// that the document lacks is told, and true.
    bool Save(const String& file);

    /// What remains to be tried for an object that Save could not write because its document lacks elements: they are
    /// made, then it is written to the file of the last Load. Silent: Save has told. A document that could not be read
    /// at all is left alone, its file may hold more than the object.
    void SaveMended();

    /// Where the last Save, SaveMended or SaveToXml put its whole text: the name asked for, or that + ".tmp" if it
    /// could not get there. Empty if it is nowhere, and the file older than the object.
    const String& WrittenTo() const { return m_writtenTo; }

    /// Writes the reduced form for the web player. The object is finished afterwards: use an instance of its own.
    bool SaveToXml(const String& file);

  private:
    class Loader;
    class Writer;

    support::Context m_c;
    /// Set by the first Load: from then on entries beyond the media's end are dropped on Save.
    bool m_dropBeyondEnd = false;
    String m_writtenTo;
    /// The ".tmp" that could not be moved to its name and is the only whole text; empty as a rule.
    String m_unmoved;
    /// Shared with a Load that waits for an answer: the object may be loaded or saved anew meanwhile.
    std::shared_ptr<modXml::Document> m_document;
};

}  // namespace kestrum
