#include "project/modSlide.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"

namespace kestrum {
namespace {

using test::ProjectWorld;

class ModSlideTest : public testing::Test {
  protected:
    /// Title of the only slide of a deck.
    String TitleOf(const sim::SlideScript& slide, const String& fallback = u"Slide 1") {
        sim::Deck deck;
        deck.fullName = u"/home/anna/talks/deck.pptx";
        deck.slides = {slide};
        w.world.app.Open(deck);
        const auto view = w.world.app.ActivePresentation()->Slide(1);
        return modSlide::GetSlideTitle(w.c, *view, fallback);
    }

    static sim::SlideScript Shapes(std::vector<sim::ShapeScript> shapes) {
        sim::SlideScript slide;
        slide.shapes = std::move(shapes);
        return slide;
    }

    ProjectWorld w;
};

TEST_F(ModSlideTest, Title_OfAFilledPlaceholder_IsItsText) {
    sim::SlideScript slide;
    slide.title = u"Waves";
    EXPECT_EQ(TitleOf(slide), u"Waves");
}

TEST_F(ModSlideTest, Title_WithAnEmptyPlaceholder_IsTheLargeTextAtTheTop) {
    sim::SlideScript slide = Shapes({{u"Headline", 20, 24}});
    slide.title = u"";
    EXPECT_EQ(TitleOf(slide), u"Headline");
}

TEST_F(ModSlideTest, Title_IsTheFirstTextThatIsHighAndLarge) {
    EXPECT_EQ(TitleOf(Shapes({{u"low", 300, 40}, {u"small", 10, 12}, {u"first", 90, 21}, {u"second", 10, 60}})),
              u"first");
}

TEST_F(ModSlideTest, Title_OfTwentyPoints_DoesNotQualify) {
    EXPECT_EQ(TitleOf(Shapes({{u"text", 20, 20}})), u"Slide 1");
}

TEST_F(ModSlideTest, Title_AtExactlyAFifthOfTheHeight_DoesNotQualify) {
    EXPECT_EQ(TitleOf(Shapes({{u"text", 108, 30}})), u"Slide 1");
    EXPECT_EQ(TitleOf(Shapes({{u"text", 107, 30}})), u"text");
}

TEST_F(ModSlideTest, Title_SkipsShapesWithoutText) {
    EXPECT_EQ(TitleOf(Shapes({{u"", 20, 30}, {u"picture", 20, 30, false}, {u"text", 20, 30}})), u"text");
}

/// A slide whose title stands at its foot, with a headline in a text box.
class SlideWithTitleAtTheFoot : public host::ISlide {
  public:
    std::int32_t SlideIndex() override { return 3; }
    std::unique_ptr<host::IShapes> Shapes() override { return std::make_unique<TwoShapes>(); }
    float MasterHeight() override { return 540; }

  private:
    struct TextShape : host::IShape {
        TextShape(String shapeText, float shapeTop) : text(std::move(shapeText)), top(shapeTop) {}
        bool HasTextFrame() override { return true; }
        bool HasText() override { return true; }
        String Text() override { return text; }
        float TextTop() override { return top; }
        float TextFontSize() override { return 30; }
        String text;
        float top;
    };
    struct TwoShapes : host::IShapes {
        bool HasTitle() override { return true; }
        std::unique_ptr<host::IShape> Title() override { return Item(1); }
        std::int32_t Count() override { return 2; }
        std::unique_ptr<host::IShape> Item(std::int32_t index) override {
            if (index == 1) return std::make_unique<TextShape>(u"Slide 3", 480.0F);
            return std::make_unique<TextShape>(u"Real title", 20.0F);
        }
    };
};

TEST_F(ModSlideTest, Title_ThatReadsLikeTheFallback_IsTakenForNone) {
    SlideWithTitleAtTheFoot slide;
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, slide, u"Slide 3"), u"Real title");
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, slide, u"Slide 4"), u"Slide 3");
}

