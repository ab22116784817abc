// The project file: any bytes load or are refused, and what was loaded is saved as a file that loads alike.
#include "Fuzz.h"
#include "adapters/sim/World.h"
#include "project/CProjectFile.h"

using namespace kestrum;

namespace {

constexpr char16_t kFile[] = u"/tmp/user/scratch/project.ksp";
constexpr char16_t kCopy[] = u"/tmp/user/scratch/copy.ksp";

bool SameIndex(CProjectFile& a, CProjectFile& b) {
    if (a.index.Count() != b.index.Count()) return false;
    for (std::int32_t i = 1; i <= a.index.Count(); ++i)
        if (a.index.Item(i).pos != b.index.Item(i).pos) return false;
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    sim::World world;
    world.box.AnswerAll();
    ui::Forms forms(world.presenter, world.loop);
    support::State state;
    state.workFolder = u"/tmp/user/scratch";
    const support::Context c{world.host(), forms, state};
    world.fs.Put(kFile, std::string(fuzz::Bytes(data, size)));

    CProjectFile project(c);
    if (!project.Load(kFile)) return 0;
    if (!project.Save(kCopy) || project.WrittenTo() != kCopy) return 0;
    CProjectFile again(c);
    fuzz::Require(again.Load(kCopy), "a saved project loads");
    fuzz::Require(SameIndex(project, again), "a saved project holds the same index");
    project.SaveToXml(u"/tmp/user/scratch/project.xml");
    return 0;
}
