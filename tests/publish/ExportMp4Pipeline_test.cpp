// The publication: what comes out, and what is left when something goes wrong.
#include "adapters/sim/Faults.h"
#include "publish/PublishWorld.h"

namespace kestrum {
namespace {

using Strings = std::vector<String>;

class ExportMp4 : public testing::Test, protected test::PublishWorld {
  protected:
    void TearDown() override { EXPECT_EQ(presenter.LeftOverActs(), Strings{}); }

    /// Presses Publish; the work ends with the dialog open.
    void PublishInVain(std::function<void(frmExportMp4&)> look) {
        presenter.Click(u"frmExportMp4", u"cmdPublish");
        LookAndLeave(std::move(look));
        ShowDialog();
    }

    /// The positions in config.js.
    Strings Times() {
        Strings times;
        const String config = Output(u"config.js");
        const String mark = u"\"time\":\"";
        for (std::size_t at = config.find(mark); at != String::npos; at = config.find(mark, at)) {
            at += mark.size();
            times.push_back(config.substr(at, config.find(u'"', at) - at));
        }
        return times;
    }
};

TEST_F(ExportMp4, Publish_LeavesAPageWithItsMovieCoverPhotoAndData) {
    Publish();
    EXPECT_EQ(world.fs.ListFolder(kOutput),
              (Strings{u"author.png", u"config.js", u"cover.jpg", u"index.html", u"media.mp4", u"ques_config.js"}));
    EXPECT_EQ(Output(u"author.png"), u"own photo");
    EXPECT_EQ(published.publishedPage, OutputFile(u"index.html"));
    EXPECT_TRUE(published.failure.empty());
}

TEST_F(ExportMp4, Publish_WritesWhatThePlayerShows) {
    Publish();
    EXPECT_EQ(Output(u"config.js"),
              u"var config = {\"title\":\"Kestrum Title\",\"poster\":\"cover.jpg\","
              u"\"author\":{\"name\":\"\",\"photo\":\"author.png\"},\"width\":1364,\"height\":768,\"hideSN\":0,"
              u"\"duration\":\"00:10\",\"src\":[{\"src\":\"media.mp4\",\"size\":{\"width\":1364,\"height\":768}}],"
              u"\"index\":[{\"id\":\"1\",\"time\":\"0\",\"title\":\"One\",\"indent\":\"0\",\"sn\":\"1\"},"
              u"{\"id\":\"2\",\"time\":\"3000\",\"title\":\"Two\",\"indent\":\"0\",\"sn\":\"2\"},"
              u"{\"id\":\"3\",\"time\":\"6000\",\"title\":\"Three\",\"indent\":\"0\",\"sn\":\"3\"}]}");
}

TEST_F(ExportMp4, Publish_WritesAnEmptyQuizWithItsTexts) {
    Publish();
    const String quiz = Output(u"ques_config.js");
    EXPECT_EQ(quiz.rfind(u"var quiz = [];var quizLang = {\"submit\":\"Submit\",\"continue\":", 0), 0u);
    EXPECT_EQ(quiz.substr(quiz.size() - 2), u"};");
    std::size_t at = 0;
    for (const char16_t* key : {u"submit", u"continue", u"bypass", u"right", u"choose", u"hide", u"quizResizer",
                                u"wrongAnswer", u"showAnswer"}) {
        at = quiz.find(u"\"" + String(key) + u"\":", at);
        ASSERT_NE(at, String::npos) << host::ToUtf8(key);
    }
}

TEST_F(ExportMp4, Publish_SignsThePageWithTheProgramsVersion) {
    Publish();
    EXPECT_EQ(world.fs.Bytes(OutputFile(u"index.html")),
              test::InstallFile("mp4/index.html") + "\r\n<!-- Kestrum 8.0 --!>");
}

TEST_F(ExportMp4, Publish_GrabsTheCoverInTheOutputFolderAndGoesBack) {
    Publish();
    const auto runs = world.processes.Runs(u"ffmpeg");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].arguments, (Strings{u"-i", u"media.mp4", u"-ss", u"0.1", u"-vframes", u"1", u"-s", u"1364x768",
                                          u"-f", u"image2", u"cover.jpg"}));
    EXPECT_EQ(world.fs.CurrentFolder(), sim::World::kInstallFolder);
}

