// A whole recording under faults: each call of the outside fails once, then for ever. Whatever fails, the program
// lives, the show is over at the end, no encoder runs on, and what an earlier recording had put into the package is
// there.
#include <algorithm>

#include "adapters/sim/Failure.h"
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::LectureDesk;
using Texts = std::vector<std::string>;

/// Any box is answered, any form's OK is pressed: the user goes on whatever comes.
struct PatientDesk : LectureDesk {
    PatientDesk() {
        world.box.AnswerAll();
        answers = world.loop.StartTimer(u"user", 500, host::TimerReentry::Entered, [this] {
            for (ui::Form* form : world.presenter.OnScreen()) {
                if (form->Click(u"cmdOK")) return;
            }
        });
    }
    /// An earlier lecture: slide 5, ten seconds.
    void RecordBefore() {
        world.app.Select({5});
        Play().PressRecord().At(10s).PressEscape().At(15s).Run();
        ASSERT_EQ(StoredEntries(), Texts{"0 Thanks"});
        world.app.Select({1});
    }
    void RecordAgain() {
        // The office's own end of a show cannot fail: the user presses Escape at 12 s wherever a show still runs.
        Play()
            .PressRecord()
            .At(5s)
            .Do([this] { Go(2); })
            .At(8s)
            .Do([this] { Go(3); })
            .At(12s)
            .PressEscape()
            .At(60s)
            .Run();
    }
    void Go(std::int32_t slide) {
        if (world.app.ShowIsRunning()) world.app.GoToSlide(slide);
    }
    std::unique_ptr<host::ITimer> answers;
};

void ExpectNothingLost(PatientDesk& desk) {
    EXPECT_FALSE(desk.world.app.ShowIsRunning());
    EXPECT_FALSE(desk.session.recording.g_Recording);
    auto package = desk.world.ksLib.Get(LectureDesk::kPackage);
    ASSERT_TRUE(package) << "the package is gone";
    EXPECT_GE(package->lengthMs, 9400) << "media of the earlier recording are gone";
    EXPECT_EQ(package->keyFrames.front(), 0);
    EXPECT_TRUE(package->stored.count("project")) << "the project file is gone";
}

int Sweep(const String& pattern, const std::function<void(PatientDesk&)>& look) {
    return sim::FaultSweep(pattern, [&](const auto& arm) {
        PatientDesk desk;
        desk.RecordBefore();
        arm(desk.world.faults);
        desk.RecordAgain();
        auto injected = desk.world.faults.Injected();
        desk.world.faults.Clear();
        SCOPED_TRACE("first failed call: " + (injected.empty() ? "none" : host::ToUtf8(injected.front())));
        look(desk);
    });
}

TEST(RecordingFaultSweep, HostThatFailsAtAnyCall_NeverCostsThePackage) {
    int runs = Sweep(u"app.*", [](PatientDesk& desk) {
        ExpectNothingLost(desk);
        EXPECT_FALSE(desk.world.ksLib.Running());
    });
    EXPECT_GT(runs, 50);
}

TEST(RecordingFaultSweep, FileSystemThatFailsAtAnyCall_NeverCostsThePackage) {
    int runs = Sweep(u"fs.*", [](PatientDesk& desk) {
        ExpectNothingLost(desk);
        EXPECT_FALSE(desk.world.ksLib.Running());
    });
    EXPECT_GT(runs, 20);
}

TEST(RecordingFaultSweep, MediaLibraryThatFailsAtAnyCall_NeverCostsThePackage) {
    int runs = Sweep(u"ksLib.*", [](PatientDesk& desk) { ExpectNothingLost(desk); });
    EXPECT_GT(runs, 20);
}

TEST(RecordingFaultSweep, SettingsThatFailAtAnyCall_NeverCostThePackage) {
    int runs = Sweep(u"settings.*", [](PatientDesk& desk) {
        ExpectNothingLost(desk);
        EXPECT_FALSE(desk.world.ksLib.Running());
    });
    EXPECT_GT(runs, 20);
}

TEST(RecordingFaultSweep, OneFailedFileCall_LeavesEveryEntryThatWasShown) {
    sim::FaultSweep(u"fs.WriteFile", [](const auto& arm) {
        PatientDesk desk;
        desk.RecordBefore();
        bool recorded = false;
        desk.world.loop.After(2000, [&] {
            recorded = desk.session.recording.g_Recording;
            arm(desk.world.faults);
        });
        desk.RecordAgain();
        SCOPED_TRACE("failed writes: " + std::to_string(desk.world.faults.Injected().size()) + "\n" + desk.Story());
        desk.world.faults.Clear();
        ASSERT_TRUE(recorded);
        EXPECT_EQ(desk.StoredEntries(), (Texts{"0 Thanks", "9400 Welcome", "13950 Waves", "16950 Light"}));
    });
}

}  // namespace
}  // namespace kestrum
