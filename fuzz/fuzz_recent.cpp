// The list of recent packages from any settings: one line per value, the paths and dates of the six places in turn.
#include "Fuzz.h"
#include "adapters/sim/World.h"
#include "project/RecentProjects.h"
#include "support/modGlobal.h"

using namespace kestrum;

namespace {

constexpr char16_t kSection[] = u"lastOpenedProj";
constexpr std::size_t kMost = 6;

/// Stores the lines; the paths that they name exist.
void Fill(sim::World& world, std::string_view input) {
    const std::vector<std::string> lines = fuzz::Parts(input, '\n');
    for (std::size_t i = 0; i < lines.size() && i < 2 * kMost; ++i) {
        const String value = host::FromUtf8(lines[i]);
        const String slot = ToText(static_cast<std::int64_t>(i / 2 + 1));
        world.settings.Set(kSection, i % 2 == 0 ? slot : u"dt" + slot, value);
        const String path = value.starts_with(u"&H") ? modGlobal::DecodeHexText(value) : value;
        if (i % 2 == 0 && path.starts_with(u"/") && path.ends_with(u".ktr")) world.fs.Put(path, "");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    sim::World world;
    ui::Forms forms(world.presenter, world.loop);
    support::State state;
    const support::Context c{world.host(), forms, state};
    Fill(world, fuzz::Bytes(data, size));

    const String path = u"/home/anna/lecture.ktr";
    world.fs.Put(path, "");
    RecentProjects recent(c);
    recent.LoadRecent();
    fuzz::Require(recent.entries().size() <= kMost, "the list has at most six entries");
    recent.AddRecent(path);
    RecentProjects again(c);
    again.LoadRecent();
    fuzz::Require(!again.entries().empty() && again.entries()[0].path == path, "the package added last comes first");
    fuzz::Require(again.entries().size() == recent.entries().size(), "what was written reads back");
    return 0;
}
