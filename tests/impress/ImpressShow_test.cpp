// Shows of the sample lecture in a real Impress: what is told, in which order, and what the object model answers.
#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

class ImpressShow : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        desk = std::make_unique<OfficeDesk>();
        folder = std::make_unique<TempFolder>();
        deck = folder->CopyOfLecture("lecture one.pptx");
        desk->office->Open(Text(deck));
    }
    static void TearDownTestSuite() {
        desk.reset();
        folder.reset();
    }
    void TearDown() override {
        if (desk->App().SlideShowWindowCount() > 0) desk->App().SlideShowWindow(1)->View()->Exit();
    }
    host::IApplication& App() { return desk->App(); }
    std::unique_ptr<host::IPresentation> Deck() { return App().ActivePresentation(); }

    using Lines = std::vector<std::string>;
    static std::unique_ptr<OfficeDesk> desk;
    static std::unique_ptr<TempFolder> folder;
    static fs::path deck;
};
std::unique_ptr<OfficeDesk> ImpressShow::desk;
std::unique_ptr<TempFolder> ImpressShow::folder;
fs::path ImpressShow::deck;

TEST_F(ImpressShow, Run_ReturnsAfterTheBeginAndTheFirstSlideWereTold) {
    EventLog log(App());
    const auto window = desk->Run();
    ASSERT_EQ(log.lines.size(), 2u);
    EXPECT_EQ(log.lines[0], "begin (1 shows)");
    EXPECT_EQ(log.lines[1], "slide " + std::to_string(window->View()->CurrentShowPosition()));
    EXPECT_EQ(App().SlideShowWindowCount(), 1);
    EXPECT_EQ(window->Presentation()->FullName(), Text(deck));
    EXPECT_EQ(window->View()->State(), 1);
}

TEST_F(ImpressShow, Run_OnARunningShow_GivesItsWindowAndTellsNothing) {
    desk->Run()->View()->GotoSlide(2, true);
    EventLog log(App());
    EXPECT_EQ(desk->Run()->View()->CurrentShowPosition(), 2);
    EXPECT_EQ(log.lines, Lines{});
}

TEST_F(ImpressShow, GotoSlide_ReturnsAfterItsEventWasTold) {
    const auto window = desk->Run();
    window->View()->GotoSlide(1, true);
    EventLog log(App());
    window->View()->GotoSlide(3, true);
    window->View()->GotoSlide(7, true);
    window->View()->GotoSlide(2, true);
    EXPECT_EQ(log.lines, (Lines{"slide 3", "slide 7", "slide 2"}));
}

TEST_F(ImpressShow, GotoSlide_ToTheSlideOnScreen_IsNotToldAgain) {
    const auto window = desk->Run();
    window->View()->GotoSlide(4, true);
    EventLog log(App());
    window->View()->GotoSlide(4, true);
    desk->loop.DoEvents();
    EXPECT_EQ(log.lines, Lines{});
}

TEST_F(ImpressShow, GotoSlide_ShowsAHiddenSlideOnRequest) {
    const auto window = desk->Run();
    window->View()->GotoSlide(1, true);
    EventLog log(App());
    window->View()->GotoSlide(5, true);
    EXPECT_EQ(log.lines, Lines{"slide 5"});
    EXPECT_TRUE(window->View()->NextSlide());
    EXPECT_EQ(window->View()->CurrentShowPosition(), 6);
}

TEST_F(ImpressShow, GotoSlide_OutsideTheDeck_Raises) {
    const auto window = desk->Run();
    EXPECT_THROW(window->View()->GotoSlide(9, true), host::Error);
    EXPECT_THROW(window->View()->GotoSlide(0, true), host::Error);
}

TEST_F(ImpressShow, NextSlide_PassesHiddenSlidesAndBuilds_AndIsFalseOnTheLast) {
    const auto window = desk->Run();
    window->View()->GotoSlide(1, true);
    EventLog log(App());
    while (window->View()->NextSlide()) {
    }
    EXPECT_EQ(log.lines, (Lines{"slide 2", "slide 3", "slide 4", "slide 6", "slide 7", "slide 8"}));
}

TEST_F(ImpressShow, Next_StepsThroughBuilds_BeforeItLeavesTheSlide) {
    const auto window = desk->Run();
    window->View()->GotoSlide(6, true);
    EXPECT_FALSE(window->View()->ClicksLeft()) << "a slide without builds waits for nothing";
    window->View()->GotoSlide(7, true);
    EventLog log(App());
    int clicks = 0;
    for (; window->View()->ClicksLeft() && clicks < 30; ++clicks) {
        window->View()->Next();  // one that comes before the slide is drawn is lost
        real::WaitFor([&] { return !window->View()->ClicksLeft(); }, 1);
    }
    EXPECT_GE(clicks, 3);
    EXPECT_EQ(log.lines, Lines{});
    window->View()->Next();
    EXPECT_TRUE(desk->PumpUntil([&] { return !log.lines.empty(); }));
    EXPECT_EQ(log.lines, Lines{"slide 8"});
}

