#include "adapters/media/AudioQuality.h"

#include <array>
#include <cstdlib>
#include <pugixml.hpp>

namespace kestrum::adapters {
namespace {

struct Step {
    std::int32_t quality;
    std::int32_t kbps;
};
constexpr std::array<Step, 3> kSteps = {{{96, 128}, {64, 96}, {32, 64}}};

}  // namespace

std::int32_t KbpsOfProject(const std::string& projectFile) {
    pugi::xml_document document;
    document.load_file(projectFile.c_str());
    const auto bitrate = document.document_element().first_element_by_path("project/configure/profile/audio/bitrate");
    const int quality = std::atoi(bitrate.text().as_string());
    for (const auto& step : kSteps) {
        if (quality == step.quality) return step.kbps;
    }
    return kSteps.back().kbps;
}

std::int32_t QualityOfKbps(std::int32_t kbps) {
    if (kbps <= 0) return 0;
    for (const auto& step : kSteps) {
        if (kbps >= step.kbps) return step.quality;
    }
    return kSteps.back().quality;
}

}  // namespace kestrum::adapters
