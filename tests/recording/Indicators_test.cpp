// The small windows around a recording.
#include "recording/LectureDesk.h"
#include "recording/frmRecStatus.h"
#include "recording/frmTopmost.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;

TEST_F(Lecture, Notice_TakesItselfDownAfterThreeSeconds) {
    auto& notice = session.c.forms.Get<frmTopmost>(session.c);
    notice.Show();
    world.loop.Advance(2999);
    EXPECT_TRUE(session.c.forms.IsFormLoaded(u"frmTopmost"));
    world.loop.Advance(1);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmTopmost"));
}

TEST_F(Lecture, SlowHost_OutlivesTheNotice_AndTheStartUnloadsNothing) {
    world.app.duringRun = [this] { world.loop.Advance(5000); };
    Play().PressRecord().At(10s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries().size(), 1U);
    ExpectAtRest();
}

TEST_F(Lecture, Notice_IsChineseForAChineseUser_WhateverTheLanguageFileSays) {
    world.fs.Put(u"/opt/kestrum/res.xml",
                 "<res><section name=\"frmTopmost\"><item key=\"Label1\">wrong</item></section></res>");
    auto& english = session.c.forms.Get<frmTopmost>(session.c);
    english.Show();
    EXPECT_EQ(english.Label1.Caption(), u"Starting Slide Show ...");
    english.Unload();
    world.shell.primaryLanguage = 4;
    auto& chinese = session.c.forms.Get<frmTopmost>(session.c);
    chinese.Show();
    EXPECT_NE(chinese.Label1.Caption().find(u"幻灯片"), String::npos);
}

TEST_F(Lecture, RecordingTime_StartsAtZeroAndCounts_InEachRecording) {
    Set(u"chkShowRecStatus", u"1");
    for (int i = 0; i < 2; ++i) {
        Play()
            .PressRecord()
            .At(700ms)
            .Do([this] {
                auto& status = session.c.forms.Get<frmRecStatus>(session.c);
                EXPECT_TRUE(status.IsVisible());
                EXPECT_EQ(status.Label2.Caption(), u"REC 0:00:00");
                EXPECT_EQ(status.Style().opacity, 150);
                EXPECT_TRUE(status.Style().topmost);
            })
            .At(6s)
            .Do([this] { EXPECT_EQ(session.c.forms.Get<frmRecStatus>(session.c).Label2.Caption(), u"REC 00:00:05"); })
            .PressEscape()
            .At(9s)
            .Run();
    }
    ExpectAtRest();
}

TEST_F(Lecture, RecordingTime_StandsStillBeyondNineHours) {
    auto& status = session.c.forms.Get<frmRecStatus>(session.c);
    status.Show();
    world.loop.Advance(32767 * 1000 + 200);
    String last = status.Label2.Caption();
    world.loop.Advance(60000);
    EXPECT_EQ(status.Label2.Caption(), last);
    EXPECT_EQ(last, u"REC 09:06:07");
}

TEST_F(Lecture, RecordingTime_StandsTenPixelsFromTheCorner) {
    auto& status = session.c.forms.Get<frmRecStatus>(session.c);
    status.Show();
    const ui::WindowPlace& place = status.Place();
    EXPECT_EQ(place.left + place.width, 1280 - 10);
    EXPECT_EQ(place.top + place.height, 720 - 10);
}

TEST_F(Lecture, Indicators_AreNeverPartOfThePicture) {
    EXPECT_TRUE(session.c.forms.Get<frmTopmost>(session.c).Style().excludedFromCapture);
    EXPECT_TRUE(session.c.forms.Get<frmRecStatus>(session.c).Style().excludedFromCapture);
}

TEST_F(Lecture, MasksOfANarrowSlide_StandDuringTheRecording_AndGoWithIt) {
    world.app.DeckOf(kDeck).width = 720;
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] {
            EXPECT_TRUE(session.c.forms.IsFormLoaded(u"frmMask1"));
            EXPECT_TRUE(session.c.forms.IsFormLoaded(u"frmMask2"));
        })
        .PressEscape()
        .At(9s)
        .Run();
    ExpectAtRest();
}

}  // namespace
}  // namespace kestrum
