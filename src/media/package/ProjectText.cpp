#include "media/package/ProjectText.h"

#include <sstream>
#include <string_view>

namespace kestrum::media {

namespace {

/// Line breaks inside texts are kept as they stand; blanks between elements are dropped and written anew.
constexpr unsigned kParseMode =
    (pugi::parse_default | pugi::parse_declaration | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype) &
    ~pugi::parse_eol;

}  // namespace

bool ParseProject(pugi::xml_document& document, const Bytes& projectFile) {
    return document.load_buffer(projectFile.data(), projectFile.size(), kParseMode) && document.document_element();
}

Bytes SerialiseProject(const pugi::xml_document& document) {
    std::ostringstream stream;
    document.save(stream, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    const std::string text = stream.str();
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')) {
            for (const char c : std::string_view("&#13;")) bytes.push_back(static_cast<std::uint8_t>(c));
            continue;
        }
        bytes.push_back(static_cast<std::uint8_t>(text[i]));
        if (text[i] != '>' || i + 1 == text.size() || text[i + 1] != '<') continue;
        bytes.push_back('\r');
        bytes.push_back('\n');
    }
    return bytes;
}

}  // namespace kestrum::media
