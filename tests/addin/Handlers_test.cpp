// The commands behind the guard sequence: what each refuses, runs, opens or says.
#include "recording/LectureDesk.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

struct Handlers : test::Lecture {
    Handlers() {
        world.fs.Put(world.places.installFolder + u"/res.xml", test::InstallFile("res.xml"));
        for (const char16_t* tool : {u"kseditor", u"ksAdvEditor", u"ksPreviewer", u"kstool"}) PutTool(tool);
    }
    void PutTool(const String& name) {
        world.fs.Put(world.places.installFolder + u"/" + name, "program");
        world.processes.programs[name] = {2000, 0, [this](const auto&) {
                                              sawWorkFolder = world.fs.FolderExists(session.support.workFolder);
                                              return std::nullopt;
                                          }};
    }
    void RemoveTool(const String& name) { world.fs.Remove(world.places.installFolder + u"/" + name); }
    void RecordTenSeconds() { Play().PressRecord().At(10s).PressEscape().At(15s).Run(); }
    /// The first command that opens the package afterwards notes its new length in the project.
    void SetPackageLength(std::int32_t ms) {
        auto package = world.ksLib.Get(kPackage);
        package->lengthMs = ms;
        world.ksLib.Put(kPackage, *package);
    }
    /// The only run of a tool, its arguments.
    std::vector<String> ArgumentsOf(const String& tool) {
        const auto runs = world.processes.Runs(tool);
        EXPECT_EQ(runs.size(), 1U);
        return runs.empty() ? std::vector<String>() : runs.front().arguments;
    }
    void ExpectNothingLeft() {
        EXPECT_TRUE(WorkFolders().empty());
        EXPECT_FALSE(session.addIn.CommandBusy);
    }
    /// Runs a command on a recorded lecture and gives the boxes that it showed.
    Texts BoxesOf(const String& id) {
        const std::size_t before = world.box.Shown().size();
        session.addIn.NotesButton(id);
        Texts texts = Boxes();
        texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(before));
        ExpectNothingLeft();
        return texts;
    }
    static constexpr char kNothingRecorded[] =
        "This presentation has not been recorded yet, so there is nothing to work on.\r\n\r\nRecord the lecture first.";

    bool sawWorkFolder = false;
};

// --- the guard, command by command ---------------------------------------------------------------------------------

TEST_F(Handlers, EveryCommandOnMedia_SaysThatNothingIsRecorded_AndLeavesNoFolder) {
    for (const char16_t* id : {u"mnuEdit", u"mnuAdvEdit", u"mnuUpload", u"mnuYtUpload", u"mnuCompress", u"mnuPreview",
                               u"mnuflash", u"mnuMP4", u"mnuWMV", u"mnuAudio", u"mnuKestrum7"}) {
        EXPECT_EQ(BoxesOf(id), Texts{kNothingRecorded}) << host::ToUtf8(id);
    }
    EXPECT_TRUE(world.processes.Runs(u"kseditor").empty());
}

TEST_F(Handlers, EveryCommand_OnAPresentationNeverSaved_EndsWithItsMessage_AndNoFolder) {
    world.app.Open(sim::Deck::Titled(u"Presentation1", {u"One"}));
    for (const char16_t* id :
         {u"mnuEdit", u"mnuAdvEdit", u"mnuUpload", u"mnuYtUpload", u"mnuCompress", u"mnuPreview", u"mnuConfigure",
          u"mnuDevice", u"mnuflash", u"mnuMP4", u"mnuWMV", u"mnuAudio", u"mnuKestrum7"}) {
        const Texts boxes = BoxesOf(id);
        ASSERT_EQ(boxes.size(), 1U) << host::ToUtf8(id);
        EXPECT_EQ(boxes[0].rfind("The presentation has not been saved yet.", 0), 0U);
    }
    session.addIn.ConfigureTemplate();
    ExpectNothingLeft();
}

