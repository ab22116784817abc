// Reading a project file. Every statement runs under one error path: a failure asks the user whether to go on; if so,
// the field keeps what it held, a broken entry is left out, and what was read is written back at the end.
#include <memory>
#include <utility>
#include <vector>

#include "project/CProjectFile.h"
#include "project/modKspXml.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

/// The user gave up.
struct Cancelled {};

bool IsOneOf(StringView text, std::initializer_list<StringView> texts) {
    for (const StringView one : texts)
        if (text == one) return true;
    return false;
}

}  // namespace

class CProjectFile::Loader {
  public:
    explicit Loader(CProjectFile& project) : p(project), m_c(project.m_c) {}

    bool Run(const String& file) {
        p.fileName = file;
        p.m_document = m_document = std::make_shared<modXml::Document>(Parsed(file));
        SetDefaults();
        if (IsOtherMajorVersion()) return false;
        ReadAbstract();
        ReadConfigure();
        ReadAudio();
        ReadVideo();
        NormaliseVideo();
        ReadScreen();
        ReadScipInfo();
        ReadIndex();
        if (m_dueForSaving) p.Save(u"");
        return true;
    }

  private:
    /// An unreadable document is one without elements: the first value that is read from it asks.
    modXml::Document Parsed(const String& file) const {
        try {
            return modXml::Document::ParseBytes(m_c.host.fs.ReadFile(file));
        } catch (const host::Error& error) {
            m_c.host.trace.Skipped(error);
            return {};
        }
    }

    void Step(StringView label) const { m_c.support.currentStep = label; }

    template <class Statement>
    void Try(Statement&& statement) {
        try {
            std::forward<Statement>(statement)();
        } catch (const host::Error& error) {
            m_c.host.trace.Skipped(error);
            AskToGoOn();
        }
    }

    void AskToGoOn() {
        m_skipItem = true;
        const String text = Res(u"msgKspError") + u" " + m_c.support.currentStep + u"\r\n" + Res(u"msgKspErrorSkip");
        if (modMsgBox::MsgBox(m_c, text, host::BoxButtons::OkCancel, u"Load project.ksp") != host::BoxAnswer::Ok)
            throw Cancelled{};
        if (p.m_document != m_document) throw Cancelled{};  // loaded or saved anew while the box was up
        m_dueForSaving = true;
    }

    String Res(StringView key) const { return modLanguage::GetResString(m_c, u"frmCommon", key, u""); }

    modXml::Node Node(StringView path) const { return modKspXml::SelectXmlPath(*m_document, path); }
    void Read(String& field, StringView path) {
        Try([&] { field = Node(path).Text(); });
    }
    void ReadTrimmed(String& field, StringView path) {
        Try([&] { field = modGlobal::Trim(Node(path).Text()); });
    }
    void ReadFirstAttribute(String& field, StringView path) {
        Try([&] { field = Node(path).AttributeAt(0); });
    }

    /// The duration has no default. It is emptied, so that what another file said is not taken for this one's: entries
    /// beyond the duration are dropped by the next Save.
    void SetDefaults() {
        Step(u"set default value");
        p.durationText = u"";
        p.title = String(modLanguage::kProductName) + u" Title";
        p.author = p.manager = p.company = p.category = p.keywords = p.comments = u"";
        p.template_ = u"default";
        p.photo = u"photo.gif";
        p.photoSize = u"160x120";
        p.sound = u"";
        p.soundVolume = u"3";
        p.showcursor = u"1";
        p.realcursor = u"0";
        p.audioBitrate = u"32";
        p.videoBitrate = u"96";
        p.videoSize = u"";
        p.videoPreview = u"0";
        p.screenName = u"";
        SetUploadDefaults();
        p.indexType = u"OL";
    }

    void SetUploadDefaults() {
        p.serverUrl = p.folderID = u"";
        p.contentID = u"0";
    }

    bool IsOtherMajorVersion() {
        bool other = false;
        Try([&] { p.ver = m_document->Root().AttributeAt(0); });
        Try([&] { other = ToInt32(StringView(p.ver).substr(0, 1)) != kMajorVersion; });
        return other;
    }

    void ReadAbstract() {
        Step(u"abstract");
        Read(p.title, u"project.abstract.title");
        Read(p.author, u"project.abstract.author");
        Read(p.manager, u"project.abstract.manager");
        Read(p.company, u"project.abstract.company");
        Read(p.category, u"project.abstract.category");
        Read(p.keywords, u"project.abstract.keywords");
        Read(p.comments, u"project.abstract.comments");
    }

    void ReadConfigure() {
        Step(u"configure");
        Read(p.template_, u"project.configure.template");
        Read(p.photo, u"project.configure.photo");
        ReadFirstAttribute(p.photoSize, u"project.configure.photo");
        Read(p.sound, u"project.configure.sound");
        ReadFirstAttribute(p.soundVolume, u"project.configure.sound");
        if (Node(u"project.configure.showcursor"))
            Read(p.showcursor, u"project.configure.showcursor");
        else
            AddShowCursor();
        Read(p.realcursor, u"project.configure.realcursor");
    }

