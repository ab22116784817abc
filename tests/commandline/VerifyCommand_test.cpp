// `kestrum verify` on the scripted world: outcome, sentences, exit codes, what is kept, what is never touched.
#include "apps/commandline/VerifyCommand.h"

#include <gtest/gtest.h>

#include <sstream>

#include "adapters/sim/PackageInspector.h"
#include "apps/commandline/Finding.h"
#include "apps/commandline/Unattended.h"
#include "project/ProjectWorld.h"
#include "support/modXml.h"

namespace kestrum::app {
namespace {

using test::Item;
using test::ProjectText;
using test::ProjectWorld;

/// What a program prints.
class Captured {
  public:
    Captured() : m_out(std::cout.rdbuf(out.rdbuf())), m_error(std::cerr.rdbuf(error.rdbuf())) {}
    ~Captured() {
        std::cout.rdbuf(m_out);
        std::cerr.rdbuf(m_error);
    }
    std::ostringstream out, error;

  private:
    std::streambuf* m_out;
    std::streambuf* m_error;
};

class VerifyCommandTest : public testing::Test {
  protected:
    int Run(bool repair = false, bool json = false) {
        Captured captured;
        Console console;
        if (json) console.ResultsOnly();
        UnattendedBox box(console);
        host::Host ports = w.world.HostWith({.box = &box});
        ui::Forms forms(w.world.presenter, w.world.loop);
        support::State state;
        state.applicationTitle = u"Kestrum";
        const support::Context c{ports, forms, state};
        const VerifyRequest request{host::ToUtf8(ProjectWorld::kPackage), repair, json};
        int code = 0;
        try {
            code = RunVerify(c, inspector, console, request, [this] { return cancelled; });
        } catch (const host::Error& failure) {
            failed = failure.Description();
            code = 1;
        }
        out = captured.out.str();
        error = captured.error.str();
        return code;
    }

    void Put(const std::string& items, const std::string& duration = "01:00") {
        w.PutPackage(ProjectText(items, duration), 60000, {0, 5000, 10000});
    }
    std::string Bytes(const String& path = ProjectWorld::kPackage) { return w.world.fs.Bytes(path); }
    bool Printed(const std::string& part) const { return out.find(part) != std::string::npos; }
    std::int64_t ScratchFolders() {
        const auto names = w.world.fs.ListFolder(w.world.shell.Environment(u"temp"));
        return std::count_if(names.begin(), names.end(), [](const String& name) { return name.starts_with(u"_ks"); });
    }
    bool Kept() { return w.world.fs.FileExists(kKept); }

