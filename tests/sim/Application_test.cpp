// The scripted host tells its events in the order of the real one and raises where the real one raises.
#include "adapters/sim/Application.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"

namespace kestrum {
namespace {

/// Writes down what it is told.
struct Listener : host::IApplicationEvents {
    explicit Listener(host::IApplication& application) : app(application), subscription(app.Subscribe(*this)) {}
    void SlideShowBegin(host::ISlideShowWindow&) override { log.push_back("begin"); }
    void SlideShowNextSlide(host::ISlideShowWindow& window) override {
        log.push_back("slide " + std::to_string(window.View()->CurrentShowPosition()));
    }
    void SlideShowEnd(host::IPresentation&) override {
        log.push_back("end, " + std::to_string(app.SlideShowWindowCount()) + " counted");
    }
    void PresentationClose(host::IPresentation& presentation) override {
        log.push_back("close " + host::ToUtf8(presentation.FullName()));
    }
    host::IApplication& app;
    std::vector<std::string> log;
    std::unique_ptr<host::ISubscription> subscription;
};

struct SimApplication : ::testing::Test {
    SimApplication() { world.app.Open(sim::Deck::Titled(u"/home/anna/talk.pptx", {u"One", u"Two", u"Three"})); }
    std::unique_ptr<host::ISlideShowWindow> Run() { return world.app.ActivePresentation()->SlideShowSettings()->Run(); }
    sim::World world;
};

TEST_F(SimApplication, Run_TellsBeginAndFirstSlideBeforeItReturns_AndGivesARunningShowAgain) {
    Listener listener(world.app);
    auto window = Run();
    EXPECT_EQ(listener.log, (std::vector<std::string>{"begin", "slide 1"}));
    window->View()->GotoSlide(3, true);
    EXPECT_EQ(Run()->View()->CurrentShowPosition(), 3);
    EXPECT_EQ(listener.log, (std::vector<std::string>{"begin", "slide 1", "slide 3"}));
    EXPECT_EQ(world.app.ActivePresentation()->Saved(), 0);
}

TEST_F(SimApplication, End_IsToldWhileTheShowIsStillCounted_ThenItsStateRaises) {
    Listener listener(world.app);
    auto window = Run();
    auto view = window->View();
    view->Exit();
    EXPECT_EQ(listener.log.back(), "end, 1 counted");
    EXPECT_EQ(world.app.SlideShowWindowCount(), 0);
    EXPECT_THROW(view->State(), host::Error);
}

TEST_F(SimApplication, Close_IsToldBeforeItsShowEnds) {
    Listener listener(world.app);
    Run();
    world.app.Close(u"/home/anna/talk.pptx");
    EXPECT_EQ(listener.log,
              (std::vector<std::string>{"begin", "slide 1", "close /home/anna/talk.pptx", "end, 1 counted"}));
    EXPECT_THROW(world.app.ActivePresentation(), host::Error);
}

TEST_F(SimApplication, RightKey_TakesBuildsThenVisibleSlidesThenTheEnd) {
    world.app.DeckOf(u"/home/anna/talk.pptx").slides[0].builds = 1;
    world.app.DeckOf(u"/home/anna/talk.pptx").slides[1].hidden = true;
    Listener listener(world.app);
    Run();
    for (int i = 0; i < 3; ++i) world.app.PressRight();
    EXPECT_EQ(listener.log, (std::vector<std::string>{"begin", "slide 1", "slide 3", "end, 1 counted"}));
}

TEST_F(SimApplication, DeadOffice_FailsEveryCallButTheCachedName) {
    Listener listener(world.app);
    auto window = Run();
    auto presentation = window->Presentation();
    listener.subscription.reset();
    world.app.Die();
    EXPECT_THROW(window->View(), host::Error);
    EXPECT_EQ(presentation->FullName(), u"/home/anna/talk.pptx");
}

TEST_F(SimApplication, FinalDeck_RaisesOnActivate) {
    world.app.DeckOf(u"/home/anna/talk.pptx").markedFinal = true;
    EXPECT_THROW(world.app.ActivateWindow(), host::Error);
    EXPECT_THROW(Run()->Activate(), host::Error);
}

TEST_F(SimApplication, Fault_RaisesTheNthCall) {
    world.faults.FailCall(u"app.Run", 1, sim::Once);
    EXPECT_THROW(Run(), host::Error);
    EXPECT_NO_THROW(Run());
}

}  // namespace
}  // namespace kestrum
