// Writing a project file: into the tree, through the line-break pass, to a ".tmp", and onto the name only if that is
// whole.
#include <limits>
#include <string>

#include "project/CProjectFile.h"
#include "project/modKspXml.h"
#include "support/modGlobal.h"
#include "support/modLog.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

/// A shorter file is a failed write.
constexpr std::int64_t kShortestFile = 500;

/// Of an entry without a place in the media.
constexpr std::int32_t kNoPosition = -1;

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
    enum class Form { Whole, Reduced, Mended };

    Writer(CProjectFile& project, Form form) : p(project), m_c(project.m_c), m_form(form) {}

    bool Run(const String& file) {
        p.m_writtenTo.clear();
        try {
            WriteAbstract();
            WriteConfigure();
            if (m_form != Form::Reduced) WriteScreen();
            if (m_form != Form::Reduced) WriteScipInfo();
            WriteIndex();
            StoreDocument(file);
        } catch (const host::Error& error) {
            m_c.host.trace.Skipped(error);
            if (m_form != Form::Mended) modLog::ShowStepError(m_c, error.Description(), u"ksp.Save");
        }
        return m_result;
    }

  private:
    void Step(StringView label) const { m_c.support.currentStep = label; }
    modXml::Node Found(StringView path) const { return modKspXml::SelectXmlPath(*p.m_document, path); }
    modXml::Node Node(StringView path) const {
        return m_form == Form::Mended ? modKspXml::MakeXmlPath(*p.m_document, path) : Found(path);
    }
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

    /// The attribute has whatever name the file gives it; one that has to be made gets that of the template.
    void WriteFirstAttribute(StringView path, StringView nameIfMissing, const String& value) const {
        modXml::Node node = Node(path);
        if (m_form == Form::Mended && node.AttributeCount() == 0) node.SetAttribute(nameIfMissing, u"");
        node.SetAttributeAt(0, value);
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
        WriteFirstAttribute(u"project.configure.photo", u"size", p.photoSize);
        Write(u"project.configure.sound", p.sound);
        WriteFirstAttribute(u"project.configure.sound", u"volume", p.soundVolume);
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

    /// A stray second index would be the first one afterwards, and be read instead of what is written here.
    modXml::Node RecreateIndexNode() const {
        Step(u"RemoveIndexNode");
        modXml::Node project = Node(u"project");
        Step(u"RemoveChild");
        while (const modXml::Node old = Found(u"project.index")) project.Remove(old);
        Step(u"CreateElement index");
        modXml::Node index = CreateChildElement(project, u"index", u"", u"duration", p.durationText);
        index.SetAttribute(u"type", p.indexType);
        return index;
    }

    /// A duration that cannot be read ends a Save; the last attempt rather keeps every entry.
    std::int32_t EndOfMedia() const {
        try {
            return p.duration();
        } catch (const host::Error&) {
            if (m_form != Form::Mended) throw;
            return std::numeric_limits<std::int32_t>::max();
        }
    }

    /// Entries at or beyond the media's end go, from the file and from memory; links have no place in the media and
    /// stay.
    void WriteIndex() {
        const modXml::Node index = RecreateIndexNode();
        const std::int32_t end = EndOfMedia();
        const auto isBeyond = [&](const CIndexItem& item) {
            const std::int32_t pos = p.m_dropBeyondEnd ? ToInt32(item.pos) : kNoPosition;
            return pos > kNoPosition && pos >= end;
        };
        for (const CIndexItem& item : p.index) {
            Step(u"index.item(i)");
            if (!isBeyond(item)) WriteItem(index, item);
        }
        p.index.RemoveIf(isBeyond);
    }

    static void WriteItem(const modXml::Node& index, const CIndexItem& item) {
        const modXml::Node element = CreateChildElement(index, u"item", u"");
        CreateChildElement(element, u"title", modGlobal::StripControlChars(item.title));
        CreateChildElement(element, u"recdate", item.RecDate);
        CreateChildElement(element, u"pos", item.pos);
        if (!item.Url.empty()) CreateChildElement(element, u"url", item.Url);
        if (!item.size.empty()) CreateChildElement(element, u"size", item.size);
    }

    void StoreDocument(const String& file) {
        Step(u"prepare xmlBuf");
        std::string bytes = modKspXml::BreakLines(p.m_document->Bytes());
        if (m_form == Form::Reduced) {
            RemoveAllOf(bytes, "<project>");
            RemoveAllOf(bytes, "</project>");
        }
        Step(u"LoadXML xmlBuf");
        p.m_document = std::make_shared<modXml::Document>(modXml::Document::ParseBytes(bytes));
        Step(u"Save FileName");
        const String fresh = file + u".tmp";
        FinishMove(fresh, file);
        m_c.host.fs.WriteFile(fresh, bytes);
        Replace(file, fresh);
    }

    /// A move that failed left the only whole text under the ".tmp": it must not be written over.
    void FinishMove(const String& fresh, const String& file) const {
        if (p.m_unmoved != fresh) return;
        host::IFileSystem& fs = m_c.host.fs;
        if (fs.FileExists(fresh) && !fs.FileExists(file)) fs.MoveFile(fresh, file);
        p.m_unmoved.clear();
    }

    void Replace(const String& file, const String& fresh) {
        if (modGlobal::GetFileSizeBytes(m_c, fresh) < kShortestFile) {
            Refuse(u"Save 'project.ksp' error!");
            return;
        }
        p.m_writtenTo = fresh;
        if (!modGlobal::SafeDeleteFile(m_c, file))
            Refuse(u"Save 'project.ksp' error! The updated project is saved as 'project.ksp.tmp'");
        else if (modGlobal::SafeMoveFile(m_c, fresh, file, true))
            p.m_writtenTo = file;
        else
            p.m_unmoved = fresh;
    }

    void Refuse(const String& text) {
        if (m_form != Form::Mended) modMsgBox::MsgBox(m_c, text);
        m_result = false;
    }

    CProjectFile& p;
    const support::Context& m_c;
    const Form m_form;
    bool m_result = true;
};

bool CProjectFile::Save(const String& file) {
    return Writer(*this, Writer::Form::Whole).Run(file.empty() ? fileName : file);
}

void CProjectFile::SaveMended() {
    Writer(*this, Writer::Form::Mended).Run(fileName);
}

bool CProjectFile::SaveToXml(const String& file) {
    return Writer(*this, Writer::Form::Reduced).Run(file);
}

}  // namespace kestrum