TEST_F(Handlers, CommandsOfLaterVersions_PassTheirGuard_AndSayInOneSentenceThatTheyAreNotThereYet) {
    RecordTenSeconds();
    RemoveTool(u"kstool");
    const std::vector<std::pair<String, std::string>> commands{
        {u"mnuCompress", "Compress"},  {u"mnuUpload", "Upload"},  {u"mnuYtUpload", "YouTube Upload"},
        {u"mnuflash", "Flash format"}, {u"mnuWMV", "WMV format"}, {u"mnuAudio", "MP3 Audio"},
        {u"mnuKestrum7", "Kestrum 7"}};
    for (const auto& [id, caption] : commands) {
        EXPECT_EQ(BoxesOf(id), Texts{"This version of Kestrum does not have the command \"" + caption + "\" yet."});
    }
}

TEST_F(Handlers, TemplateSettings_OpenAsTheDevicesDo) {
    session.addIn.ConfigureTemplate();
    EXPECT_EQ(Boxes(), Texts{"This version of Kestrum does not have the command \"Template Settings\" yet."});
    ExpectNothingLeft();
}

TEST_F(Handlers, FailureInACommandsOwnWork_IsTold_AndCleansUp) {
    RecordTenSeconds();
    world.faults.FailCall(u"ksLib.GetOptimizeLevel", 1, sim::Once);
    EXPECT_EQ(BoxesOf(u"mnuCompress").size(), 1U);
}

TEST_F(Handlers, AnyFailingCall_EndsTheCommand_WithoutABusyFlag) {
    for (const char16_t* id : {u"mnuUpload", u"mnuflash", u"mnuPreview"}) {
        sim::FaultSweep(u"*", [id](const auto& arm) {
            test::LectureDesk desk;
            for (const char16_t* tool : {u"kstool", u"ksPreviewer"}) {
                desk.world.fs.Put(desk.world.places.installFolder + u"/" + tool, "program");
                desk.world.processes.programs[tool] = {500, 0, nullptr};
            }
            desk.Play().PressRecord().At(5s).PressEscape().At(9s).Run();
            desk.world.box.AnswerAll();
            const auto before = desk.world.ksLib.Get(test::LectureDesk::kPackage)->lengthMs;
            arm(desk.world.faults);
            desk.session.addIn.NotesButton(id);
            desk.world.faults.Clear();
            EXPECT_FALSE(desk.session.addIn.CommandBusy);
            EXPECT_TRUE(desk.world.presenter.OnScreen().empty());
            EXPECT_EQ(desk.world.ksLib.Get(test::LectureDesk::kPackage)->lengthMs, before);
        });
    }
}

TEST_F(Handlers, SecondClickWhileAToolRuns_ReturnsAtOnce) {
    RecordTenSeconds();
    Play().At(1ms).Command(u"mnuEdit").At(1s).Command(u"mnuEdit").Command(u"mnuCompress").At(9s).Run();
    EXPECT_EQ(world.processes.Runs(u"kseditor").size(), 1U);
    EXPECT_TRUE(Boxes().empty());
    ExpectNothingLeft();
}

TEST_F(Handlers, RecordWhileACommandIsOpen_IsRefusedInASentence_ForTheCommandHoldsTheProject) {
    RecordTenSeconds();
    Play().At(1ms).Command(u"mnuEdit").At(1s).PressRecord().At(9s).Run();
    EXPECT_EQ(Boxes(), Texts{"Another command of Kestrum is open.\r\n\r\nClose it first, then try again."});
    EXPECT_EQ(StoredEntries().size(), 1U);
}

TEST_F(Handlers, CommandsThatReachPastTheEntranceWhileRecording_DoNotTouchTheProject) {
    Play().PressRecord().At(5s).Do([this] {
        const String folder = session.support.workFolder;
        world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"0");  // the marker looks stale
        for (const char16_t* id : {u"mnuEdit", u"mnuMP4", u"mnuPreview", u"mnuConfigure", u"mnuDevice"}) {
            session.addIn.NotesButton(id);
        }
        EXPECT_EQ(session.support.workFolder, folder);
        EXPECT_TRUE(world.fs.FolderExists(folder));
    });
    Play().At(9s).PressEscape().At(15s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    ExpectAtRest();
}

// --- tools ---------------------------------------------------------------------------------------------------------

