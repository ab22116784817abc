// The listener of one document. All its methods are called by the office, which stands still until they return, on any
// of our threads. Nothing may leave them.
#include <com/sun/star/document/XEventBroadcaster.hpp>
#include <com/sun/star/document/XEventListener.hpp>
#include <com/sun/star/presentation/XSlideShowListener.hpp>
#include <com/sun/star/util/XCloseBroadcaster.hpp>
#include <com/sun/star/util/XCloseListener.hpp>
#include <cppuhelper/implbase3.hxx>
#include <rtl/ref.hxx>

#include "adapters/impress/OfficeDocument.h"
#include "host/Error.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

namespace {

class DocumentListener : public cppu::WeakImplHelper3<css::document::XEventListener, css::util::XCloseListener,
                                                      css::presentation::XSlideShowListener> {
  public:
    DocumentListener(std::shared_ptr<OfficeDocument> document, std::shared_ptr<OfficeEvents> events)
        : m_document(std::move(document)), m_events(std::move(events)) {}

    /// The show's begin and end come through this interface of the model and no other.
    void SAL_CALL notifyEvent(const css::document::EventObject& event) override {
        if (event.EventName == "OnStartPresentation") Begin();
        if (event.EventName == "OnLoad") m_document->MarkLoaded();
        if (event.EventName == "OnEndPresentation") Tell(OfficeEventKind::ShowEnded);
    }

    void SAL_CALL queryClosing(const css::lang::EventObject&, sal_Bool) override {}
    void SAL_CALL notifyClosing(const css::lang::EventObject&) override { Tell(OfficeEventKind::DocumentClosed); }

    void SAL_CALL disposing(const css::lang::EventObject& event) override {
        try {
            if (event.Source == m_document->Model()) Tell(OfficeEventKind::DocumentClosed);
        } catch (const css::uno::Exception&) {
            // Whoever cannot be asked any more is no longer there.
            Tell(OfficeEventKind::DocumentClosed);
        }
    }

    void SAL_CALL slideTransitionStarted() override {
        try {
            const auto controller = m_document->ShowController(u"slideTransitionStarted");
            Tell(OfficeEventKind::SlideShown, SlideNumber(controller->getCurrentSlide()));
        } catch (const css::uno::Exception&) {
        } catch (const host::Error&) {
            // The show ended meanwhile; its end is an event of its own.
        }
    }
    void SAL_CALL slideAnimationsEnded() override { Tell(OfficeEventKind::ClicksUsedUp); }

    void SAL_CALL slideTransitionEnded() override {}
    void SAL_CALL slideEnded(sal_Bool) override {}
    void SAL_CALL hyperLinkClicked(const rtl::OUString&) override {}
    void SAL_CALL paused() override {}
    void SAL_CALL resumed() override {}
    void SAL_CALL beginEvent(const Reference<css::animations::XAnimationNode>&) override {}
    void SAL_CALL endEvent(const Reference<css::animations::XAnimationNode>&) override {}
    void SAL_CALL repeat(const Reference<css::animations::XAnimationNode>&, sal_Int32) override {}

  private:
    void Tell(OfficeEventKind kind, std::int32_t slide = 0) { m_events->Push({kind, m_document, slide}); }

    /// Joining the show later than here loses its slides without a trace.
    void Begin() {
        Tell(OfficeEventKind::ShowBegun);
        try {
            m_document->Show()->getController()->addSlideShowListener(this);
            m_document->ReadFacts();
        } catch (const css::uno::Exception&) {
            // A show that is gone before it began ends by its own event.
        }
    }

    std::shared_ptr<OfficeDocument> m_document;
    std::shared_ptr<OfficeEvents> m_events;
};

}  // namespace

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // the newer broadcaster does not tell of shows
void Listen(const std::shared_ptr<OfficeDocument>& document, const std::shared_ptr<OfficeEvents>& events) {
    const rtl::Reference<DocumentListener> listener(new DocumentListener(document, events));
    const auto& model = document->Model();
    Reference<css::document::XEventBroadcaster>(model, UNO_QUERY_THROW)->addEventListener(listener.get());
    Reference<css::util::XCloseBroadcaster>(model, UNO_QUERY_THROW)->addCloseListener(listener.get());
}
#pragma GCC diagnostic pop

}  // namespace kestrum::impress