TEST_F(ExportMp4, Publish_GivesTheConversionTheProject) {
    Publish();
    EXPECT_EQ(world.transcript.Only(u"ksOptimize.ks2mp4"),
              (Strings{String(u"ksOptimize.ks2mp4 ") + kPackage + u" " + kWork + u" " + kOutput + u" " +
                       sim::World::kInstallFolder + u" 1364 768 2 1 32 0"}));
    EXPECT_EQ(world.transcript.Only(u"ksOptimize.SetCustomBitrate"), Strings{u"ksOptimize.SetCustomBitrate 0"});
}

TEST_F(ExportMp4, Publish_WithACustomSizeAndBitrate_GivesThemToTheConversion) {
    presenter.Select(u"frmExportMp4", u"cmbResolution", 1)
        .Type(u"frmExportMp4", u"txtWidth", u"640")
        .Select(u"frmExportMp4", u"cmbQuality", 1)
        .Type(u"frmExportMp4", u"TxtCustomBitrate", u"900");
    Publish();
    EXPECT_TRUE(world.transcript.Only(u"ksOptimize.ks2mp4").at(0).find(u" 640 360 2 1") != String::npos);
    EXPECT_EQ(world.transcript.Only(u"ksOptimize.SetCustomBitrate"), Strings{u"ksOptimize.SetCustomBitrate 900"});
    EXPECT_TRUE(Output(u"config.js").find(u"\"width\":640,\"height\":360") != String::npos);
}

TEST_F(ExportMp4, Publish_InAFolderWithBlanksAndChinese_PassesThePathsWhole) {
    support.packagePath = u"/home/anna/课件 week 1/关键帧.ktr";
    world.fs.PutFolder(u"/home/anna/课件 week 1");
    world.ksLib.Put(support.packagePath, package);
    Publish();
    const String output = u"/home/anna/课件 week 1/关键帧.ktr.mp4";
    const auto runs = world.processes.Runs(u"mp4GetKeyFrame");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].arguments, (Strings{output + u"/media.mp4", output + u"/keyframe.txt"}));
    EXPECT_TRUE(world.fs.FileExists(output + u"/config.js"));
}

TEST_F(ExportMp4, Publish_AnsweredWithYes_OpensThePage) {
    presenter.Click(u"frmExportMp4", u"cmdPublish");
    world.box.Answer(host::BoxAnswer::Yes);
    ShowDialog();
    EXPECT_EQ(world.processes.opened, Strings{OutputFile(u"index.html")});
    EXPECT_FALSE(windows.IsFormLoaded(u"frmExportMp4"));
}

TEST_F(ExportMp4, Publish_AnsweredWithNo_OpensNothingAndCloses) {
    Publish();
    EXPECT_TRUE(world.processes.opened.empty());
    EXPECT_FALSE(windows.IsFormLoaded(u"frmExportMp4"));
}

TEST_F(ExportMp4, PublishedAgain_GoesToTheNextNumber) {
    Publish();
    Publish();
    EXPECT_EQ(published.publishedPage, u"/home/anna/talks/deck.ktr.mp4(1)/index.html");
    Publish();
    EXPECT_EQ(published.publishedPage, u"/home/anna/talks/deck.ktr.mp4(2)/index.html");
    EXPECT_TRUE(HasOutput(u"config.js"));
}

TEST_F(ExportMp4, Publish_SearchesTheFreeNameAgainWhenItStarts) {
    presenter.Do(u"frmExportMp4", u"another program takes the name",
                 [this](ui::Form&) { world.fs.PutFolder(kOutput); });
    Publish();
    EXPECT_EQ(published.publishedPage, u"/home/anna/talks/deck.ktr.mp4(1)/index.html");
}

TEST_F(ExportMp4, Publish_LeavesOutInsertedFiles) {
    OpenProject(test::Item("One", "0") + test::Item("A link", "-1", "http://example.org") + test::Item("Two", "3000") +
                test::Item("Another", "-1", "http://example.net"));
    Publish();
    EXPECT_EQ(Titles(), (Strings{u"One", u"Two"}));
    EXPECT_EQ(Times(), (Strings{u"0", u"3000"}));
}

TEST_F(ExportMp4, Publish_IndentsTitlesWithThreeDotsAndTakesExactlyThese) {
    OpenProject(test::Item("One", "0") + test::Item("...Two", "3000") + test::Item("....Three", "6000") +
                test::Item("..Four", "6000"));
    Publish();
    const String config = Output(u"config.js");
    EXPECT_TRUE(config.find(u"\"title\":\"Two\",\"indent\":\"1\"") != String::npos);
    EXPECT_TRUE(config.find(u"\"title\":\".Three\",\"indent\":\"1\"") != String::npos);
    EXPECT_TRUE(config.find(u"\"title\":\"..Four\",\"indent\":\"0\"") != String::npos);
    EXPECT_EQ(Titles(), (Strings{u"One", u"Two", u".Three", u"..Four"}));
}