TEST_F(Handlers, EditAndAdvancedEdit_RunTheirEditors_OnTheUnpackedProject) {
    RecordTenSeconds();
    for (const auto& [id, tool] :
         {std::pair<String, String>{u"mnuEdit", u"kseditor"}, {u"mnuAdvEdit", u"ksAdvEditor"}}) {
        sawWorkFolder = false;
        EXPECT_TRUE(BoxesOf(id).empty());
        EXPECT_EQ(ArgumentsOf(tool).back(), kPackage);
        EXPECT_TRUE(sawWorkFolder) << "the project is there for as long as the editor runs";
    }
}

TEST_F(Handlers, MissingEditor_IsToldByTheWindowThatWouldRunIt) {
    RecordTenSeconds();
    RemoveTool(u"kseditor");
    EXPECT_EQ(BoxesOf(u"mnuEdit"), Texts{"Execution failed because \"/opt/kestrum/kseditor\" does not exist!"});
    EXPECT_EQ(world.box.Shown().back().title, u"frmExecCmd.tmrExec_Timer");
}

TEST_F(Handlers, Preview_RunsThePreviewer_OnThePageAndTheTemplate) {
    RecordTenSeconds();
    EXPECT_TRUE(BoxesOf(u"mnuPreview").empty());
    const std::vector<String> arguments = ArgumentsOf(u"ksPreviewer");
    ASSERT_EQ(arguments.size(), 3U);
    EXPECT_EQ(arguments[0], session.support.workFolder + u"/index.html");
    EXPECT_EQ(arguments[1], u"default");
    EXPECT_EQ(arguments[2], kPackage);
    EXPECT_TRUE(sawWorkFolder);
}

TEST_F(Handlers, Preview_DoesNotCountAsBusy) {
    RecordTenSeconds();
    bool busy = true;
    Play().At(1ms).Command(u"mnuPreview").At(1s).Do([&] { busy = session.addIn.CommandBusy; }).At(9s).Run();
    EXPECT_FALSE(busy);
    ExpectNothingLeft();
}

TEST_F(Handlers, CommandDuringAPreview_HasAFolderOfItsOwn_AndLeavesThePreviewsAlone) {
    RecordTenSeconds();
    std::size_t folders = 0;
    String previewed;
    Play()
        .At(1ms)
        .Command(u"mnuPreview")
        .At(500ms)
        .Do([&] { previewed = session.support.workFolder; })
        .Command(u"mnuCompress")
        .At(1s)
        .Do([&] {
            EXPECT_TRUE(world.fs.FolderExists(previewed));
            EXPECT_NE(session.support.workFolder, previewed);
            folders = 1;
        })
        .At(9s)
        .Run();
    EXPECT_EQ(folders, 1U);
    ExpectNothingLeft();
}

TEST_F(Handlers, RecordingDuringAPreview_KeepsItsProject_WhenThePreviewEnds) {
    RecordTenSeconds();
    Play().At(1ms).Command(u"mnuPreview").At(500ms).PressRecord().At(1s).At(10s).PressEscape().At(19s).Run();
    EXPECT_EQ(StoredEntries().size(), 2U);
    EXPECT_TRUE(WorkFolders().empty());
}

TEST_F(Handlers, SecondToolDuringAPreview_IsRefusedInASentence) {
    RecordTenSeconds();
    Play().At(1ms).Command(u"mnuPreview").At(1s).Command(u"mnuEdit").At(9s).Run();
    EXPECT_EQ(Boxes(), Texts{"Another command of Kestrum is open.\r\n\r\nClose it first, then try again."});
    EXPECT_TRUE(world.processes.Runs(u"kseditor").empty());
    ExpectNothingLeft();
}

TEST_F(Handlers, ClosingThePreviewsWindow_EndsThePreview_ButNobodyClosesAnEditors) {
    RecordTenSeconds();
    world.presenter.Do(u"frmExecCmd", u"close", [](ui::Form& form) { EXPECT_TRUE(form.CloseByUser()); }).After(500);
    EXPECT_TRUE(BoxesOf(u"mnuPreview").empty());
    ASSERT_EQ(world.processes.Runs(u"ksPreviewer").size(), 1U);
    world.presenter.Do(u"frmExecCmd", u"close", [](ui::Form& form) { EXPECT_FALSE(form.CloseByUser()); }).After(500);
    EXPECT_TRUE(BoxesOf(u"mnuEdit").empty());
    EXPECT_FALSE(world.processes.Runs(u"kseditor").front().terminated);
}