    static constexpr char16_t kKept[] = u"/home/anna/talks/deck.ktr.before-repair";
    ProjectWorld w;
    sim::PackageInspector inspector{w.world};
    bool cancelled = false;
    std::string out, error;
    String failed;
};

TEST_F(VerifyCommandTest, AWholePackage_IsOneLineAndExitCodeZero) {
    Put(Item("one", "0") + Item("two", "5000"));
    const std::string before = Bytes();
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(out, "Whole: 01:00 of recording, 2 entries, each at a key frame.\n");
    EXPECT_EQ(Run(true), 0) << "nothing to repair";
    EXPECT_EQ(Bytes(), before);
    EXPECT_FALSE(Kept());
}

TEST_F(VerifyCommandTest, DamageIsToldWithItsMeaningAndChangesNothing) {
    Put(Item("one", "0") + Item("two", "7000"));
    const std::string before = Bytes();
    EXPECT_EQ(Run(), 3);
    EXPECT_TRUE(
        Printed("1. Entry 2 \"two\" lies at 00:07, where the recording has no key frame; the one before is at "
                "00:05."));
    EXPECT_TRUE(Printed("--repair: Takes the entry out"));
    EXPECT_TRUE(Printed("Damaged: 1 found, 1 of which --repair mends."));
    EXPECT_EQ(Bytes(), before);
    EXPECT_EQ(ScratchFolders(), 0);
}

TEST_F(VerifyCommandTest, Repair_MendsAndKeepsThePackageAsItWas) {
    Put(Item("one", "0") + Item("late", "10000") + Item("two", "5000") + Item("off", "12000"), "00:30");
    const std::string before = Bytes();
    EXPECT_EQ(Run(true), 4) << out << error;
    EXPECT_TRUE(Printed("Mended."));
    EXPECT_TRUE(Printed("Repaired: the package is whole."));
    EXPECT_EQ(Bytes(kKept), before);
    const std::string project = w.StoredProject();
    EXPECT_LT(project.find("<title>two</title>"), project.find("<title>late</title>")) << "sorted, not dropped";
    EXPECT_EQ(project.find("<title>off</title>"), std::string::npos);
    EXPECT_NE(project.find("duration=\"01:00\""), std::string::npos);
    EXPECT_EQ(Run(), 0) << out;
    EXPECT_EQ(ScratchFolders(), 0);
}

TEST_F(VerifyCommandTest, Repair_OfAnIndexThatBeginsLate_CoversTheBeginning) {
    Put(Item("two", "5000"));
    EXPECT_EQ(Run(true), 4) << out << error;
    EXPECT_NE(w.StoredProject().find("<title>----</title>"), std::string::npos);
}

TEST_F(VerifyCommandTest, Repair_OfAnInterruptedRecording_BringsItsEntries) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0, 5000});
    package.torn = true;
    package.journal = "0\td\tone\t\n5000\td\ttwo\t\n";
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    EXPECT_EQ(Run(), 3);
    EXPECT_TRUE(Printed("The recording did not come to its end"));
    EXPECT_EQ(Run(true), 4) << out << error;
    EXPECT_NE(w.StoredProject().find("<title>two</title>"), std::string::npos);
}

TEST_F(VerifyCommandTest, Repair_SecondTime_KeepsBothCopies) {
    Put(Item("two", "5000"));
    Run(true);
    Put(Item("three", "10000"));
    EXPECT_EQ(Run(true), 4);
    EXPECT_TRUE(Kept());
    EXPECT_TRUE(w.world.fs.FileExists(String(kKept) + u"2"));
}

TEST_F(VerifyCommandTest, Repair_OfWhatCannotBeMended_TouchesNothing) {
    Put(Item("one", "0"));
    inspector.damages = {{host::DamageKind::Media, 2000, 3000, 4711}};
    const std::string before = Bytes();
    EXPECT_EQ(Run(true), 3);
    EXPECT_TRUE(Printed("The recording is damaged from 00:02 to 00:03 (4711 bytes)."));
    EXPECT_TRUE(Printed("none of which can be mended"));
    EXPECT_EQ(Bytes(), before);
    EXPECT_FALSE(Kept());
}

TEST_F(VerifyCommandTest, Repair_BesideDamagedMedia_MendsTheIndexAndSaysWhatIsLeft) {
    Put(Item("one", "0") + Item("off", "700"));
    inspector.damages = {{host::DamageKind::Media, 2000, 3000, 4711}};
    EXPECT_EQ(Run(true), 3);
    EXPECT_TRUE(Printed("Mended."));
    EXPECT_TRUE(Printed("Not mended."));
    EXPECT_TRUE(Printed("Damaged: 1 could not be mended."));
    EXPECT_EQ(w.StoredProject().find("<title>off</title>"), std::string::npos);
}

TEST_F(VerifyCommandTest, Repair_WithoutRoomForTheCopy_ChangesNothing) {
    Put(Item("two", "5000"));
    w.world.fs.AddDrive(u"/home/anna/talks", host::DriveType::Fixed, 1000);
    const std::string before = Bytes();
    EXPECT_EQ(Run(true), 1);
    EXPECT_NE(failed.find(u"Nothing was changed."), String::npos);
    EXPECT_EQ(Bytes(), before);
}

