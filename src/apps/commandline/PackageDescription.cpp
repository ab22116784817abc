#include "apps/commandline/PackageDescription.h"

#include <algorithm>
#include <set>

#include "apps/commandline/Texts.h"
#include "project/CTime.h"
#include "support/Collection.h"
#include "support/Dictionary.h"
#include "support/modXml.h"

namespace kestrum::app {
namespace {

using modGlobal::Join;

[[noreturn]] void Fail(const String& sentence) {
    throw host::Error(host::ErrorNumber::FileNotFound, u"info", sentence);
}

/// A scratch folder for as long as the object lives.
class Scratch {
  public:
    explicit Scratch(const support::Context& c) : m_c(c) {
        do {
            m_path = Join(c, c.host.shell.Environment(u"temp"), u"_ksinfo_" + c.host.fs.TemporaryName());
        } while (c.host.fs.FolderExists(m_path) || c.host.fs.FileExists(m_path));
        if (!modGlobal::MakeFolderTree(c, m_path))
            Fail(Sentence(c, u"msgNoScratch", u"The folder \"%s1\" cannot be made.", {m_path}));
    }
    ~Scratch() { modGlobal::DeleteFolder(m_c, m_path); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    String File(StringView name) const { return Join(m_c, m_path, name); }

  private:
    const support::Context& m_c;
    String m_path;
};

/// The positions in the text that ListIndex writes.
std::set<std::int64_t> KeyFrames(const support::Context& c, const String& package, const String& listFile) {
    std::set<std::int64_t> positions;
    if (c.host.ksLib.ListIndex(package, listFile) < 0 || !c.host.fs.FileExists(listFile)) return positions;
    for (const String& line : modGlobal::Split(host::FromUtf8(c.host.fs.ReadFile(listFile)), u"\n")) {
        const String number = modGlobal::Trim(modGlobal::Replace(line, u"\r", u""));
        if (!number.empty()) positions.insert(static_cast<std::int64_t>(Val(number)));
    }
    return positions;
}

String TextAt(const modXml::Node& node, StringView path) {
    const modXml::Node found = node.Select(path);
    return found ? found.Text() : String();
}

void ReadProject(const support::Context& c, const String& file, PackageDescription& description) {
    const modXml::Document document = modXml::Document::ParseBytes(c.host.fs.ReadFile(file));
    const modXml::Node project = document.Root().Child(u"project");
    if (!project) Fail(Sentence(c, u"msgNoProject", u"The package holds no project file that can be read."));
    description.title = TextAt(project, u"abstract/title");
    description.author = TextAt(project, u"abstract/author");
    const modXml::Node index = project.Child(u"index");
    if (!index) return;
    for (const modXml::Node& item : index.Children()) {
        EntryDescription entry;
        entry.pos = static_cast<std::int64_t>(Val(TextAt(item, u"pos")));
        entry.title = TextAt(item, u"title");
        entry.date = TextAt(item, u"recdate");
        entry.url = TextAt(item, u"url");
        description.index.push_back(std::move(entry));
    }
}

/// A number of any size in the writer's terms.
Value NumberValue(std::int64_t number) {
    return static_cast<double>(number);
}

Value ToJson(const EntryDescription& entry) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"pos_ms", NumberValue(entry.pos));
    object->Add(u"title", entry.title);
    object->Add(u"date", entry.date);
    object->Add(u"url", entry.url);
    object->Add(u"key_frame", entry.keyFrame);
    return object;
}

Value ToJson(const StoredFileDescription& file) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"name", file.name);
    object->Add(u"size", NumberValue(file.size));
    return object;
}

template <class Items>
Value ListOf(const Items& items) {
    auto list = std::make_shared<Collection>();
    for (const auto& item : items) list->Add(ToJson(item));
    return list;
}

String NumberText(std::int64_t number) {
    return host::FromUtf8(std::to_string(number));
}

}  // namespace

PackageDescription Describe(const support::Context& c, const String& path) {
    if (!c.host.fs.FileExists(path)) Fail(Sentence(c, u"msgNoPackage", u"There is no package \"%s1\".", {path}));
    if (c.host.ksLib.GetFileFormatVersion(path) == 0) {
        Fail(Sentence(c, u"msgNotAPackage", u"\"%s1\" is not a Kestrum package.", {path}));
    }
    const Scratch scratch(c);
    const host::StoredFiles files{scratch.File(u"project.ksp"), scratch.File(u"cursor.gif"), scratch.File(u"photo.gif"),
                                  scratch.File(u"inteIndex.txt")};
    if (c.host.ksLib.GetExtendDataFromProject(path, files) < 0) {
        Fail(Sentence(c, u"msgNoProject", u"The package holds no project file that can be read."));
    }
    PackageDescription description;
    description.durationMs = c.host.ksLib.GetLength(path);
    c.host.ksLib.GetFileHeaderDim(path, description.width, description.height);
    for (const String& file : {files.projectFile, files.cursorImage, files.photo, files.indexText}) {
        if (!c.host.fs.FileExists(file)) continue;
        description.storedFiles.push_back({modGlobal::FileNameOf(c, file), c.host.fs.FileSize(file)});
    }
    ReadProject(c, files.projectFile, description);
    const std::set<std::int64_t> keyFrames = KeyFrames(c, path, scratch.File(u"media.key"));
    for (EntryDescription& entry : description.index) entry.keyFrame = keyFrames.contains(entry.pos);
    return description;
}

Value ToJson(const PackageDescription& description) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"title", description.title);
    object->Add(u"author", description.author);
    object->Add(u"duration_ms", NumberValue(description.durationMs));
    object->Add(u"width", NumberValue(description.width));
    object->Add(u"height", NumberValue(description.height));
    object->Add(u"stored_files", ListOf(description.storedFiles));
    object->Add(u"index", ListOf(description.index));
    return object;
}

String ToText(const PackageDescription& description) {
    String text = u"title:    " + description.title + u"\nauthor:   " + description.author + u"\nlength:   " +
                  CTime::GetString(description.durationMs, u"sec") + u"\npicture:  " + NumberText(description.width) +
                  u"x" + NumberText(description.height) + u"\nstored:   ";
    for (const StoredFileDescription& file : description.storedFiles) {
        if (&file != &description.storedFiles.front()) text += u", ";
        text += file.name + u" (" + NumberText(file.size) + u" bytes)";
    }
    text += u"\nindex:\n";
    for (const EntryDescription& entry : description.index) {
        const String time = entry.pos < 0 ? u"-" : CTime::GetString(static_cast<std::int32_t>(entry.pos), u"sec");
        text += String(std::size_t{10} - std::min<std::size_t>(time.size(), 9), u' ') + time + u"  " + entry.title +
                (entry.pos < 0 || entry.keyFrame ? u"" : u"  (not at a key frame)") + u"\n";
    }
    return text;
}

}  // namespace kestrum::app
