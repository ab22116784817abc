// A desk ready for a lecture: the program connected to the scripted world, a saved presentation of titled slides, a
// screen that asks no questions, the install folder's files. What a test does not care about is switched off here.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <sstream>

#include "Places.h"
#include "adapters/sim/Scenario.h"
#include "adapters/sim/World.h"
#include "addin/Session.h"

namespace kestrum::test {

using namespace std::chrono_literals;

inline std::string InstallFile(const std::string& name) {
    std::ifstream file(std::string(places::kSource) + "/install/" + name, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

struct LectureDesk {
    static constexpr char16_t kDeck[] = u"/home/anna/talks/lecture.pptx";
    static constexpr char16_t kPackage[] = u"/home/anna/talks/lecture.ktr";

    explicit LectureDesk(sim::PathStyle style = sim::PathStyle::Linux, const String& deck = kDeck)
        : world(style), session(world.host()) {
        for (const char* name : {"default.ksp", "encfiles/photo.gif", "template/default/icons/cursor.gif"}) {
            world.fs.Put(world.places.installFolder + u"/" + host::FromUtf8(name), InstallFile(name));
        }
        world.fs.Put(deck, "slides");
        world.monitors.SetSingle(1280, 720);
        world.settings.Set(u"configure", u"chkSetVolBefRec", u"0");
        world.settings.Set(u"configure", u"chkLowVolDetect", u"0");
        world.processes.programs[u"Kestrum"] = {};
        world.app.Open(sim::Deck::Titled(deck, {u"Welcome", u"Waves", u"Light", u"Sound", u"Thanks"}));
        world.onCommand = [this](const String& id) { session.addIn.NotesButton(id); };
        session.Connect();
    }

    sim::Scenario Play() { return sim::Scenario(world); }

    void Set(const String& key, const String& value) { world.settings.Set(u"configure", key, value); }

    /// The entries of the open project, as "position title".
    std::vector<std::string> Entries() const {
        std::vector<std::string> entries;
        for (const CIndexItem& item : session.project.g_Project.index) {
            entries.push_back(host::ToUtf8(item.pos) + " " + host::ToUtf8(item.title));
        }
        return entries;
    }

    /// The entries that the package keeps, as "position title", read from its stored project file.
    std::vector<std::string> StoredEntries(const String& path = kPackage) {
        auto package = world.ksLib.Get(path);
        if (!package || !package->stored.count("project")) return {"(none stored)"};
        world.fs.Put(u"/tmp/look.ksp", package->stored.at("project"));
        CProjectFile file(session.c);
        file.Load(u"/tmp/look.ksp");
        world.fs.Remove(u"/tmp/look.ksp");
        std::vector<std::string> entries;
        for (const CIndexItem& item : file.index) {
            entries.push_back(host::ToUtf8(item.pos) + " " + host::ToUtf8(item.title));
        }
        return entries;
    }

    /// A marker of the settings as another process sees it.
    String Marker(const String& key) const { return world.settings.Get(u"tokens\\PowerPoint", key); }

    /// Folders of commands that were left behind.
    std::vector<String> WorkFolders() const {
        std::vector<String> found;
        for (const String& path : world.fs.All()) {
            if (path.find(u"_ksproj_") != String::npos) found.push_back(path);
        }
        return found;
    }

    std::vector<std::string> Boxes() const {
        std::vector<std::string> texts;
        for (const sim::ShownBox& box : world.box.Shown()) texts.push_back(host::ToUtf8(box.text));
        return texts;
    }

    /// What happened, for a look at a failing test.
    std::string Story() const {
        std::string text;
        for (const String& line : world.transcript.Lines()) text += host::ToUtf8(line) + "\n";
        for (const String& line : world.presenter.Transcript()) text += "form: " + host::ToUtf8(line) + "\n";
        for (const String& line : world.trace.skipped) text += "skipped: " + host::ToUtf8(line) + "\n";
        for (const String& line : world.trace.notes) text += "note: " + host::ToUtf8(line) + "\n";
        return text;
    }

    /// Nothing of a recording is left: no show, no encoder, no form but the driver's, no work folder, no marker.
    void ExpectAtRest() const {
        EXPECT_FALSE(world.app.ShowIsRunning());
        EXPECT_FALSE(world.ksLib.Running());
        EXPECT_FALSE(session.recording.g_Recording);
        EXPECT_FALSE(world.ksHook.Installed());
        EXPECT_EQ(world.loop.TimerCount(u"CheckEncoderState"), 0);
        EXPECT_TRUE(WorkFolders().empty());
        EXPECT_TRUE(world.presenter.OnScreen().empty());
        EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    }

    sim::World world;
    Session session;
};

struct Lecture : ::testing::Test, LectureDesk {
    ~Lecture() override {
        if (HasFailure()) std::cerr << Story();
    }
};

}  // namespace kestrum::test