/// A slide whose shapes may refuse to tell where their text stands or how large it is.
class ReluctantSlide : public host::ISlide {
  public:
    struct Script {
        String text;
        std::optional<float> top, size;
    };
    explicit ReluctantSlide(std::vector<Script> shapes, float masterHeight = 540)
        : m_shapes(std::move(shapes)), m_masterHeight(masterHeight) {}
    std::int32_t SlideIndex() override { return 1; }
    std::unique_ptr<host::IShapes> Shapes() override { return std::make_unique<List>(m_shapes); }
    float MasterHeight() override { return m_masterHeight; }

  private:
    static float Tell(const std::optional<float>& value) {
        if (!value) throw host::Error(host::ErrorNumber::Automation, u"shape", u"The shape does not tell.");
        return *value;
    }
    struct One : host::IShape {
        explicit One(Script shapeScript) : script(std::move(shapeScript)) {}
        bool HasTextFrame() override { return true; }
        bool HasText() override { return true; }
        String Text() override { return script.text; }
        float TextTop() override { return Tell(script.top); }
        float TextFontSize() override { return Tell(script.size); }
        Script script;
    };
    struct List : host::IShapes {
        explicit List(std::vector<Script> shapeScripts) : scripts(std::move(shapeScripts)) {}
        bool HasTitle() override { return false; }
        std::unique_ptr<host::IShape> Title() override { return nullptr; }
        std::int32_t Count() override { return static_cast<std::int32_t>(scripts.size()); }
        std::unique_ptr<host::IShape> Item(std::int32_t index) override {
            return std::make_unique<One>(scripts.at(static_cast<std::size_t>(index) - 1));
        }
        std::vector<Script> scripts;
    };
    std::vector<Script> m_shapes;
    float m_masterHeight;
};

TEST_F(ModSlideTest, Title_WhenAReadFails_GoesByWhatTheShapeBeforeHad) {
    ReluctantSlide topFails({{u"small", 10, 12}, {u"no top", std::nullopt, 30}});
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, topFails, u"Slide 1"), u"no top");
    ReluctantSlide lowBefore({{u"low", 400, 12}, {u"no top", std::nullopt, 30}});
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, lowBefore, u"Slide 1"), u"Slide 1");
    ReluctantSlide sizeFails({{u"low", 400, 40}, {u"no size", 10, std::nullopt}});
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, sizeFails, u"Slide 1"), u"no size");
    ReluctantSlide nothingBefore({{u"no size", 10, std::nullopt}});
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, nothingBefore, u"Slide 1"), u"Slide 1");
}

TEST_F(ModSlideTest, Title_OnAMasterWithoutAHeight_GoesByTheSizeAlone) {
    ReluctantSlide slide({{u"text", 400, 30}}, 0);
    EXPECT_EQ(modSlide::GetSlideTitle(w.c, slide, u"Slide 1"), u"text");
}

TEST_F(ModSlideTest, Title_OfABlank_IsATitle) {
    sim::SlideScript slide = Shapes({{u"Headline", 20, 24}});
    slide.title = u"   ";
    EXPECT_EQ(TitleOf(slide), u"   ") << "trimmed for an upload only";
}

TEST_F(ModSlideTest, Title_OfAnEmptySlide_IsTheFallback) {
    EXPECT_EQ(TitleOf(Shapes({})), u"Slide 1");
}

TEST_F(ModSlideTest, Title_UnderAnyFault_IsATextOfTheSlideOrTheFallback) {
    int runs = sim::FaultSweep(u"app.*", [](const auto& arm) {
        ProjectWorld desk;
        sim::Deck deck;
        deck.fullName = u"/home/anna/talks/deck.pptx";
        sim::SlideScript slide;
        slide.title = u"";
        slide.shapes = {{u"Headline", 20, 24}};
        deck.slides = {slide};
        desk.world.app.Open(deck);
        const auto view = desk.world.app.ActivePresentation()->Slide(1);
        arm(desk.world.faults);
        const String title = modSlide::GetSlideTitle(desk.c, *view, u"Slide 1");
        EXPECT_TRUE(title == u"Headline" || title == u"Slide 1");
    });
    EXPECT_GE(runs, 1);
}

