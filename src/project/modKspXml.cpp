#include "project/modKspXml.h"

#include "support/modGlobal.h"

namespace kestrum::modKspXml {
namespace {

String Escaped(StringView text) {
    String escaped;
    escaped.reserve(text.size());
    for (const char16_t unit : text) {
        switch (unit) {
            case u'\\':
                escaped += u"\\\\";
                break;
            case u'\t':
                escaped += u"\\t";
                break;
            case u'\n':
                escaped += u"\\n";
                break;
            case u'\r':
                escaped += u"\\r";
                break;
            default:
                escaped += unit;
        }
    }
    return escaped;
}

}  // namespace

modXml::Node SelectXmlPath(const modXml::Document& document, StringView path) {
    return document.Root() ? document.Root().Select(path, u'.') : modXml::Node();
}

modXml::Node MakeXmlPath(const modXml::Document& document, StringView path) {
    modXml::Node node = document.Root();
    for (const String& name : modGlobal::Split(path, u".")) {
        const modXml::Node child = node.Child(name);
        node = child ? child : node.Append(name);
    }
    return node;
}

std::string BreakLines(const std::string& xml) {
    std::string broken;
    broken.reserve(xml.size() + xml.size() / 8);
    std::size_t from = 0;  // what stands before it is copied
    const auto put = [&](std::size_t end, std::string_view text) {
        broken.append(xml, from, end - from).append(text);
        from = end;
    };
    for (std::size_t i = 0; i < xml.size(); ++i) {
        if (xml[i] == '<' && i > 0 && xml[i - 1] == '>') put(i, "\r\n");
        if (xml[i] != '\r') continue;
        put(i, "&#13;");
        ++from;
    }
    put(xml.size(), "");
    return broken;
}

void SaveXmlPretty(host::IFileSystem& fs, modXml::Document& document, const String& file) {
    const std::string bytes = BreakLines(host::ToUtf8(modGlobal::StripControlChars(document.Xml())));
    document = modXml::Document::ParseBytes(bytes);
    const String fresh = file + u".tmp";
    fs.WriteFile(fresh, bytes);
    if (fs.FileExists(file)) fs.DeleteFile(file);
    fs.MoveFile(fresh, file);
}

String GetXmlText(const modXml::Document& document, StringView path, StringView fallback) {
    const modXml::Node node = SelectXmlPath(document, path);
    return node ? node.Text() : String(fallback);
}

String JournalText(const CProjectFile& project) {
    String journal;
    for (const CIndexItem& item : project.index)
        journal += Escaped(item.pos) + u"\t" + Escaped(item.RecDate) + u"\t" + Escaped(item.title) + u"\t" +
                   Escaped(item.Url) + u"\n";
    return journal;
}

}  // namespace kestrum::modKspXml