TEST_F(Handlers, Preview_WithoutItsTool_SaysWhichOneIsMissing) {
    RecordTenSeconds();
    RemoveTool(u"ksPreviewer");
    EXPECT_EQ(BoxesOf(u"mnuPreview"), Texts{"Preview failed! Cannot find \"ksPreviewer\"!"});
}

// --- upload --------------------------------------------------------------------------------------------------------

TEST_F(Handlers, Upload_RunsItsTool_OnFolderAndPackage) {
    RecordTenSeconds();
    world.app.DeckOf(kDeck).properties[u"author"] = u"Anna";
    EXPECT_TRUE(BoxesOf(u"mnuUpload").empty());
    EXPECT_EQ(ArgumentsOf(u"kstool"), (std::vector<String>{u"upload", session.support.workFolder, kPackage}));
    EXPECT_TRUE(sawWorkFolder);
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find("Anna"), std::string::npos)
        << "the abstract is written first";
}

TEST_F(Handlers, Upload_OfAnOlderOffice_DoesNotRunTheTool) {
    RecordTenSeconds();
    session.addIn.OfficeMajor = 14;
    EXPECT_EQ(BoxesOf(u"mnuUpload").size(), 1U);
    EXPECT_TRUE(world.processes.Runs(u"kstool").empty());
}

TEST_F(Handlers, YouTubeUpload_OfExactlyFifteenMinutes_PassesWithoutTheMessage) {
    RecordTenSeconds();
    world.box.AnswerAll();
    SetPackageLength(900000);
    BoxesOf(u"mnuCompress");
    EXPECT_TRUE(BoxesOf(u"mnuYtUpload").empty());
    EXPECT_EQ(ArgumentsOf(u"kstool"), (std::vector<String>{u"ytupload", session.support.workFolder, kPackage}));
}

TEST_F(Handlers, YouTubeUpload_OfMore_IsTold_AndGoesOn) {
    RecordTenSeconds();
    world.box.AnswerAll();
    SetPackageLength(900001);
    BoxesOf(u"mnuCompress");
    const Texts boxes = BoxesOf(u"mnuYtUpload");
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].rfind("This lecture is longer than 15 minutes.", 0), 0U);
    EXPECT_EQ(ArgumentsOf(u"kstool").front(), u"ytupload");
}

struct NetworkShare : ::testing::Test {
    static constexpr char16_t kDeck[] = u"\\\\server\\share\\lecture.pptx";
};

TEST_F(NetworkShare, RefusesBothUploads_BeforeAnythingIsUnpacked) {
    test::LectureDesk desk(sim::PathStyle::Windows, kDeck);
    desk.world.box.AnswerAll();
    desk.Play().PressRecord().At(10s).PressEscape().At(15s).Run();
    ASSERT_TRUE(desk.world.ksLib.Get(u"\\\\server\\share\\lecture.ktr"));
    for (const char16_t* id : {u"mnuUpload", u"mnuYtUpload"}) {
        const std::size_t before = desk.world.box.Shown().size();
        const int unpacked = desk.world.faults.CountOf(u"ksLib.GetExtendDataFromProject");
        desk.session.addIn.NotesButton(id);
        ASSERT_EQ(desk.world.box.Shown().size(), before + 1);
        EXPECT_NE(desk.world.box.Shown().back().text.find(u"network share"), String::npos);
        EXPECT_EQ(desk.world.faults.CountOf(u"ksLib.GetExtendDataFromProject"), unpacked);
        EXPECT_TRUE(desk.WorkFolders().empty());
        EXPECT_FALSE(desk.session.addIn.CommandBusy);
    }
    // Other commands work there.
    const std::size_t before = desk.world.box.Shown().size();
    desk.session.addIn.NotesButton(u"mnuCompress");
    EXPECT_EQ(desk.world.box.Shown().back().text.find(u"network share"), String::npos);
    EXPECT_EQ(desk.world.box.Shown().size(), before + 1);
}

