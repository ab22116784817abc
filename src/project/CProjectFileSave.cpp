// Writing a project file: into the tree, through the line-break pass, to a ".tmp", and onto the name only if that is
// whole.
#include <string>
#include <vector>

#include "project/CProjectFile.h"
#include "project/modKspXml.h"
#include "support/modGlobal.h"
#include "support/modLog.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

/// A shorter file is a failed write.
constexpr std::int64_t kShortestFile = 500;

void RemoveAllOf(std::string& text, std::string_view what) {
    std::string kept;
    std::size_t from = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, from)) {
        kept.append(text, from, at - from);
        from = at + what.size();
    }
    text = kept.append(text, from, std::string::npos);
}

}  // namespace

class CProjectFile::Writer {
  public:
    explicit Writer(CProjectFile& project) : p(project), m_c(project.m_c) {}

    bool Run(const String& file, bool reduced) {
        p.m_written = false;
        try {
            WriteAbstract();
            WriteConfigure();
            if (!reduced) WriteScreen();
            if (!reduced) WriteScipInfo();
            WriteIndex();
            StoreDocument(file, reduced);
            p.m_written = m_result;
        } catch (const host::Error& error) {
            modLog::ShowStepError(m_c, error.Description(), u"ksp.Save");
        }
        return m_result;
    }

  private:
    void Step(StringView label) const { m_c.support.currentStep = label; }
    modXml::Node Node(StringView path) const { return modKspXml::SelectXmlPath(*p.m_document, path); }
    void Write(StringView path, const String& text) const { Node(path).SetText(text); }
    void WriteStripped(StringView path, const String& text) const { Write(path, modGlobal::StripControlChars(text)); }

    static modXml::Node CreateChildElement(modXml::Node parent, StringView name, const String& text,
                                           StringView attributeName, const String& attributeValue) {
        modXml::Node child = parent.Append(name);
        if (!attributeName.empty()) child.SetAttribute(attributeName, attributeValue);
        if (!text.empty()) child.SetText(text);
        return child;
    }
    static modXml::Node CreateChildElement(const modXml::Node& parent, StringView name, const String& text) {
        return CreateChildElement(parent, name, text, u"", u"");
    }

    void WriteAbstract() const {
        Step(u"abstract");
        WriteStripped(u"project.abstract.title", p.title);
        WriteStripped(u"project.abstract.author", p.author);
        WriteStripped(u"project.abstract.manager", p.manager);
        WriteStripped(u"project.abstract.company", p.company);
        WriteStripped(u"project.abstract.category", p.category);
        WriteStripped(u"project.abstract.keywords", p.keywords);
        WriteStripped(u"project.abstract.comments", p.comments);
    }

    void WriteConfigure() const {
        Step(u"configure");
        Write(u"project.configure.template", p.template_);
        Write(u"project.configure.photo", p.photo);
        Node(u"project.configure.photo").SetAttributeAt(0, p.photoSize);
        Write(u"project.configure.sound", p.sound);
        Node(u"project.configure.sound").SetAttributeAt(0, p.soundVolume);
        Write(u"project.configure.showcursor", p.showcursor);
        Write(u"project.configure.realcursor", p.realcursor);
        Step(u"configure.profile.audio");
        Write(u"project.configure.profile.audio.bitrate", p.audioBitrate);
        Step(u"configure.profile.video");
        Write(u"project.configure.profile.video.bitrate", p.videoBitrate);
        Write(u"project.configure.profile.video.size", p.videoSize);
        Write(u"project.configure.profile.video.preview", p.videoPreview);
    }

    void WriteScreen() const {
        Step(u"configure.profile.screen");
        Write(u"project.configure.profile.screen.size", p.screenSize);
        Write(u"project.configure.profile.screen.name", modGlobal::EncodeHexText(p.screenName));
    }

