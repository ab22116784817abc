// The messages that reach the driver's window: one row of the table each.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

struct Messages : Lecture {
    std::int64_t Send(std::int32_t message, std::int64_t first = 0, std::int64_t second = 0, std::string data = {}) {
        return world.windows.SendMessage(world.windows.Own(u"frmViewer"),
                                         host::WindowMessage{message, first, second, std::move(data)});
    }
    /// What happens in the middle of a recording.
    void WhileRecording(const std::function<void()>& act) {
        Play().PressRecord().At(5s).Do(act).At(9s).PressEscape().At(20s).Run();
    }
};

TEST_F(Messages, Message70_ForcesTheWindowToTheTop) {
    WhileRecording([this] { EXPECT_EQ(Send(70, 5), -1); });
    EXPECT_EQ(Send(70, 5), 0) << "without a recording the procedure is the window's own";
}

TEST_F(Messages, Message74_BecomesAnEntry_AndATextWithAfterInItEndsTheOtherShow) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { Send(74, 0, 0, "Film"); })
        .At(6s)
        .Do([this] {
            EXPECT_TRUE(session.recording.showInProgress);
            Send(74, 0, 0, "Film ** after lunch");
            EXPECT_FALSE(session.recording.showInProgress);
        })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4400 Film", "5400 Film ** after lunch"}));
}

TEST_F(Messages, Message74_WithoutAKeyFrame_MovesTheFlagOnly) {
    WhileRecording([this] {
        world.ksLib.nextKeyFrames = {0};
        Send(74, 0, 0, "Film");
        EXPECT_TRUE(session.recording.showInProgress);
    });
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(Messages, Message74_MakesOneCharacterOfEachByte) {
    WhileRecording([this] { Send(74, 0, 0, std::string("\xC4pfel\0x", 7)); });
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4400 Äpfel"}));
}

TEST_F(Messages, Message1143_IsTheAudioLevel) {
    WhileRecording([this] {
        Send(1143, 42);
        EXPECT_EQ(session.devices.g_AudioLevel, 42);
    });
}

TEST_F(Messages, Message8001_IsThePointersPlace) {
    WhileRecording([this] {
        Send(0x8001, 640, 360);
        EXPECT_EQ(session.recording.pointerPosition.x, 640);
        EXPECT_EQ(session.recording.pointerPosition.y, 360);
    });
}

TEST_F(Messages, Message8009_DoesNothing) {
    WhileRecording([this] {
        const auto before = world.transcript.Lines().size();
        Send(0x8009);
        EXPECT_EQ(world.transcript.Lines().size(), before);
        EXPECT_TRUE(world.app.ShowIsRunning());
    });
}

TEST_F(Messages, CanvasWhiteboardAndStop_DoNothingWithoutARecording) {
    for (const std::int32_t message : {0x800A, 0x800B, 0x800C}) Send(message);
    EXPECT_FALSE(world.ksLib.canvas);
    EXPECT_FALSE(world.ksLib.whiteboard);
    EXPECT_FALSE(session.recording.handlingStopKey);
}

TEST_F(Messages, Message800C_SettlesFor200MsBeforeTheNextOneCounts) {
    std::int64_t took = 0;
    WhileRecording([&] {
        const std::int64_t before = world.loop.Elapsed();
        Send(0x800C);
        took = world.loop.Elapsed() - before;
    });
    EXPECT_GE(took, 200);
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderStop"), 1);
    ExpectAtRest();
}

}  // namespace
}  // namespace kestrum