TEST_F(ImpressShow, Exit_ReturnsAfterTheEndWasTold_AndTheEndingShowStillCounts) {
    const auto window = desk->Run();
    EventLog log(App());
    window->View()->Exit();
    EXPECT_EQ(log.lines, Lines{"end (1 shows) lecture one.pptx"});
    EXPECT_EQ(App().SlideShowWindowCount(), 0);
    EXPECT_THROW(window->View()->State(), host::Error);
    EXPECT_THROW(window->View()->Exit(), host::Error);
}

TEST_F(ImpressShow, TheUsersKeys_AreToldFromTheLoop) {
    const auto window = desk->Run();
    window->View()->GotoSlide(1, true);
    window->Activate();
    EventLog log(App());
    desk->KeyUntil("Right", [&] { return !log.lines.empty(); });
    EXPECT_EQ(log.lines.front(), "slide 2");
    desk->KeyUntil("Escape", [&] { return App().SlideShowWindowCount() == 0; });
    EXPECT_EQ(log.lines.back(), "end (1 shows) lecture one.pptx");
}

TEST_F(ImpressShow, InsideAnEvent_TheViewAnswersForThatEvent) {
    const auto window = desk->Run();
    window->View()->GotoSlide(1, true);
    EventLog log(App());
    std::vector<std::int32_t> positions;
    log.onSlide = [&](host::ISlideShowWindow& shown) {
        if (positions.empty()) {
            positions.push_back(0);
            shown.View()->GotoSlide(6, true);  // the show moves on inside the event of slide 3
        }
        positions.push_back(shown.View()->Slide()->SlideIndex());
    };
    window->View()->GotoSlide(3, true);
    EXPECT_EQ(log.lines, (Lines{"slide 3", "slide 6"}));
    EXPECT_EQ(positions, (std::vector<std::int32_t>{0, 6, 3}));
    EXPECT_EQ(window->View()->CurrentShowPosition(), 6);
}

TEST_F(ImpressShow, AnEndInsideTheFirstEvent_LetsRunReturnAWindowOfAnEndedShow) {
    EventLog log(App());
    log.onSlide = [](host::ISlideShowWindow& shown) { shown.View()->Exit(); };
    const auto window = desk->Run();
    ASSERT_EQ(log.lines.size(), 3u);
    EXPECT_EQ(log.lines.front(), "begin (1 shows)");
    EXPECT_EQ(log.lines.back(), "end (1 shows) lecture one.pptx");
    EXPECT_THROW(window->View()->State(), host::Error);
}

TEST_F(ImpressShow, TheWindow_CoversTheScreen) {
    const auto window = desk->Run();
    EXPECT_FLOAT_EQ(window->Left(), 0);
    EXPECT_FLOAT_EQ(window->Top(), 0);
}

TEST_F(ImpressShow, TheMonitorOfShows_IsTheUsersSetting_AndLeavesTheDeckAsSaved) {
    EXPECT_EQ(Deck()->SlideShowSettings()->ShowMonitor(), 0);
    Deck()->SlideShowSettings()->SetShowMonitor(1);
    EXPECT_EQ(Deck()->SlideShowSettings()->ShowMonitor(), 1);
    EXPECT_NE(Deck()->Saved(), 0);
    Deck()->SlideShowSettings()->SetShowMonitor(0);
}

TEST_F(ImpressShow, ThePen_TakesItsColourAsBlueGreenRed) {
    const auto window = desk->Run();
    const auto view = window->View();
    view->SetPointerType(host::PointerType::Pen);
    view->SetPointerColor(0x0000FF);
    EXPECT_EQ(view->PointerType(), host::PointerType::Pen);
    EXPECT_EQ(view->PointerColor(), 0x0000FF);
    view->SetPointerType(host::PointerType::Arrow);
    EXPECT_EQ(view->PointerType(), host::PointerType::Arrow);
}

TEST_F(ImpressShow, AShow_LeavesTheDeckAsSaved) {
    EXPECT_NE(Deck()->Saved(), 0);
    const auto window = desk->Run();
    window->View()->GotoSlide(2, true);
    window->View()->Exit();
    EXPECT_NE(Deck()->Saved(), 0);
}

TEST_F(ImpressShow, Saved_CanBeTakenBack) {
    Deck()->SetSaved(0);
    EXPECT_EQ(Deck()->Saved(), 0);
    Deck()->SetSaved(-1);
    EXPECT_NE(Deck()->Saved(), 0);
}

TEST_F(ImpressShow, Run_StartsOnTheSelectedSlide) {
    const auto range = App().SelectedSlides();
    EXPECT_EQ(range->Count(), 1);
    EventLog log(App());
    desk->Run();
    EXPECT_EQ(log.lines.back(), "slide " + std::to_string(range->SlideIndex()));
}