TEST_F(VerifyCommandTest, Repair_UnderAnyFault_LosesNoEntry) {
    for (const char16_t* pattern : {u"fs.*", u"ksLib.*"}) {
        const int runs = sim::FaultSweep(pattern, [](const auto& arm) {
            VerifyCommandTest_Repair_UnderAnyFault_LosesNoEntry_Test desk;
            desk.Put(Item("one", "0") + Item("late", "10000") + Item("two", "5000"), "00:30");
            arm(desk.w.world.faults);
            desk.Run(true);
            const std::string stored = desk.w.StoredProject();
            for (const char* title : {"one", "two", "late"}) EXPECT_NE(stored.find(title), std::string::npos) << title;
        });
        EXPECT_GE(runs, 5) << host::ToUtf8(pattern);
    }
}

TEST_F(VerifyCommandTest, WhatIsNoPackage_IsOneSentenceAndExitCodeFive) {
    EXPECT_EQ(Run(), 5);
    EXPECT_EQ(error, "kestrum: There is no package \"/home/anna/talks/deck.ktr\".\n");
    w.world.fs.Put(ProjectWorld::kPackage, "Dear students");
    EXPECT_EQ(Run(true), 5);
    EXPECT_EQ(error, "kestrum: \"/home/anna/talks/deck.ktr\" is not a Kestrum package.\n");
    EXPECT_EQ(out, "");
    EXPECT_EQ(Bytes(), "Dear students");
}

TEST_F(VerifyCommandTest, ALivingRecording_IsRefusedInOneSentence) {
    Put(Item("one", "0"));
    inspector.recording = true;
    const std::string before = Bytes();
    EXPECT_EQ(Run(true), 5);
    EXPECT_NE(error.find("is being recorded"), std::string::npos);
    EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 1);
    EXPECT_EQ(Bytes(), before);
}

TEST_F(VerifyCommandTest, OtherGenerationsAndTheEncryptedState_AreSentences) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    const auto sentence = [&] {
        w.world.ksLib.Put(ProjectWorld::kPackage, package);
        EXPECT_EQ(Run(true), 5);
        return error;
    };
    package.formatVersion = 7 * 256;
    EXPECT_NE(sentence().find("older generation (format 7.0)"), std::string::npos);
    package.formatVersion = 8 * 256 + 1;
    EXPECT_NE(sentence().find("newer Kestrum (format 8.1)"), std::string::npos);
    package.formatVersion = 8 * 256;
    package.ectState = 1;
    EXPECT_NE(sentence().find("is encrypted"), std::string::npos);
}

TEST_F(VerifyCommandTest, ProjectFilesThatCannotBeUsed_AreNamed) {
    sim::Package package = w.PutPackage("<kestrum ver=\"8.0\"><project><ind", 60000, {0});
    EXPECT_EQ(Run(true), 3);
    EXPECT_TRUE(Printed("The project file in the package cannot be read:"));
    package.stored["project"] = "<kestrum ver=\"7.5\"><project/></kestrum>";
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    EXPECT_EQ(Run(true), 3);
    EXPECT_TRUE(Printed("has version \"7.5\""));
    package.stored.erase("project");
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    EXPECT_EQ(Run(true), 3);
    EXPECT_TRUE(Printed("The package holds no project file."));
    EXPECT_FALSE(Kept());
}

TEST_F(VerifyCommandTest, AnEmptyPackage_IsWholeWithoutARecording) {
    w.PutPackage(ProjectText("", "00:00"), 0, {});
    EXPECT_EQ(Run(), 0);
    EXPECT_TRUE(Printed("holds no recording yet"));
}

TEST_F(VerifyCommandTest, Cancelled_ChangesNothingAndSaysSo) {
    Put(Item("two", "5000"));
    const std::string before = Bytes();
    inspector.meanwhile = [&] {
        cancelled = true;
        inspector.Cancel();
    };
    EXPECT_EQ(Run(true), -1);
    EXPECT_NE(error.find("Cancelled; nothing was changed."), std::string::npos);
    EXPECT_EQ(Bytes(), before);
    EXPECT_FALSE(Kept());
}