    /// A project of an older version gets the element and the player's cursor script.
    void AddShowCursor() {
        Try([&] { Node(u"project.configure").Append(u"showcursor"); });
        const String source =
            modGlobal::Join(m_c, modGlobal::Join(m_c, m_c.host.installFolder, u"encfiles"), u"ksc.js");
        modGlobal::SafeCopyFile(m_c, source, modGlobal::Join(m_c, m_c.support.workFolder, u"ksc.js"));
    }

    void ReadAudio() {
        Step(u"Configure.profile.audio");
        ReadTrimmed(p.audioBitrate, u"project.configure.profile.audio.bitrate");
    }

    void ReadVideo() {
        Step(u"Configure.profile.video");
        ReadTrimmed(p.videoBitrate, u"project.configure.profile.video.bitrate");
        ReadTrimmed(p.videoSize, u"project.configure.profile.video.size");
        Read(p.videoPreview, u"project.configure.profile.video.preview");
    }

    void NormaliseVideo() {
        if (!IsOneOf(p.videoBitrate, {u"96", u"192", u"320"})) {
            p.videoBitrate = p.videoSize == u"320x240" ? u"320" : p.videoSize == u"240x180" ? u"192" : u"96";
            m_dueForSaving = true;
        }
        if (!p.videoSize.empty() && !IsOneOf(p.videoSize, {u"160x120", u"240x180", u"320x240"})) {
            p.videoSize = u"160x120";
            p.videoBitrate = u"96";
            m_dueForSaving = true;
        }
    }

    void ReadScreen() {
        Step(u"Configure.profile.screen");
        ReadTrimmed(p.screenSize, u"project.configure.profile.screen.size");
        if (const modXml::Node name = Node(u"project.configure.profile.screen.name")) {
            Try([&] { p.screenName = modGlobal::DecodeHexText(name.Text()); });
            return;
        }
        p.screenName = u"";
        Try([&] { Node(u"project.configure.profile.screen").Append(u"name"); });
    }

    void ReadScipInfo() {
        try {
            p.serverUrl = modGlobal::Trim(Node(u"project.scipinfo.server.url").Text());
            p.folderID = modGlobal::Trim(Node(u"project.scipinfo.server.folderID").Text());
            p.contentID = modGlobal::Trim(Node(u"project.scipinfo.server.contentID").Text());
        } catch (const host::Error&) {  // never uploaded, or by a version without this part
            SetUploadDefaults();
        }
    }

    void ReadIndex() {
        Step(u"index");
        const modXml::Node index = Node(u"project.index");
        Step(u"index.duration");
        p.indexType = index ? index.Attribute(u"type").value_or(u"OL") : u"OL";
        Try([&] { p.durationText = Required(index.Attribute(u"duration")); });
        p.RemoveIndex(kAllItems);
        m_skipItem = false;
        std::vector<modXml::Node> children;
        Try([&] { children = index.Children(); });
        for (const modXml::Node& child : children) ReadItem(child);
    }

    static String Required(const std::optional<String>& attribute) {
        if (!attribute) throw host::Error(host::ErrorNumber::ObjectNotSet, u"index", u"Attribute not found");
        return *attribute;
    }

    void ReadItem(const modXml::Node& child) {
        Step(u"index.item(i).title");
        Try([&] { m_title = child.Child(u"title").Text(); });
        Step(u"index.item(i).pos");
        Try([&] { m_pos = child.Child(u"pos").Text(); });
        Try([&] { m_number = ToInt32(m_pos); });
        if (m_number > -1) {
            Try([&] { FailIfBefore(m_lastPos); });
            m_lastPos = m_number;
        }
        Step(u"index.item(i).recdate");
        Try([&] { m_recDate = child.Child(u"recdate").Text(); });
        Step(u"index.item(i).url");
        m_url = u"";
        if (m_pos == u"-1") Try([&] { m_url = child.Child(u"url").Text(); });
        if (!std::exchange(m_skipItem, false)) p.AddIndex(m_title, m_pos, m_recDate, m_url, u"", u"", false, 0);
    }

    /// Entries stand in non-decreasing order of position; one that does not is an error like any other.
    void FailIfBefore(std::int32_t lastPos) const {
        if (m_number < lastPos)
            throw host::Error(host::ErrorNumber::DivisionByZero, u"index.item(i).pos", u"Division by zero");
    }

    CProjectFile& p;
    const support::Context& m_c;
    std::shared_ptr<modXml::Document> m_document;
    bool m_dueForSaving = false;
    /// A failure fell into the entry being read; it is left out.
    bool m_skipItem = false;
    std::int32_t m_lastPos = -1;
    // What the entry being read holds; a value that cannot be read keeps that of the entry before.
    String m_title, m_pos, m_recDate, m_url;
    std::int32_t m_number = 0;
};

bool CProjectFile::Load(const String& file) {
    m_dropBeyondEnd = true;
    if (!m_c.host.fs.FileExists(file)) return false;
    try {
        return Loader(*this).Run(file);
    } catch (const Cancelled&) {
        return false;
    }
}

}  // namespace kestrum