    void WriteScipInfo() const {
        try {
            Write(u"project.scipinfo.server.url", p.serverUrl);
            Write(u"project.scipinfo.server.folderID", p.folderID);
            Write(u"project.scipinfo.server.contentID", p.contentID);
        } catch (const host::Error&) {
            CreateScipInfo();
        }
    }

    /// Beside a partly present one, which stays.
    void CreateScipInfo() const {
        Step(u"CreateScipInfo");
        const modXml::Node server =
            CreateChildElement(CreateChildElement(Node(u"project"), u"scipinfo", u""), u"server", u"");
        CreateChildElement(server, u"url", p.serverUrl);
        CreateChildElement(server, u"folderID", p.folderID);
        CreateChildElement(server, u"contentID", p.contentID);
    }

    modXml::Node RecreateIndexNode() const {
        Step(u"RemoveIndexNode");
        modXml::Node project = Node(u"project");
        Step(u"RemoveChild");
        if (const modXml::Node old = Node(u"project.index")) project.Remove(old);
        Step(u"CreateElement index");
        modXml::Node index = CreateChildElement(project, u"index", u"", u"duration", p.durationText);
        index.SetAttribute(u"type", p.indexType);
        return index;
    }

    /// Entries at or beyond the media's end go, from the file and from memory.
    void WriteIndex() {
        const modXml::Node index = RecreateIndexNode();
        const std::int32_t end = p.duration();
        std::vector<std::int32_t> beyond;
        for (std::int32_t i = 1; i <= p.index.Count(); ++i) {
            Step(u"index.item(i)");
            if (p.m_dropBeyondEnd && ToInt32(p.index.Item(i).pos) >= end)
                beyond.push_back(i);
            else
                WriteItem(index, p.index.Item(i));
        }
        for (auto noted = beyond.rbegin(); noted != beyond.rend(); ++noted) p.RemoveIndex(*noted);
    }

    static void WriteItem(const modXml::Node& index, const CIndexItem& item) {
        const modXml::Node element = CreateChildElement(index, u"item", u"");
        CreateChildElement(element, u"title", modGlobal::StripControlChars(item.title));
        CreateChildElement(element, u"recdate", item.RecDate);
        CreateChildElement(element, u"pos", item.pos);
        if (!item.Url.empty()) CreateChildElement(element, u"url", item.Url);
        if (!item.size.empty()) CreateChildElement(element, u"size", item.size);
    }

    void StoreDocument(const String& file, bool reduced) {
        Step(u"prepare xmlBuf");
        std::string bytes = modKspXml::BreakLines(p.m_document->Bytes());
        if (reduced) {
            RemoveAllOf(bytes, "<project>");
            RemoveAllOf(bytes, "</project>");
        }
        Step(u"LoadXML xmlBuf");
        p.m_document = std::make_shared<modXml::Document>(modXml::Document::ParseBytes(bytes));
        Step(u"Save FileName");
        m_c.host.fs.WriteFile(file + u".tmp", bytes);
        ReplaceByTmp(file);
    }

    void ReplaceByTmp(const String& file) {
        if (modGlobal::GetFileSizeBytes(m_c, file + u".tmp") < kShortestFile) {
            Refuse(u"Save 'project.ksp' error!");
        } else if (!modGlobal::SafeDeleteFile(m_c, file)) {
            Refuse(u"Save 'project.ksp' error! The updated project is saved as 'project.ksp.tmp'");
        } else {
            modGlobal::SafeMoveFile(m_c, file + u".tmp", file, true);
        }
    }

    void Refuse(const String& text) {
        modMsgBox::MsgBox(m_c, text);
        m_result = false;
    }

    CProjectFile& p;
    const support::Context& m_c;
    bool m_result = true;
};

bool CProjectFile::Save(const String& file) {
    return Writer(*this).Run(file.empty() ? fileName : file, false);
}

bool CProjectFile::SaveToXml(const String& file) {
    return Writer(*this).Run(file, true);
}

}  // namespace kestrum