TEST_F(ModSlideTest, DocProperty_IsTrimmedAndEmptyOnAnyFailure) {
    EXPECT_EQ(modSlide::GetDocProperty(w.c, u"title"), u"") << "no presentation";
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u"one"});
    deck.properties = {{u"title", u"  Waves and light  "}, {u"keywords", u"   "}};
    w.world.app.Open(deck);
    EXPECT_EQ(modSlide::GetDocProperty(w.c, u"author"), u"");
    EXPECT_EQ(modSlide::GetDocProperty(w.c, u"title"), u"Waves and light");
    EXPECT_EQ(modSlide::GetDocProperty(w.c, u"keywords"), u"");
}

TEST_F(ModSlideTest, WriteAbstract_FillsTheSevenFieldsAndStoresThem) {
    w.PutPackage(test::InstallFile("default.ksp"), 0, {});
    ASSERT_TRUE(w.Load(test::InstallFile("default.ksp")));
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u"one"});
    deck.properties = {{u"title", u"T"},    {u"author", u"A"},   {u"manager", u"M"}, {u"company", u"C"},
                       {u"category", u"K"}, {u"comments", u"O"}, {u"keywords", u"W"}};
    w.world.app.Open(deck);
    modSlide::WriteAbstract(w.c);
    const CProjectFile& p = w.project.g_Project;
    EXPECT_EQ(p.title + p.author + p.manager + p.company + p.category + p.comments + p.keywords, u"TAMCKOW");
    EXPECT_NE(w.StoredProject().find("<author>A</author>"), std::string::npos);
}

TEST_F(ModSlideTest, WriteAbstract_OfAPresentationWithoutProperties_EmptiesTheFields) {
    w.PutPackage(test::InstallFile("default.ksp"), 0, {});
    ASSERT_TRUE(w.Load(test::InstallFile("default.ksp")));
    w.project.g_Project.title = u"an older title";
    w.world.app.Open(sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u"one"}));
    modSlide::WriteAbstract(w.c);
    EXPECT_EQ(w.project.g_Project.title, u"");
    EXPECT_NE(w.StoredProject().find("<title/>"), std::string::npos) << w.StoredProject();
}

TEST_F(ModSlideTest, CollectSlideTitles_WithoutAddItems_LeavesTheIndexAlone) {
    w.world.app.Open(sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u"one", u"two"}));
    modSlide::CollectSlideTitles(w.c, false);
    EXPECT_EQ(w.project.g_Project.index.Count(), 0);
}

TEST_F(ModSlideTest, CollectSlideTitles_WithAddItems_AddsAnEntryWithoutPositionForEachSlide) {
    sim::Deck deck = sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u" one ", u""});
    deck.slides.push_back(Shapes({{u"Large text", 10, 40}}));
    w.world.app.Open(deck);
    modSlide::CollectSlideTitles(w.c, true);
    EXPECT_EQ(w.Titles(), (std::vector<String>{u"one", u"Slide 2", u"Slide 3"}));
    for (const CIndexItem& item : w.project.g_Project.index) {
        EXPECT_EQ(item.pos, u"-1");
        EXPECT_EQ(item.RecDate, DateTimeText(w.world.loop.Now()));
        EXPECT_EQ(item.Url + item.PosEnd + item.Length + item.size, u"");
        EXPECT_FALSE(item.Selected);
    }
}

TEST_F(ModSlideTest, CollectSlideTitles_UnderAnyFault_AddsAnEntryForEachSlideItCanCount) {
    const int runs = sim::FaultSweep(u"app.*", [](const auto& arm) {
        ProjectWorld desk;
        desk.world.app.Open(sim::Deck::Titled(u"/home/anna/talks/deck.pptx", {u"one", u"two"}));
        arm(desk.world.faults);
        modSlide::CollectSlideTitles(desk.c, true);
        const auto titles = desk.Titles();
        for (std::size_t i = 0; i < titles.size(); ++i)
            EXPECT_TRUE(titles[i] == (i == 0 ? u"one" : u"two") || titles[i].starts_with(u"Slide "));
    });
    EXPECT_GE(runs, 1);
}

}  // namespace
}  // namespace kestrum