TEST_F(VerifyCommandTest, Cancelled_WhileTheCopyIsMade_TakesTheCopyAwayAgain) {
    Put(Item("two", "5000"));
    const std::string before = Bytes();
    inspector.meanwhile = [&] { w.world.loop.Post([&] { w.world.loop.Post([&] { cancelled = true; }); }); };
    const int code = Run(true);
    EXPECT_TRUE(code == -1) << out;
    EXPECT_EQ(Bytes(), before);
    EXPECT_FALSE(Kept());
}

TEST_F(VerifyCommandTest, Json_HasOneShapeForEveryOutcome) {
    Put(Item("one", "0") + Item("two", "7000"));
    EXPECT_EQ(Run(false, true), 3);
    EXPECT_EQ(
        out.find(
            "{\"package\":\"\\/home\\/anna\\/talks\\/deck.ktr\",\"state\":\"damaged\",\"text\":\"Damaged: 1 found, 1 "
            "of which --repair mends.\",\"duration_ms\":60000,\"entries\":2,\"findings\":[{\"kind\":"
            "\"not_on_key_frame\",\"entry\":2,\"pos_ms\":7000,\"title\":\"two\",\"what\":\"Entry 2 "),
        0U)
        << out;
    EXPECT_TRUE(Printed("\"mendable\":true,\"mended\":false}],\"kept\":\"\"}"));
    EXPECT_EQ(Run(true, true), 4);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << "notices are elsewhere";
    EXPECT_TRUE(Printed("\"state\":\"repaired\""));
    EXPECT_TRUE(Printed("\"mended\":true"));
    EXPECT_TRUE(Printed("deck.ktr.before-repair\"}"));
    w.world.fs.Remove(ProjectWorld::kPackage);
    EXPECT_EQ(Run(false, true), 5);
    EXPECT_TRUE(Printed("\"state\":\"refused\",\"text\":\"There is no package"));
    EXPECT_TRUE(Printed("\"findings\":[],\"kept\":\"\"}"));
}

TEST_F(VerifyCommandTest, TracesOfARecordingThatDied_AreToldAndTakenAway) {
    Put(Item("one", "0"));
    w.world.fs.Put(u"/home/anna/talks/deck.ktr._tmp/media.rec.tmp", ProjectText(Item("one", "0")));
    EXPECT_EQ(Run(), 3);
    EXPECT_TRUE(Printed("The traces of a recording that did not end"));
    EXPECT_EQ(Run(true), 4) << out << error;
    EXPECT_FALSE(w.world.fs.FolderExists(u"/home/anna/talks/deck.ktr._tmp"));
}

TEST_F(VerifyCommandTest, AProjectFileThatCouldNotBeStored_IsTakenUpAndKept) {
    Put(Item("one", "0"));
    const std::string waiting = ProjectText(Item("one", "0") + Item("two", "5000"));
    w.world.fs.Put(u"/home/anna/talks/deck.ktr.unsaved", waiting);
    EXPECT_EQ(Run(true), 4) << out << error;
    EXPECT_NE(w.StoredProject().find("<title>two</title>"), std::string::npos);
    EXPECT_EQ(Bytes(u"/home/anna/talks/deck.ktr.before-repair.unsaved"), waiting);
}

TEST(VerifyTexts, AllStandInTheLanguageFile) {
    const modXml::Document document = modXml::Document::ParseBytes(test::InstallFile("res.xml"));
    std::map<String, String> texts;
    for (const modXml::Node& section : document.Root().Children()) {
        if (section.Attribute(u"name") != u"commandLine") continue;
        for (const modXml::Node& text : section.Children()) texts[*text.Attribute(u"name")] = text.Text();
    }
    for (const FindingText& text : FindingTexts()) {
        for (const char16_t* ending : {u"", u"Means", u"Repair"})
            EXPECT_TRUE(texts.contains(String(text.key) + ending)) << host::ToUtf8(text.key) << host::ToUtf8(ending);
    }
}

}  // namespace
}  // namespace kestrum::app
