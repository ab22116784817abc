#include "media/legacy/LegacyProject.h"

#include <algorithm>

#include "media/package/ProjectText.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {

namespace {

/// An element that every project file of today has, below `project`.
struct Element {
    const char* path;
    const char* text;
    const char* attribute;
    const char* value;
};

constexpr Element kElements[] = {
    {"abstract/title", "Kestrum Title", nullptr, nullptr},
    {"abstract/author", "", nullptr, nullptr},
    {"abstract/manager", "", nullptr, nullptr},
    {"abstract/company", "", nullptr, nullptr},
    {"abstract/category", "", nullptr, nullptr},
    {"abstract/keywords", "", nullptr, nullptr},
    {"abstract/comments", "", nullptr, nullptr},
    {"configure/template", "default", nullptr, nullptr},
    {"configure/photo", "photo.gif", "size", "160x120"},
    {"configure/sound", "", "volume", "3"},
    {"configure/showcursor", "1", nullptr, nullptr},
    {"configure/realcursor", "0", nullptr, nullptr},
    {"configure/profile/audio/bitrate", "32", nullptr, nullptr},
    {"configure/profile/audio/codec", "", nullptr, nullptr},
    {"configure/profile/video/bitrate", "96", nullptr, nullptr},
    {"configure/profile/video/size", "", nullptr, nullptr},
    {"configure/profile/video/preview", "0", nullptr, nullptr},
    {"configure/profile/screen/size", "", nullptr, nullptr},
    {"configure/profile/screen/name", "", nullptr, nullptr},
    {"scipinfo/server/url", "", nullptr, nullptr},
    {"scipinfo/server/folderID", "", nullptr, nullptr},
    {"scipinfo/server/contentID", "0", nullptr, nullptr},
    {"index", "", nullptr, nullptr},
};

constexpr const char* kPhoto = "configure/photo";
constexpr const char* kAudio = "configure/profile/audio";

/// "8" and whatever follows the first number; empty for another generation.
std::string UpgradedVersion(const std::string& version) {
    const std::string major = version.substr(0, version.find('.'));
    if (major != "6" && major != "7") return {};
    return "8" + version.substr(major.size());
}

pugi::xml_node RequireChild(pugi::xml_node parent, const std::string& name, bool& made) {
    const pugi::xml_node child = parent.child(name.c_str());
    made = !child;
    return child ? child : parent.append_child(name.c_str());
}

/// The attribute counts by its place: an element that has one keeps it, whatever its name.
void Require(pugi::xml_node project, const Element& element) {
    const std::string path = element.path;
    pugi::xml_node node = project;
    bool made = false;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        node = RequireChild(node, path.substr(begin, end - begin), made);
        begin = end + 1;
    }
    if (made) node.text() = element.text;
    if (element.attribute != nullptr && !node.first_attribute())
        node.append_attribute(element.attribute) = element.value;
}

void RequireDuration(pugi::xml_node index, std::int64_t lengthMs) {
    pugi::xml_attribute duration = index.attribute("duration");
    if (!duration) duration = index.prepend_attribute("duration");
    if (*duration.value() == '\0') duration = DurationText(lengthMs).c_str();
    if (!index.attribute("type")) index.append_attribute("type") = "OL";
}

/// Names come from outside; they count below the folder only.
std::string FileNameOf(const std::string& path) {
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    return name == "." || name == ".." ? std::string() : name;
}

}  // namespace

std::optional<UpgradedProject> UpgradeProject(const Bytes& projectFile, std::int64_t lengthMs) {
    pugi::xml_document document;
    if (!ParseProject(document, projectFile)) return std::nullopt;
    pugi::xml_node root = document.document_element();
    pugi::xml_attribute version = root.first_attribute();
    const std::string upgraded = UpgradedVersion(version.value());
    pugi::xml_node project = root.child("project");
    if (upgraded.empty() || !project) return std::nullopt;
    version = upgraded.c_str();
    for (const Element& element : kElements) Require(project, element);
    project.first_element_by_path(kAudio).remove_attribute("codec");  // that of the old media
    RequireDuration(project.child("index"), lengthMs);
    return UpgradedProject{SerialiseProject(document), FileNameOf(project.first_element_by_path(kPhoto).child_value())};
}

}  // namespace kestrum::media