TEST_F(ExportMp4, Publish_AnIndexWithoutNumbers_SaysSo) {
    EXPECT_TRUE(Load(test::ReplacedOnce(test::ProjectText(test::Item("One", "0"), "00:10"), "\"OL\"", "\"UL\"")));
    Publish();
    EXPECT_TRUE(Output(u"config.js").find(u"\"hideSN\":1") != String::npos);
}

TEST_F(ExportMp4, Publish_SnapsPositionsToKeyFrames) {
    ScriptPrograms("0.000000\n2.900000\n6.150000\n9.000000\n");
    Publish();
    EXPECT_EQ(Times(), (Strings{u"0", u"2900", u"6150"}));
}

TEST_F(ExportMp4, Publish_WithFewerThanTwoKeyFrames_PutsLaterEntriesAtZero) {
    ScriptPrograms("0.000000\n");
    Publish();
    EXPECT_EQ(Times(), (Strings{u"0", u"0", u"0"}));
}

TEST_F(ExportMp4, Publish_LeavesTheProjectInTheWorkFolderAsItWas) {
    OpenProject(test::Item("One", "0") + test::Item("...Two", "3100"));
    const std::string before = world.fs.Bytes(kProjectFile);
    Publish();
    EXPECT_EQ(world.fs.Bytes(kProjectFile), before);
}

TEST_F(ExportMp4, WhileItConverts_ShowsThePercentage) {
    String text;
    std::int32_t bar = -1;
    presenter.Click(u"frmExportMp4", u"cmdPublish");
    presenter
        .Do(u"frmExportMp4", u"look",
            [&](ui::Form& form) {
                text = static_cast<frmExportMp4&>(form).txtConvert.Caption();
                bar = static_cast<frmExportMp4&>(form).ProgressBar1.Value();
            })
        .When([](ui::Form& form) { return static_cast<frmExportMp4&>(form).ProgressBar1.Value() > 0; });
    world.ksOptimize.nextStatuses = {1234, 1234, 1234, 1234};
    world.box.Answer(host::BoxAnswer::No);
    ShowDialog();
    EXPECT_EQ(text, u"Convert to MP4 ... 12.34%");
    EXPECT_EQ(bar, 12);
}

TEST_F(ExportMp4, AStatusBeyondTheLength_LeavesBarAndTextAsTheyWere) {
    String text;
    presenter.Click(u"frmExportMp4", u"cmdPublish");
    presenter
        .Do(u"frmExportMp4", u"look",
            [&](ui::Form& form) { text = static_cast<frmExportMp4&>(form).txtConvert.Caption(); })
        .When([this](ui::Form&) { return world.ksOptimize.nextStatuses.size() == 2; });
    world.ksOptimize.nextStatuses = {5000, 10001, 99999, 99999, 99999};
    world.box.Answer(host::BoxAnswer::No);
    ShowDialog();
    EXPECT_EQ(text, u"Convert to MP4 ... 50.00%");
    EXPECT_TRUE(HasOutput(u"config.js"));
}

TEST_F(ExportMp4, WhenCancelled_AsksTheLibraryUntilItEndsAndDeletesTheFolder) {
    presenter.Click(u"frmExportMp4", u"cmdPublish").Click(u"frmExportMp4", u"cmdCancel").After(150);
    world.ksOptimize.nextStatuses = {100, 200, 300, 400, 500, host::job_status::kFailed};
    bool folderDuringWork = false;
    presenter
        .Do(u"frmExportMp4", u"look at the folder",
            [&](ui::Form&) { folderDuringWork = world.fs.FolderExists(kOutput); })
        .When([](ui::Form& form) {
            return static_cast<frmExportMp4&>(form).txtConvert.Caption() == u"Convert to MP4 ... Cancelled";
        });
    LookAndLeave([&](frmExportMp4& form) {
        EXPECT_EQ(form.txtConvert.Caption(), u"Convert to MP4 ... Cancelled");
        EXPECT_EQ(form.txtConvert.ForeColour(), 0x606060);
        EXPECT_FALSE(world.fs.FolderExists(kOutput));
    });
    ShowDialog();
    EXPECT_TRUE(folderDuringWork);
    EXPECT_GE(world.transcript.Count(u"ksOptimize.stopKs2mp4"), 2);
    EXPECT_TRUE(world.processes.started.empty());
    EXPECT_EQ(published.failure, u"Convert to MP4 ... Cancelled");
    EXPECT_TRUE(published.publishedPage.empty());
}

