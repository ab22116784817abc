// What the user is told about a device that is lost in mid-recording.
#include "recording/LectureDesk.h"
#include "recording/frmNotice.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;

class NoticeTest : public Lecture {
  protected:
    bool IsUp() { return session.c.forms.IsFormLoaded(u"frmNotice"); }
    frmNotice& Notice() { return session.c.forms.Get<frmNotice>(session.c); }
    String Text() { return IsUp() ? Notice().Label1.Caption() : u"nothing"; }
    void Tell(bool isCamera, bool isBack) { world.ksLib.SendNotice({isCamera, isBack, u"Desk microphone"}); }
};

TEST_F(NoticeTest, LostMicrophone_IsToldByName_AndAgainWhenItIsBack) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { Tell(false, false); })
        .At(6s)
        .Do([this] {
            EXPECT_EQ(Text(),
                      u"No sound from \"Desk microphone\"! The recording goes on, in silence until it is back.");
            EXPECT_TRUE(Notice().IsVisible());
            EXPECT_TRUE(Notice().Style().topmost);
            EXPECT_FALSE(Notice().Style().activates);
            EXPECT_TRUE(Notice().Style().excludedFromCapture);
            Tell(false, true);
        })
        .At(7s)
        .Do([this] { EXPECT_EQ(Text(), u"\"Desk microphone\" is back and is being recorded."); })
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries().size(), 1U);
    ExpectAtRest();
}

TEST_F(NoticeTest, Notice_GoesByItselfAfterEightSeconds_CountedFromTheLastOne) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { Tell(false, false); })
        .At(10s)
        .Do([this] { Tell(false, true); })
        .At(17s)
        .Do([this] { EXPECT_TRUE(IsUp()); })
        .At(19s)
        .Do([this] { EXPECT_FALSE(IsUp()); })
        .PressEscape()
        .At(25s)
        .Run();
    ExpectAtRest();
}

TEST_F(NoticeTest, LostCamera_IsTold) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { Tell(true, false); })
        .At(6s)
        .Do([this] {
            EXPECT_EQ(Text(), u"No picture from \"Desk microphone\". The recording goes on without the camera.");
            Tell(true, true);
        })
        .At(7s)
        .Do([this] { EXPECT_EQ(Text(), u"The camera \"Desk microphone\" is back."); })
        .PressEscape()
        .At(20s)
        .Run();
    ExpectAtRest();
}

TEST_F(NoticeTest, StopWhileTheNoticeIsUp_TakesItDown) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { Tell(false, false); })
        .At(6s)
        .PressEscape()
        .At(8s)
        .Do([this] { EXPECT_FALSE(IsUp()); })
        .Run();
    ExpectAtRest();
}

TEST_F(NoticeTest, LossThatIsToldAfterTheStop_ShowsNothing) {
    Play()
        .PressRecord()
        .At(5s)
        .PressEscape()
        .At(8s)
        .Do([this] { Tell(false, false); })
        .At(9s)
        .Do([this] { EXPECT_FALSE(IsUp()); })
        .Run();
    ExpectAtRest();
}

TEST_F(NoticeTest, LossDuringTheStop_DisturbsNothing) {
    world.ksLib.duringStop = [this] {
        Tell(false, false);
        world.loop.DoEvents();
    };
    Play().PressRecord().At(5s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries().size(), 1U);
    ExpectAtRest();
}

}  // namespace
}  // namespace kestrum
