#include "adapters/impress/ImpressPresentation.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/util/XModifiable.hpp>

#include "adapters/impress/ImpressShow.h"
#include "adapters/impress/ImpressSlide.h"
#include "adapters/impress/ShowWindow.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

DocumentFacts ImpressPresentation::Facts(const String& source) {
    try {
        return m_office->Link().Call(source, [document = m_document] { return document->ReadFacts(); });
    } catch (const host::Error&) {
        auto facts = m_document->Remembered();
        if (facts.fullName.empty()) throw;
        return facts;
    }
}

String ImpressPresentation::FullName() {
    return Facts(u"Presentation.FullName").fullName;
}

std::int16_t ImpressPresentation::Saved() {
    constexpr std::int16_t kTrue = -1;
    return m_office->Link().Call(u"Presentation.Saved", [document = m_document] {
        const Reference<css::util::XModifiable> model(document->Model(), UNO_QUERY_THROW);
        return static_cast<std::int16_t>(model->isModified() ? 0 : kTrue);
    });
}

void ImpressPresentation::SetSaved(std::int16_t saved) {
    m_office->Link().Call(u"Presentation.Saved", [document = m_document, saved] {
        Reference<css::util::XModifiable>(document->Model(), UNO_QUERY_THROW)->setModified(saved == 0);
    });
}

float ImpressPresentation::PageSize(const char* side) {
    return m_office->Link().Call(u"Presentation.PageSetup", [document = m_document, side] {
        sal_Int32 size = 0;
        Reference<css::beans::XPropertySet>(document->Page(1), UNO_QUERY_THROW)
            ->getPropertyValue(rtl::OUString::createFromAscii(side)) >>= size;
        return SnappedPoints(size);
    });
}

float ImpressPresentation::SlideWidth() {
    return PageSize("Width");
}

float ImpressPresentation::SlideHeight() {
    return PageSize("Height");
}

std::int32_t ImpressPresentation::SlideCount() {
    return m_office->Link().Call(u"Slides.Count", [document = m_document] { return document->SlideCount(); });
}

std::unique_ptr<host::ISlide> ImpressPresentation::Slide(std::int32_t index) {
    m_office->Link().Call(u"Slides.Item", [document = m_document, index] { document->Page(index); });
    return std::make_unique<ImpressSlide>(m_office, m_document, index);
}

std::unique_ptr<host::ISlideShowSettings> ImpressPresentation::SlideShowSettings() {
    return std::make_unique<ImpressShowSettings>(m_office, m_document);
}

String ImpressPresentation::BuiltInDocumentProperty(const String& name) {
    const auto properties = Facts(u"BuiltInDocumentProperties").properties;
    const auto found = properties.find(name);
    if (found == properties.end())
        throw host::Error(host::ErrorNumber::OutOfRange, u"BuiltInDocumentProperties",
                          u"The presentation has no property \"" + name + u"\".");
    return found->second;
}

void ActivateFrame(OfficeModel& office, const std::shared_ptr<OfficeDocument>& document, const String& source,
                   FindFrame findFrame) {
    bool final = false;
    try {
        final = office.Link().Call(source, [remote = office.Link().Remote(), document, findFrame] {
            if (document->IsFinal()) return true;
            BringToFront(findFrame(remote, document->Model()));
            return false;
        });
    } catch (const host::Error&) {
        return;
    }
    if (final) throw OfficeError(source, u"The presentation is marked as final.");
}

}  // namespace kestrum::impress
