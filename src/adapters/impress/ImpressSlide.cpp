#include "adapters/impress/ImpressSlide.h"

#include <cmath>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>
#include <com/sun/star/drawing/TextVerticalAdjust.hpp>
#include <com/sun/star/drawing/XMasterPageTarget.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/text/XText.hpp>

#include "adapters/impress/TextTop.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

constexpr double kPointsPerUnit = 72.0 / 2540.0;  // the office measures in 1/100 mm

float Snapped(double points) {
    return static_cast<float>(std::round(points * 8) / 8);
}

template <class Value>
Value Get(const Reference<css::uno::XInterface>& object, const char* name) {
    Value value{};
    Reference<css::beans::XPropertySet>(object, UNO_QUERY_THROW)
        ->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
    return value;
}

/// A title placeholder holds its prompt until somebody types.
bool ShowsPrompt(const Reference<css::drawing::XShape>& shape) {
    Reference<css::beans::XPropertySet> properties(shape, UNO_QUERY_THROW);
    const rtl::OUString name("IsEmptyPresentationObject");
    if (!properties->getPropertySetInfo()->hasPropertyByName(name)) return false;
    return Get<bool>(shape, "IsEmptyPresentationObject");
}

Reference<css::text::XText> TextOf(const Reference<css::drawing::XShape>& shape) {
    Reference<css::text::XText> text(shape, UNO_QUERY);
    if (!text.is()) throw OfficeError(u"TextFrame", u"The shape has no text frame.");
    return text;
}

template <class Visit>
void ForEach(const Reference<css::uno::XInterface>& container, Visit visit) {
    const auto items = Reference<css::container::XEnumerationAccess>(container, UNO_QUERY_THROW)->createEnumeration();
    while (items->hasMoreElements()) visit(Reference<css::text::XTextRange>(items->nextElement(), UNO_QUERY_THROW));
}

const char* SizeOf(Script script) {
    if (script == Script::Asian) return "CharHeightAsian";
    return script == Script::Complex ? "CharHeightComplex" : "CharHeight";
}

/// Size of the first run that has a letter, as it was set; else of the first that has any text. The office makes signs
/// and digits in front of another script a run of their own.
double FontSize(const Reference<css::text::XTextRange>& paragraph) {
    double ofLetters = 0, ofAny = 0;
    ForEach(paragraph, [&](const Reference<css::text::XTextRange>& run) {
        const String text = FromUno(run->getString());
        if (ofLetters > 0 || text.empty()) return;
        const auto script = ScriptOf(text);
        if (script) ofLetters = Get<float>(run, SizeOf(*script));
        if (ofAny == 0) ofAny = Get<float>(run, SizeOf(script.value_or(Script::Latin)));
    });
    if (ofLetters > 0) return ofLetters;
    return ofAny > 0 ? ofAny : Get<float>(paragraph, "CharHeight");
}

std::vector<TextParagraph> Paragraphs(const Reference<css::drawing::XShape>& shape) {
    std::vector<TextParagraph> paragraphs;
    ForEach(TextOf(shape), [&](const Reference<css::text::XTextRange>& paragraph) {
        String text = FromUno(paragraph->getString());
        for (auto& unit : text)
            if (unit == u'\n' || unit == u'\v') unit = u' ';
        paragraphs.push_back({std::move(text), FontSize(paragraph)});
    });
    return paragraphs;
}

TextAnchor AnchorOf(const Reference<css::drawing::XShape>& shape) {
    switch (Get<css::drawing::TextVerticalAdjust>(shape, "TextVerticalAdjust")) {
        case css::drawing::TextVerticalAdjust_CENTER:
            return TextAnchor::Middle;
        case css::drawing::TextVerticalAdjust_BOTTOM:
            return TextAnchor::Bottom;
        default:
            return TextAnchor::Top;
    }
}

