// The newcomer's door: one lecture, told slowly.
//
// Everything outside the program (the slide-show host, the media library, the file system, the clock, the user) is a
// port: an abstract class in src/host/. On a real desk LibreOffice, a worker process and the operating system stand
// behind those ports. Here it is the scripted world of src/adapters/sim/: the same ports, in memory, on virtual time.
// So a two-hour lecture takes a millisecond, and a full disk is one line.
//
// Read this file from top to bottom, then tests/recording/Recording_test.cpp for the rules of a recording.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>

#include "Places.h"
#include "adapters/sim/Scenario.h"
#include "adapters/sim/World.h"
#include "addin/Session.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;

const String kDeck = u"/home/anna/waves.pptx";
const String kPackage = u"/home/anna/waves.ktr";

std::string TemplateProject() {
    std::ifstream file(std::string(places::kSource) + "/install/default.ksp", std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

TEST(Example, ALectureIsRecorded_AndEverySlideCanBeFoundAgain) {
    // 1. A desk. The world owns one fake of every port and begins quiet: no presentation, nobody at the keyboard.
    sim::World world;
    world.monitors.SetSingle(1280, 720);  // a screen of this size asks nothing before a recording

    // The install folder's template project, as the installer puts it there, and the presentation itself.
    world.fs.Put(u"/opt/kestrum/default.ksp", TemplateProject());
    world.fs.Put(kDeck, "slides");
    world.app.Open(sim::Deck::Titled(kDeck, {u"What is a wave?", u"Light", u"Sound"}));

    // A setting, as the settings dialog would have stored it: do not ask for the microphone's volume first.
    world.settings.Set(u"configure", u"chkSetVolBefRec", u"0");

    // 2. The program: one session on the ports, connected as the host connects it. From here on it lives on events.
    Session session(world.host());
    session.Connect();
    world.onCommand = [&](const String& id) { session.addIn.NotesButton(id); };  // a click in the host's menu

    // 3. The lecture. A scenario says what the user does and when; Run() lets it all happen.
    sim::Scenario(world)
        .PressRecord()  // the program asks the host for the show; the show's events start the encoder
        .At(60s)
        .GoToSlide(2)
        .At(150s)
        .GoToSlide(3)
        .At(200s)
        .PressEscape()  // the show ends, and with it the recording
        .At(210s)
        .Run();

    // 4. What the next program sees: a whole package beside the presentation ...
    auto package = world.ksLib.Get(kPackage);
    ASSERT_TRUE(package);
    EXPECT_FALSE(package->torn);

    // ... with a key frame for every slide. The encoder started 600 ms after the click (100 ms until the show is on
    // screen, 300 ms for the input hook, 200 ms until our own windows are off it), and each entry lies 150 ms behind
    // its slide's event, when the slide is drawn.
    EXPECT_EQ(package->keyFrames, (std::vector<std::int32_t>{0, 59550, 149550}));

    // ... and a project file that calls the slides by their titles.
    const std::string& project = package->stored.at("project");
    for (const char* title : {"What is a wave?", "Light", "Sound"}) {
        EXPECT_NE(project.find(title), std::string::npos) << title;
    }

    // 5. What the user sees: no box came up, the show is over, nothing of ours is left on the screen.
    EXPECT_TRUE(world.box.Shown().empty());
    EXPECT_FALSE(world.app.ShowIsRunning());
    EXPECT_TRUE(world.presenter.OnScreen().empty());
}

TEST(Example, AFaultIsOneLine) {
    sim::World world;
    world.monitors.SetSingle(1280, 720);
    world.fs.Put(u"/opt/kestrum/default.ksp", TemplateProject());
    world.fs.Put(kDeck, "slides");
    world.app.Open(sim::Deck::Titled(kDeck, {u"What is a wave?", u"Light", u"Sound"}));
    world.settings.Set(u"configure", u"chkSetVolBefRec", u"0");
    Session session(world.host());
    session.Connect();
    world.onCommand = [&](const String& id) { session.addIn.NotesButton(id); };

    // Call number n of any port fails, once or for ever after; prefixes count together ("fs.*"). Here the first slide
    // change gets no key frame.
    world.faults.FailCall(u"ksLib.AddKeyFrame", 1, sim::Once);

    // The worker of the media library dies in the middle of the lecture. A box tells the user so: the presenter carries
    // out what the user does as soon as that box is on screen. An act that is left over, or a box that nobody answers,
    // fails the test.
    world.presenter.Click(u"frmMsgBox", u"cmdOK");

    sim::Scenario(world).PressRecord().At(10s).GoToSlide(2).At(20s).GoToSlide(3).At(30s).EncoderCrashes().At(60s).Run();

    // Nothing recorded is lost: the package was recovered when the project was stored, and the entry of slide 3 is in
    // it. Slide 2 has none, since its key frame was not made.
    auto package = world.ksLib.Get(kPackage);
    ASSERT_TRUE(package);
    EXPECT_NE(package->stored.at("project").find("Sound"), std::string::npos);
    EXPECT_EQ(package->stored.at("project").find("Light"), std::string::npos);
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    EXPECT_FALSE(world.app.ShowIsRunning());

    // The transcript has every call of the outside in its order, for tests that care about it.
    EXPECT_LT(world.transcript.IndexOf(u"ksLib.EncoderStart"), world.transcript.IndexOf(u"ksLib.EncoderStop"));
}

}  // namespace
}  // namespace kestrum
