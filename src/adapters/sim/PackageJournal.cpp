// The index journal of the fake package: entries of a recording that came after its project file was stored.
#include <pugixml.hpp>
#include <set>
#include <sstream>

#include "adapters/sim/Package.h"

namespace kestrum::sim {

namespace {

/// Fields of a line, separated by tabs; "\\\\", "\\t", "\\n" and "\\r" in a field stand for themselves.
std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            fields.emplace_back();
        } else if (line[i] != '\\' || i + 1 == line.size()) {
            fields.back() += line[i];
        } else {
            char next = line[++i];
            fields.back() += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
        }
    }
    return fields;
}

void AppendItem(pugi::xml_node index, const std::vector<std::string>& fields) {
    pugi::xml_node item = index.append_child("item");
    item.append_child("title").text().set(fields[2].c_str());
    item.append_child("recdate").text().set(fields[1].c_str());
    item.append_child("pos").text().set(fields[0].c_str());
}

}  // namespace

void Package::MergeJournal() {
    std::istringstream lines(journal);
    journal.clear();
    pugi::xml_document document;
    std::string& project = stored["project"];
    if (!document.load_buffer(project.data(), project.size())) return;
    pugi::xml_node index = document.select_node("//index").node();
    std::set<std::string> known;
    for (pugi::xml_node item : index.children("item")) known.insert(item.child_value("pos"));
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields = Fields(line);
        constexpr std::size_t kFields = 4;
        if (fields.size() >= kFields && !known.count(fields[0])) AppendItem(index, fields);
    }
    std::ostringstream out;
    document.save(out, "", pugi::format_raw);
    project = out.str();
}

}  // namespace kestrum::sim
