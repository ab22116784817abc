#include "apps/commandline/SlideAdvance.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"

namespace kestrum::app {
namespace {

class SlideAdvanceTest : public testing::Test {
  protected:
    void Start(const sim::Deck& deck, std::int32_t slideMs) {
        m_world.app.Open(deck);
        m_world.app.StartShow(1);
        m_advance = std::make_unique<SlideAdvance>(m_world.app, m_world.loop, m_world.trace, slideMs);
        m_advance->Begin(m_world.loop.TickCount());
    }

    sim::World m_world;
    std::unique_ptr<SlideAdvance> m_advance;
};

TEST_F(SlideAdvanceTest, EachSlideStaysItsTime_ThenTheShowEnds) {
    Start(sim::Deck::Titled(u"/home/anna/a.pptx", {u"One", u"Two", u"Three"}), 2000);
    m_world.loop.Advance(1900);
    EXPECT_EQ(m_world.app.ShownSlide(), 1);
    m_world.loop.Advance(200);
    EXPECT_EQ(m_world.app.ShownSlide(), 2);
    m_world.loop.Advance(2000);
    EXPECT_EQ(m_world.app.ShownSlide(), 3);
    EXPECT_TRUE(m_world.app.ShowIsRunning());
    m_world.loop.Advance(2000);
    EXPECT_FALSE(m_world.app.ShowIsRunning());
    EXPECT_TRUE(m_advance->Finished());
}

TEST_F(SlideAdvanceTest, AShowThatSomebodyEnds_IsNotFinished) {
    Start(sim::Deck::Titled(u"/home/anna/a.pptx", {u"One", u"Two"}), 1000);
    m_world.app.PressEscape();
    m_world.loop.Advance(5000);
    EXPECT_FALSE(m_advance->Finished());
}

TEST_F(SlideAdvanceTest, HiddenSlidesArePassedOver) {
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/a.pptx", {u"One", u"Two", u"Three"});
    deck.slides[1].hidden = true;
    Start(deck, 1000);
    m_world.loop.Advance(1100);
    EXPECT_EQ(m_world.app.ShownSlide(), 3);
}

TEST_F(SlideAdvanceTest, BuildsComeInTheSecondHalf_AndDoNotLengthenTheSlide) {
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/a.pptx", {u"Builds", u"Two"});
    deck.slides[0].builds = 2;
    Start(deck, 4000);
    m_world.loop.Advance(1900);
    EXPECT_TRUE(m_world.app.SlideShowWindow(1)->View()->ClicksLeft());
    m_world.loop.Advance(1000);
    EXPECT_FALSE(m_world.app.SlideShowWindow(1)->View()->ClicksLeft());
    EXPECT_EQ(m_world.app.ShownSlide(), 1);
    m_world.loop.Advance(1200);
    EXPECT_EQ(m_world.app.ShownSlide(), 2);
}

TEST_F(SlideAdvanceTest, ManyBuilds_AreCutOffWhenTheTimeIsUp) {
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/a.pptx", {u"Builds", u"Two"});
    deck.slides[0].builds = 50;
    Start(deck, 1000);
    m_world.loop.Advance(1100);
    EXPECT_EQ(m_world.app.ShownSlide(), 2);
}

TEST_F(SlideAdvanceTest, AMachineThatStoodStill_GivesEachSlideItsTimeAllTheSame) {
    Start(sim::Deck::Titled(u"/home/anna/a.pptx", {u"One", u"Two", u"Three"}), 2000);
    m_world.loop.Advance(1000);
    m_world.loop.Sleep(3600000);  // nothing runs meanwhile
    m_world.loop.Advance(900);
    EXPECT_EQ(m_world.app.ShownSlide(), 1);
    m_world.loop.Advance(200);
    EXPECT_EQ(m_world.app.ShownSlide(), 2);
    m_world.loop.Advance(1800);
    EXPECT_EQ(m_world.app.ShownSlide(), 2);
    m_world.loop.Advance(200);
    EXPECT_EQ(m_world.app.ShownSlide(), 3);
}

TEST_F(SlideAdvanceTest, ADeadOffice_IsLeftAlone) {
    Start(sim::Deck::Titled(u"/home/anna/a.pptx", {u"One", u"Two"}), 1000);
    m_world.app.Die();
    m_world.loop.Advance(5000);
    EXPECT_FALSE(m_world.app.ShowIsRunning());
}

}  // namespace
}  // namespace kestrum::app
