#include "adapters/media/ProjectIndex.h"

#include <pugixml.hpp>

namespace kestrum::adapters {

namespace {

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
            case '\\':
                escaped += "\\\\";
                break;
            case '\t':
                escaped += "\\t";
                break;
            case '\n':
                escaped += "\\n";
                break;
            case '\r':
                escaped += "\\r";
                break;
            default:
                escaped += letter;
        }
    }
    return escaped;
}

}  // namespace

std::optional<std::string> ReadProjectIndex(const std::string& path) {
    pugi::xml_document document;
    if (!document.load_file(path.c_str())) return std::nullopt;
    std::string lines;
    const pugi::xml_node index = document.document_element().child("project").child("index");
    for (const pugi::xml_node item : index.children("item")) {
        const char* separator = "";
        for (const char* name : {"pos", "recdate", "title", "url"}) {
            lines += separator + Escaped(item.child_value(name));
            separator = "\t";
        }
        lines += "\n";
    }
    return lines;
}

}  // namespace kestrum::adapters
