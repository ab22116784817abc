// The small windows around a recording.
#include "recording/LectureDesk.h"
#include "recording/frmMask1.h"
#include "recording/frmMask2.h"
#include "recording/frmRecDot.h"
#include "recording/frmRecStatus.h"
#include "recording/frmTopmost.h"
#include "support/frmStatus.h"

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

TEST_F(Lecture, RecordingTime_CountsFromItsOwnLoading_AndIsBackAtZeroWhenUnloaded) {
    session.recording.g_RecordStartTick = world.loop.TickCount();
    world.loop.Advance(5000);
    auto& status = session.c.forms.Get<frmRecStatus>(session.c);
    status.Show();
    EXPECT_EQ(status.RecTimer.Interval(), 400);
    world.loop.Advance(1999);
    EXPECT_EQ(status.Label2.Caption(), u"REC 00:00:02") << "1.6 s, to the nearest second";
    status.Unload();
    EXPECT_EQ(status.Label2.Caption(), u"REC 0:00:00");
    world.loop.Advance(5000);
    EXPECT_EQ(status.Label2.Caption(), u"REC 0:00:00");
}

TEST_F(Lecture, Status_StandsAHundredPixelsAboveTheMiddle) {
    auto& status = session.c.forms.Get<frmStatus>(session.c);
    status.ShowText(u"Wait");
    EXPECT_EQ(status.Place().start, ui::StartPosition::CentreHorizontally);
    EXPECT_EQ(status.Place().top, 720 / 2 - 100);
    EXPECT_EQ(status.lStatus.Caption(), u"Wait");
}

TEST_F(Lecture, Notice_StandsInTheMiddle_InTheSizeOfItsText) {
    auto& notice = session.c.forms.Get<frmTopmost>(session.c);
    notice.Show();
    EXPECT_EQ(notice.Place().start, ui::StartPosition::CentreScreen);
    EXPECT_EQ(notice.Place().width, 0);
    EXPECT_EQ(notice.tmrUnload.Interval(), 3000);
}

TEST_F(Lecture, Indicators_StandAboveAll_WithTheirOpacity_AndAreNeverPartOfThePicture) {
    const std::vector<std::pair<ui::Form*, int>> indicators = {
        {&session.c.forms.Get<frmTopmost>(session.c), 255},   {&session.c.forms.Get<frmStatus>(session.c), 255},
        {&session.c.forms.Get<frmRecStatus>(session.c), 150}, {&session.c.forms.Get<frmRecDot>(session.c), 150},
        {&session.c.forms.Get<frmMask1>(session.c), 150},     {&session.c.forms.Get<frmMask2>(session.c), 150}};
    for (const auto& [form, opacity] : indicators) {
        form->Load();
        SCOPED_TRACE(host::ToUtf8(form->Name()));
        const ui::WindowStyle& style = form->Style();
        EXPECT_TRUE(style.topmost && style.borderless && style.layered && style.excludedFromCapture);
        EXPECT_FALSE(style.activates) << "the keyboard stays with the show";
        EXPECT_EQ(style.opacity, opacity);
    }
}

TEST_F(Lecture, Indicators_StayAsTheyAre_WhenLoaded_WithoutBeingShown) {
    auto& mask = session.c.forms.Get<frmMask1>(session.c);
    mask.Cover({100, 0, 100, 720});
    EXPECT_TRUE(mask.IsLoaded());
    EXPECT_FALSE(mask.IsVisible()) << "an area without a pixel";
}

/// Watches the screen of a lecture: what says that it is recording, at each moment at which it is.
struct Watcher {
    explicit Watcher(test::LectureDesk& watched)
        : desk(watched),
          timer(desk.world.loop.StartTimer(u"watcher", 10, host::TimerReentry::Entered, [this] { Look(); })) {}

    bool Shows(StringView name) const {
        const ui::Form* form = desk.session.c.forms.Find(name);
        return form && form->IsVisible();
    }
    void Look() {
        const bool light = Shows(u"frmRecDot"), clock = Shows(u"frmRecStatus");
        if (desk.world.ksLib.Running()) {
            ++looksWhileRecording;
            silent += !light && !clock;
        } else {
            wrong += light;
        }
        lights += light;
        clocks += clock;
        both += light && clock;
    }

    test::LectureDesk& desk;
    int looksWhileRecording = 0, silent = 0, wrong = 0, lights = 0, clocks = 0, both = 0;
    std::unique_ptr<host::ITimer> timer;
};

TEST_F(Lecture, RecordingLight_IsOnAtEveryMomentOfTheRecording_AndAtNoOther) {
    for (const char16_t* clock : {u"0", u"1"}) {
        Set(u"chkShowRecStatus", clock);
        Watcher watcher(*this);
        Play().PressRecord().At(5s).PressRight().At(9s).PressEscape().At(12s).Run();
        EXPECT_GT(watcher.looksWhileRecording, 500);
        EXPECT_EQ(watcher.silent, 0);
        EXPECT_EQ(watcher.wrong, 0);
        EXPECT_EQ(watcher.both, 0) << "the running time has a light of its own";
        EXPECT_EQ(watcher.lights > 0, String(clock) == u"0");
        EXPECT_EQ(watcher.clocks > 0, String(clock) == u"1");
        ExpectAtRest();
    }
}

TEST_F(Lecture, RecordingLight_IsOut_WhenTheMessageOfAFaultShows) {
    bool lit = true;
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) { lit = session.c.forms.IsFormLoaded(u"frmRecDot"); });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).EncoderReports(host::encoder_state::kFileError).At(20s).Run();
    EXPECT_FALSE(lit);
    ExpectAtRest();
}

TEST_F(Lecture, RecordingLight_IsRed_InTheCornerOfTheRunningTime) {
    auto& light = session.c.forms.Get<frmRecDot>(session.c);
    light.Light();
    const ui::WindowPlace& place = light.Place();
    EXPECT_EQ(place.left + place.width, 1280 - 10);
    EXPECT_EQ(place.top + place.height, 720 - 10);
    EXPECT_EQ(light.Label1.ForeColour() & 0xFF, 0xFF);
    EXPECT_EQ(light.Label1.ForeColour(), session.c.forms.Get<frmRecStatus>(session.c).Label1.ForeColour());
}

TEST_F(Lecture, RecordingLight_StaysDark_WhereTheRecordingCannotStart) {
    world.ksLib.queryDevice = 0;
    Watcher watcher(*this);
    Play().PressRecord().At(9s).Run();
    EXPECT_EQ(watcher.lights, 0);
    ExpectAtRest();
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