// --- publishing ----------------------------------------------------------------------------------------------------

TEST_F(Handlers, Compress_OfACompressedLecture_SaysSo) {
    RecordTenSeconds();
    auto package = world.ksLib.Get(kPackage);
    package->optimizeLevel = 1;
    world.ksLib.Put(kPackage, *package);
    EXPECT_EQ(BoxesOf(u"mnuCompress"), Texts{"This lecture has been compressed already."});
}

struct FlashLimit : Handlers {
    /// Entries at 0 and 10 s; the second lasts `ms`.
    std::string BoxWithSecondEntryOf(std::int32_t ms) {
        Play().PressRecord().At(10s).GoToSlide(2).At(15s).PressEscape().At(19s).Run();
        const std::string second = StoredEntries().back();
        SetPackageLength(std::stoi(second) + ms);
        world.box.AnswerAll();
        return BoxesOf(u"mnuflash").back();
    }
};

TEST_F(FlashLimit, EntryOfExactlyThirteenMinutes_Passes) {
    EXPECT_EQ(BoxWithSecondEntryOf(780000), "This version of Kestrum does not have the command \"Flash format\" yet.");
}

TEST_F(FlashLimit, LongerEntry_StopsTheCommand_WithItsNumber) {
    EXPECT_EQ(BoxWithSecondEntryOf(780001), "index 2 is too long to convert!");
}

struct Mp4Limit : Handlers {
    /// Whether the MP4 dialog opens for a source of this length, picture and size.
    bool Opens(std::int32_t lengthMs, std::int32_t width, std::int32_t height, std::int64_t bytes) {
        if (!world.ksLib.Get(kPackage)) RecordTenSeconds();
        auto package = world.ksLib.Get(kPackage);
        package->lengthMs = lengthMs;
        package->width = width;
        package->height = height;
        world.ksLib.Put(kPackage, *package);
        world.fs.SetReportedSize(kPackage, bytes);
        world.box.AnswerAll();
        opened = false;
        if (world.presenter.LeftOverActs().empty()) {
            world.presenter.Do(u"frmExportMp4", u"look", [this](ui::Form& form) {
                opened = true;
                form.CloseByUser();
            });
        }
        session.addIn.NotesButton(u"mnuMP4");
        return opened;
    }
    bool opened = false;
    static constexpr std::int64_t kRich = 1932735283;
};

// 1920 x 1080 is taken for 3173 kbit/s (3172.608); 1932735283 bytes last exactly that long at 4872956 ms.
TEST_F(Mp4Limit, ReachedExactly_Passes) {
    EXPECT_TRUE(Opens(4872956, 1920, 1080, kRich));
}

TEST_F(Mp4Limit, PassedByOneKilobit_IsTooBig) {
    EXPECT_FALSE(Opens(4874500, 1920, 1080, kRich)) << "3171.99, which is 3172";
    EXPECT_NE(Boxes().back().find("too "), std::string::npos);
}

TEST_F(Mp4Limit, IsRoundedToTheNearestKilobit) {
    EXPECT_TRUE(Opens(4873700, 1920, 1080, kRich)) << "3172.51";
    EXPECT_FALSE(Opens(4873800, 1920, 1080, kRich)) << "3172.45";
}

// 200 x 250 is taken for 76.5 kbit/s.
TEST_F(Mp4Limit, HalfAKilobit_IsRoundedToTheEvenNumber) {
    EXPECT_TRUE(Opens(203445819, 200, 250, kRich)) << "a limit of 76";
}

TEST_F(Mp4Limit, PoorSource_CountsFiveTimesItsRateAtMost) {
    EXPECT_FALSE(Opens(14400000, 1280, 720, kRich)) << "1410 against 1074";
    EXPECT_FALSE(Opens(14400000, 1280, 720, 387000000)) << "five times 215";
    EXPECT_TRUE(Opens(14400000, 1280, 720, 385200000)) << "five times 214";
}

TEST_F(Mp4Limit, VeryShortRecording_Passes) {
    EXPECT_TRUE(Opens(1, 1280, 720, 5000));
}

}  // namespace
}  // namespace kestrum
