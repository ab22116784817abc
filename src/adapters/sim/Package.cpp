#include "adapters/sim/Package.h"

#include <sstream>

namespace kestrum::sim {

namespace {

constexpr char kMagic[] = "package-of-the-scripted-world";

// name, length of the value in bytes, the value
void Put(std::ostringstream& out, const std::string& name, const std::string& value) {
    out << name << ' ' << value.size() << '\n' << value << '\n';
}

}  // namespace

std::string Package::ToBytes() const {
    std::ostringstream out;
    out << kMagic << '\n';
    std::ostringstream numbers;
    numbers << lengthMs << ' ' << width << ' ' << height << ' ' << torn << ' ' << damaged << ' ' << ectState << ' '
            << formatVersion << ' ' << videoAttribute << ' ' << audioBitrate << ' ' << optimizeLevel;
    Put(out, "numbers", numbers.str());
    std::ostringstream keys;
    for (std::int32_t key : keyFrames) keys << key << ' ';
    Put(out, "keys", keys.str());
    Put(out, "journal", journal);
    for (const auto& [name, value] : stored) Put(out, "stored." + name, value);
    return out.str();
}

std::optional<Package> Package::FromBytes(const std::string& bytes) {
    std::istringstream in(bytes);
    std::string line;
    if (!std::getline(in, line) || line != kMagic) return std::nullopt;
    Package package;
    std::string name;
    std::size_t size = 0;
    while (in >> name >> size) {
        in.get();
        std::string value(size, '\0');
        if (!in.read(value.data(), static_cast<std::streamsize>(size))) return std::nullopt;
        std::istringstream words(value);
        if (name == "numbers") {
            words >> package.lengthMs >> package.width >> package.height >> package.torn >> package.damaged >>
                package.ectState >> package.formatVersion >> package.videoAttribute >> package.audioBitrate >>
                package.optimizeLevel;
        } else if (name == "keys") {
            for (std::int32_t key = 0; words >> key;) package.keyFrames.push_back(key);
        } else if (name == "journal") {
            package.journal = value;
        } else {
            package.stored[name.substr(std::string("stored.").size())] = value;
        }
    }
    return package;
}

}  // namespace kestrum::sim
