#include "project/modSlide.h"

#include <memory>

#include "host/ResumeNext.h"
#include "project/modProject.h"
#include "support/modGlobal.h"

namespace kestrum::modSlide {
namespace {

constexpr float kHighBelow = 0.2F;  ///< of the master's height
constexpr float kLargeAbove = 20;   ///< points

bool HasText(const host::ResumeNext& Try, host::IShape& shape) {
    return Try.If([&] { return shape.HasTextFrame(); }) && Try.If([&] { return shape.HasText(); });
}

/// The title placeholder if it holds text.
std::unique_ptr<host::IShape> FilledTitle(const host::ResumeNext& Try, host::IShapes& shapes) {
    std::unique_ptr<host::IShape> title;
    if (Try.If([&] { return shapes.HasTitle(); })) Try([&] { title = shapes.Title(); });
    if (title && !HasText(Try, *title)) title.reset();
    return title;
}

/// What the search last read of a shape. A read that fails leaves what the shape before had.
struct TextLooks {
    float top = 0;   ///< of the master's height
    float size = 0;  ///< points

    void Read(const host::ResumeNext& Try, host::ISlide& slide, host::IShape& shape) {
        Try.Set(top, [&] { return static_cast<float>(Div(shape.TextTop(), slide.MasterHeight())); });
        Try.Set(size, [&] { return shape.TextFontSize(); });
    }
    bool AreThoseOfATitle() const { return top < kHighBelow && size > kLargeAbove; }
};

String SearchTitle(const host::ResumeNext& Try, host::ISlide& slide, host::IShapes& shapes, const String& fallback) {
    String result = fallback;
    TextLooks looks;
    std::int32_t count = 0;
    Try.Set(count, [&] { return shapes.Count(); });
    for (std::int32_t i = 1; i <= count; ++i) {
        std::unique_ptr<host::IShape> shape;
        Try([&] { shape = shapes.Item(i); });
        if (!shape || !HasText(Try, *shape)) continue;
        looks.Read(Try, slide, *shape);
        if (!looks.AreThoseOfATitle()) continue;
        Try.Set(result, [&] { return shape->Text(); });
        break;
    }
    return result;
}

/// The title of one slide.
struct CTranscript {
    String title;
};

CTranscript Transcribe(const host::ResumeNext& Try, host::IPresentation& presentation, std::int32_t number) {
    CTranscript transcript{u"Slide " + ToText(number)};
    std::unique_ptr<host::IShapes> shapes;
    Try([&] { shapes = presentation.Slide(number)->Shapes(); });
    if (!shapes) return transcript;
    if (const auto title = FilledTitle(Try, *shapes))
        Try.Set(transcript.title, [&] { return modGlobal::Trim(title->Text()); });
    return transcript;
}

}  // namespace

String GetSlideTitle(const support::Context& c, host::ISlide& slide, const String& fallback) {
    const host::ResumeNext Try{c.host.trace};
    std::unique_ptr<host::IShapes> shapes;
    Try([&] { shapes = slide.Shapes(); });
    if (!shapes) return fallback;
    String result = fallback;
    if (const auto title = FilledTitle(Try, *shapes)) Try.Set(result, [&] { return title->Text(); });
    return result != fallback ? result : SearchTitle(Try, slide, *shapes, fallback);
}

String GetDocProperty(const support::Context& c, const String& name) {
    const host::ResumeNext Try{c.host.trace};
    String result;
    Try.Set(result, [&] { return modGlobal::Trim(c.host.app.ActivePresentation()->BuiltInDocumentProperty(name)); });
    return result;
}

void WriteAbstract(const project::Context& c) {
    c.support.currentStep = u"WriteAbstract";
    CProjectFile& project = c.project.g_Project;
    project.title = GetDocProperty(c, u"title");
    project.author = GetDocProperty(c, u"author");
    project.manager = GetDocProperty(c, u"manager");
    project.company = GetDocProperty(c, u"company");
    project.category = GetDocProperty(c, u"category");
    project.comments = GetDocProperty(c, u"comments");
    project.keywords = GetDocProperty(c, u"keywords");
    modProject::SaveProject(c);
}

void CollectSlideTitles(const project::Context& c, bool addItems) {
    const host::ResumeNext Try{c.host.trace};
    std::unique_ptr<host::IPresentation> presentation;
    Try([&] { presentation = c.host.app.ActivePresentation(); });
    if (!presentation) return;
    std::int32_t count = 0;
    Try.Set(count, [&] { return presentation->SlideCount(); });
    for (std::int32_t i = 1; i <= count; ++i) {
        const CTranscript transcript = Transcribe(Try, *presentation, i);
        if (!addItems) continue;
        const String now = DateTimeText(c.host.loop.Now());
        c.project.g_Project.AddIndex(transcript.title, u"-1", now, u"", u"", u"", false, 0);
    }
}

}  // namespace kestrum::modSlide