TextFrame FrameOf(const Reference<css::drawing::XShape>& shape) {
    const auto inset = [&](const char* name) { return Get<sal_Int32>(shape, name) * kPointsPerUnit; };
    TextFrame frame;
    frame.top = shape->getPosition().Y * kPointsPerUnit;
    frame.width = shape->getSize().Width * kPointsPerUnit;
    frame.height = shape->getSize().Height * kPointsPerUnit;
    frame.insetLeft = inset("TextLeftDistance");
    frame.insetTop = inset("TextUpperDistance");
    frame.insetRight = inset("TextRightDistance");
    frame.insetBottom = inset("TextLowerDistance");
    frame.anchor = AnchorOf(shape);
    return frame;
}

}  // namespace

float SnappedPoints(std::int32_t hundredthMm) {
    return Snapped(hundredthMm * kPointsPerUnit);
}

std::unique_ptr<host::IShapes> ImpressSlide::Shapes() {
    auto page = m_office->Link().Call(u"Slide.Shapes",
                                      [document = m_document, number = m_number] { return document->Page(number); });
    return std::make_unique<ImpressShapes>(m_office, std::move(page));
}

float ImpressSlide::MasterHeight() {
    return m_office->Link().Call(u"Slide.Master", [document = m_document, number = m_number] {
        Reference<css::drawing::XMasterPageTarget> target(document->Page(number), UNO_QUERY_THROW);
        return SnappedPoints(Get<sal_Int32>(target->getMasterPage(), "Height"));
    });
}

Reference<css::drawing::XShape> ImpressShapes::FindTitle() {
    return m_office->Link().Call(u"Shapes.Title", [page = m_page] {
        for (sal_Int32 i = 0; i < page->getCount(); ++i) {
            Reference<css::lang::XServiceInfo> info(page->getByIndex(i), UNO_QUERY);
            if (info.is() && info->supportsService("com.sun.star.presentation.TitleTextShape"))
                return Reference<css::drawing::XShape>(info, UNO_QUERY_THROW);
        }
        return Reference<css::drawing::XShape>();
    });
}

bool ImpressShapes::HasTitle() {
    return FindTitle().is();
}

std::unique_ptr<host::IShape> ImpressShapes::Title() {
    auto title = FindTitle();
    if (!title.is()) throw OfficeError(u"Shapes.Title", u"The slide has no title.");
    return std::make_unique<ImpressShape>(m_office, std::move(title));
}

std::int32_t ImpressShapes::Count() {
    return m_office->Link().Call(u"Shapes.Count", [page = m_page] { return page->getCount(); });
}

std::unique_ptr<host::IShape> ImpressShapes::Item(std::int32_t index) {
    auto shape = m_office->Link().Call(u"Shapes.Item", [page = m_page, index] {
        if (index < 1 || index > page->getCount())
            throw host::Error(host::ErrorNumber::OutOfRange, u"Shapes.Item", u"There is no shape with this number.");
        return Reference<css::drawing::XShape>(page->getByIndex(index - 1), UNO_QUERY_THROW);
    });
    return std::make_unique<ImpressShape>(m_office, std::move(shape));
}

bool ImpressShape::HasTextFrame() {
    return m_office->Link().Call(u"Shape.HasTextFrame",
                                 [shape = m_shape] { return Reference<css::text::XText>(shape, UNO_QUERY).is(); });
}

bool ImpressShape::HasText() {
    return m_office->Link().Call(u"TextFrame.HasText", [shape = m_shape] {
        return !TextOf(shape)->getString().isEmpty() && !ShowsPrompt(shape);
    });
}

String ImpressShape::Text() {
    return m_office->Link().Call(u"TextRange.Text", [shape = m_shape] {
        String text;
        for (const auto& paragraph : Paragraphs(shape)) text += paragraph.text + u'\r';
        if (!text.empty()) text.pop_back();
        return text;
    });
}

float ImpressShape::TextTop() {
    return m_office->Link().Call(u"TextRange.BoundTop",
                                 [shape = m_shape] { return Snapped(TextTopOf(FrameOf(shape), Paragraphs(shape))); });
}

float ImpressShape::TextFontSize() {
    return m_office->Link().Call(u"Font.Size", [shape = m_shape] {
        for (const auto& paragraph : Paragraphs(shape))
            if (!paragraph.text.empty()) return static_cast<float>(paragraph.fontSize);
        return Get<float>(shape, "CharHeight");
    });
}

}  // namespace kestrum::impress
