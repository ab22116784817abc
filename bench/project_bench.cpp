// Loads and saves project files of growing size, beside a plain load and save of the same document with the XML
// library. Both work on bytes in memory: the disk is not measured.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <iterator>
#include <pugixml.hpp>
#include <string>

#include "Places.h"
#include "adapters/sim/World.h"
#include "project/CProjectFile.h"
#include "project/CTime.h"

namespace {

using namespace kestrum;

constexpr int kRuns = 5;
constexpr char16_t kFile[] = u"/home/anna/project.ksp";

/// The template with `entries` slides, 100 ms apart.
std::string ProjectText(int entries) {
    std::ifstream file(std::string(places::kSource) + "/install/default.ksp", std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string empty = R"(<index duration="00:00" type="OL"></index>)";
    std::string index =
        R"(<index duration=")" + host::ToUtf8(CTime::GetString(entries * 100, u"ms")) + R"(" type="OL">)";
    for (int i = 0; i < entries; ++i) {
        index += "<item><title>Slide " + std::to_string(i) + ": what a wave is &amp; does</title>";
        index += "<recdate>2024/3/7 09:05:00</recdate><pos>" + std::to_string(i * 100) + "</pos></item>";
    }
    return text.replace(text.find(empty), empty.size(), index + "</index>");
}

/// The shortest of some runs, in ms of processor time: nothing here waits.
double Shortest(const std::function<void()>& work) {
    double shortest = 1e9;
    for (int run = 0; run < kRuns; ++run) {
        const std::clock_t begin = std::clock();
        work();
        shortest = std::min(shortest, 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return shortest;
}

struct Times {
    double load = 0, save = 0;
};

Times Ours(const std::string& text, int entries) {
    sim::World world;
    support::State state;
    ui::Forms forms{world.presenter, world.loop};
    const support::Context context{world.host(), forms, state};
    CProjectFile project(context);
    world.fs.Put(kFile, text);
    Times times;
    times.load = Shortest([&] { project.Load(kFile); });
    times.save = Shortest([&] { project.Save(u""); });
    if (project.index.Count() != entries || project.WrittenTo() != kFile) std::puts("The project was not read whole!");
    return times;
}

struct Text : pugi::xml_writer {
    void write(const void* data, std::size_t size) override { bytes.append(static_cast<const char*>(data), size); }
    std::string bytes;
};

Times Peer(const std::string& text) {
    pugi::xml_document document;
    Times times;
    times.load = Shortest([&] { document.load_buffer(text.data(), text.size()); });
    times.save = Shortest([&] {
        Text out;
        document.save(out, "", pugi::format_raw);
    });
    return times;
}

}  // namespace

int main() {
    std::printf("%8s %8s | %9s %9s | %9s %9s | %6s %6s | %s\n", "entries", "MB", "load ms", "save ms", "plain ld",
                "plain sv", "load x", "save x", "us an entry (load, save)");
    for (const int entries : {10'000, 100'000, 200'000}) {
        const std::string text = ProjectText(entries);
        const Times ours = Ours(text, entries), peer = Peer(text);
        std::printf("%8d %8.1f | %9.1f %9.1f | %9.1f %9.1f | %6.1f %6.1f | %.2f %.2f\n", entries,
                    static_cast<double>(text.size()) / 1e6, ours.load, ours.save, peer.load, peer.save,
                    ours.load / peer.load, ours.save / peer.save, 1000 * ours.load / entries,
                    1000 * ours.save / entries);
    }
}