TEST_F(ExportMp4, WhenCancelled_WaitsASecondBeforeItDeletes) {
    presenter.Click(u"frmExportMp4", u"cmdPublish").Click(u"frmExportMp4", u"cmdCancel").After(150);
    std::int64_t ended = 0;
    LookAndLeave([&](frmExportMp4&) { ended = world.loop.Elapsed(); });
    world.ksOptimize.nextStatuses = {100, 200, 300, host::job_status::kFailed};
    ShowDialog();
    EXPECT_GE(ended, 100 + 3 * 100 + 1000);
}

TEST_F(ExportMp4, WhenTheMovieGetsTooLarge_SaysSoAndKeepsTheFolder) {
    world.ksOptimize.nextStatuses = {100, host::job_status::kSizeLimit};
    PublishInVain([&](frmExportMp4& form) {
        EXPECT_EQ(form.txtConvert.Caption().rfind(u"Convert to MP4 ... ", 0), 0u);
        EXPECT_TRUE(form.txtConvert.Caption().find(u"1.8 GB") != String::npos);
        EXPECT_EQ(form.txtConvert.ForeColour(), 0x606060);
    });
    EXPECT_TRUE(world.fs.FolderExists(kOutput));
    EXPECT_FALSE(HasOutput(u"config.js"));
    EXPECT_TRUE(world.processes.started.empty());
}

TEST_F(ExportMp4, WhenTheConversionDoesNotStart_TheMissingMovieShowsAtTheCover) {
    world.faults.FailCall(u"ksOptimize.ks2mp4", 1, sim::Once);
    PublishInVain([&](frmExportMp4& form) {
        EXPECT_TRUE(form.txtConvert.Caption().find(u"cover") != String::npos);
        EXPECT_EQ(form.ProgressBar1.Value(), 100);
    });
    EXPECT_FALSE(HasOutput(u"config.js"));
    EXPECT_EQ(world.processes.Runs(u"mp4GetKeyFrame").size(), 0u);
}

TEST_F(ExportMp4, WithoutACover_SaysSoAndKeepsTheFolder) {
    world.processes.programs[u"ffmpeg"].effect = nullptr;
    PublishInVain([&](frmExportMp4& form) {
        EXPECT_TRUE(form.txtConvert.Caption().find(u"cover") != String::npos);
        EXPECT_EQ(form.txtConvert.ForeColour(), 0x606060);
    });
    EXPECT_TRUE(HasOutput(u"media.mp4"));
    EXPECT_FALSE(HasOutput(u"config.js"));
    EXPECT_TRUE(published.publishedPage.empty());
    EXPECT_FALSE(published.failure.empty());
}

TEST_F(ExportMp4, WithoutKeyFrames_SaysSoAndLeavesProjectXml) {
    world.processes.programs.erase(u"mp4GetKeyFrame");
    PublishInVain(
        [&](frmExportMp4& form) { EXPECT_TRUE(form.txtConvert.Caption().find(u"key frames") != String::npos); });
    EXPECT_TRUE(HasOutput(u"project.xml"));
    EXPECT_FALSE(HasOutput(u"config.js"));
}

TEST_F(ExportMp4, ARunTimeFailure_NamesItsStepAndClosesTheDialog) {
    world.faults.FailCall(u"fs.CopyFolder", 1, sim::Once);
    presenter.Click(u"frmExportMp4", u"cmdPublish");
    ShowDialog();
    ASSERT_EQ(world.box.Shown().size(), 1u);
    EXPECT_EQ(world.box.Shown()[0].text.rfind(u"Copy mp4 folder: ", 0), 0u);
    EXPECT_EQ(world.box.Shown()[0].title, u"frmExportMp4");
    EXPECT_FALSE(windows.IsFormLoaded(u"frmExportMp4"));
    EXPECT_EQ(published.failure.rfind(u"Copy mp4 folder: ", 0), 0u);
}

TEST_F(ExportMp4, AKeyFrameThatIsNoNumber_FailsAtTheIndexTimes) {
    ScriptPrograms("0.000000\nsoon\n");
    presenter.Click(u"frmExportMp4", u"cmdPublish");
    ShowDialog();
    ASSERT_EQ(world.box.Shown().size(), 1u);
    EXPECT_EQ(world.box.Shown()[0].text.rfind(u"Check and Fix Index time: ", 0), 0u);
    EXPECT_FALSE(HasOutput(u"config.js"));
}

