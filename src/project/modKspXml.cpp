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

std::string BreakLines(const std::string& xml) {
    std::string broken;
    broken.reserve(xml.size() + xml.size() / 8);
    char before = 0;
    for (const char byte : xml) {
        if (before == '>' && byte == '<') broken += "\r\n";
        if (byte == '\r')
            broken += "&#13;";
        else
            broken += byte;
        before = byte;
    }
    return broken;
}

void SaveXmlPretty(host::IFileSystem& fs, modXml::Document& document, const String& file) {
    const String text = modGlobal::StripControlChars(document.Xml());
    const std::string bytes = BreakLines(modXml::Document::Parse(text).Bytes());
    document = modXml::Document::ParseBytes(bytes);
    fs.WriteFile(file, bytes);
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