TEST_F(ImpressShow, SlideSize_IsExactToTheEighthOfAPoint) {
    EXPECT_FLOAT_EQ(Deck()->SlideWidth(), 960);
    EXPECT_FLOAT_EQ(Deck()->SlideHeight(), 540);
    EXPECT_FLOAT_EQ(Deck()->Slide(1)->MasterHeight(), 540);
    EXPECT_EQ(Deck()->SlideCount(), 8);
}

TEST_F(ImpressShow, Titles_AreTheDecks) {
    const std::vector<std::u16string> expected{u"How a Key Frame Works",
                                               u"A video is mostly repetition",
                                               u"",
                                               u"关键帧是什么？",
                                               u"Backup: why not key frames only?",
                                               u"What a key frame costs",
                                               u"How a player finds your slide",
                                               u"Three things to take home"};
    for (std::int32_t number = 1; number <= 8; ++number) {
        const auto shapes = Deck()->Slide(number)->Shapes();
        const auto& title = expected[static_cast<std::size_t>(number - 1)];
        EXPECT_EQ(shapes->HasTitle(), !title.empty()) << number;
        if (title.empty())
            EXPECT_THROW(shapes->Title(), host::Error);
        else
            EXPECT_EQ(shapes->Title()->Text(), title);
    }
}

TEST_F(ImpressShow, ALargeTextAtTheTop_TellsItsPlaceAndSize) {
    const auto slide = Deck()->Slide(3);
    const auto shapes = slide->Shapes();
    for (std::int32_t i = 1; i <= shapes->Count(); ++i) {
        const auto shape = shapes->Item(i);
        if (!shape->HasTextFrame() || !shape->HasText()) continue;
        EXPECT_EQ(shape->Text(), u"Seeking starts at the key frame before");
        EXPECT_FLOAT_EQ(shape->TextFontSize(), 34);
        EXPECT_LT(shape->TextTop() / slide->MasterHeight(), 0.2F);
        EXPECT_GT(shape->TextTop(), 26);
        return;
    }
    FAIL() << "no shape with text";
}

TEST_F(ImpressShow, DocumentProperties_AreTheDecks) {
    const auto value = [&](const char16_t* name) { return Deck()->BuiltInDocumentProperty(name); };
    EXPECT_EQ(value(u"title"), u"How a Key Frame Works");
    EXPECT_EQ(value(u"author"), u"Hanna Lindqvist");
    EXPECT_EQ(value(u"manager"), u"Prof. Tomás Ferreira");
    EXPECT_EQ(value(u"company"), u"Institute for Applied Teaching");
    EXPECT_EQ(value(u"category"), u"Lecture");
    EXPECT_EQ(value(u"comments"), u"Sample lecture: why seeking jumps, and what a key frame costs.");
    EXPECT_EQ(value(u"keywords"), u"video, seeking, compression");
    EXPECT_THROW(value(u"shoe size"), host::Error);
}

TEST_F(ImpressShow, TheApplication_AnswersAsOfTheRibbonGeneration) {
    EXPECT_EQ(App().Version(), u"16.0");
    EXPECT_EQ(App().PresentationCount(), 1);
    EXPECT_THROW(App().SetCommandBarVisible(u"Slide Show", false), host::Error);
    EXPECT_NO_THROW(App().ActivateWindow());
    EXPECT_THROW(App().SlideShowWindow(1), host::Error);
}

TEST_F(ImpressShow, ASlidesPicture_HasTheSizeAskedFor_AndDiffersFromItsNeighbours) {
    std::vector<std::string> pictures;
    for (std::int32_t number = 1; number <= 8; ++number) {
        const auto file = folder->Path() / ("slide" + std::to_string(number) + ".png");
        desk->office->ExportSlidePng(number, Text(file), 320, 180);
        std::ifstream stream(file, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(stream)), {});
        ASSERT_GT(bytes.size(), 500u);
        EXPECT_EQ(bytes.substr(16, 8), std::string("\0\0\x01\x40\0\0\0\xB4", 8)) << "width and height in the header";
        for (const auto& other : pictures) EXPECT_NE(other, bytes);
        pictures.push_back(bytes);
    }
}

TEST_F(ImpressShow, ClosingAPresentation_IsTold) {
    const auto second = folder->CopyOfLecture("second.pptx");
    desk->office->Open(Text(second));
    EXPECT_EQ(App().PresentationCount(), 2);
    EventLog log(App());
    App().ActivateWindow();
    desk->Key("ctrl+w");
    ASSERT_TRUE(desk->PumpUntil([&] { return !log.lines.empty(); }));
    EXPECT_EQ(log.lines, Lines{"close (0 shows) second.pptx"});
    EXPECT_EQ(App().PresentationCount(), 1);
}

}  // namespace
}  // namespace kestrum::impress