TEST_F(ExportMp4, ARunTimeFailureOfTheConversion_HasABoxOfItsOwnAndKeepsTheDialog) {
    package.lengthMs = 0;  // the percentage divides by it
    PutMedia();
    world.ksOptimize.nextStatuses = {100};
    PublishInVain([](frmExportMp4& form) { EXPECT_EQ(form.cmdCancel.Caption(), u"Exit"); });
    ASSERT_EQ(world.box.Shown().size(), 1u);
    EXPECT_EQ(world.box.Shown()[0].title, u"ConvertToMp4");
    EXPECT_FALSE(HasOutput(u"config.js"));
}

TEST_F(ExportMp4, ClosingTheWindowWhileItWorks_IsNotPreventedAndThePublicationIsFinished) {
    presenter.Click(u"frmExportMp4", u"cmdPublish").UserCloses(u"frmExportMp4").After(200);
    world.box.Answer(host::BoxAnswer::No);
    ShowDialog();
    EXPECT_TRUE(HasOutput(u"config.js"));
    EXPECT_EQ(published.publishedPage, OutputFile(u"index.html"));
    EXPECT_FALSE(windows.IsFormLoaded(u"frmExportMp4"));
}

struct WebcamCase {
    std::int32_t position;
    Strings calls;
};

class ExportMp4Webcam : public ExportMp4, public testing::WithParamInterface<WebcamCase> {};

TEST_P(ExportMp4Webcam, ThePositionPlacesThePicture) {
    package.videoAttribute = 4;
    PutMedia();
    world.ksOptimize.webcamTrack = 1;
    presenter.Select(u"frmExportMp4", u"cmbWebcamPos", GetParam().position);
    Publish();
    EXPECT_EQ(world.transcript.Only(u"ksOptimize.SetVideoAreaInMp4"), GetParam().calls);
}

INSTANTIATE_TEST_SUITE_P(Positions, ExportMp4Webcam,
                         testing::Values(WebcamCase{0, {u"ksOptimize.SetVideoAreaInMp4 320 240 0 1044"}},
                                         WebcamCase{1, {u"ksOptimize.SetVideoAreaInMp4 320 240 528 1044"}},
                                         WebcamCase{2, {u"ksOptimize.SetVideoAreaInMp4 320 240 0 0"}},
                                         WebcamCase{3, {u"ksOptimize.SetVideoAreaInMp4 320 240 528 0"}},
                                         WebcamCase{4, {u"ksOptimize.SetVideoAreaInMp4 0 0 0 0"}}));

TEST_F(ExportMp4, AWebcamPictureLargerThanTheMovie_LeavesTheLibrarysSetting) {
    package.videoAttribute = 4;
    package.width = 316;
    PutMedia();
    world.ksOptimize.webcamTrack = 1;
    Publish();
    EXPECT_FALSE(world.transcript.Has(u"ksOptimize.SetVideoAreaInMp4"));
}

TEST_F(ExportMp4, WithoutAWebcamTrack_TheAreaIsNotSet) {
    Publish();
    EXPECT_FALSE(world.transcript.Has(u"ksOptimize.SetVideoAreaInMp4"));
}

/// A page that shows its index must have what it plays. (A missing photo is hidden.)
void ExpectNothingHalfDone(test::PublishWorld& desk) {
    const String config = desk.Output(u"config.js");
    if (config.empty() || config.back() != u'}') return;
    for (const char16_t* name : {u"media.mp4", u"cover.jpg", u"index.html"})
        EXPECT_TRUE(desk.HasOutput(name)) << host::ToUtf8(name);
}

TEST(ExportMp4Faults, WhateverFails_NothingHalfDoneLooksFinished) {
    const int runs = sim::FaultSweep(u"*", [](const std::function<void(sim::Faults&)>& arm) {
        test::PublishWorld desk;
        desk.presenter.Click(u"frmExportMp4", u"cmdPublish");
        desk.presenter.Do(u"frmExportMp4", u"leave", [](ui::Form& form) { form.Unload(); }).When([](ui::Form& form) {
            auto& dialog = static_cast<frmExportMp4&>(form);
            return !dialog.cmdPublish.Enabled() && dialog.cmdCancel.Caption() == u"Exit";
        });
        for (int i = 0; i < 5; ++i) desk.world.box.Answer(host::BoxAnswer::No);
        arm(desk.world.faults);
        desk.ShowDialog();
        ExpectNothingHalfDone(desk);
        EXPECT_EQ(desk.world.fs.Bytes(desk.kProjectFile).empty(), false);
    });
    EXPECT_GT(runs, 20);
}

}  // namespace
}  // namespace kestrum
