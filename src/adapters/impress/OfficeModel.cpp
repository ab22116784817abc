#include "adapters/impress/OfficeModel.h"

#include <algorithm>
#include <com/sun/star/document/XDocumentEventListener.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/theGlobalEventBroadcaster.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/presentation/XSlideShow.hpp>
#include <cppuhelper/implbase1.hxx>

#include "adapters/impress/ImpressPresentation.h"
#include "adapters/impress/ImpressShow.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

constexpr std::int32_t kPulseMs = 1000;

/// Listens to `model` if it is a presentation that is not yet listened to.
std::shared_ptr<OfficeDocument> AdoptInto(OfficeDocuments& documents, const std::shared_ptr<OfficeEvents>& events,
                                          const Reference<css::frame::XModel>& model) {
    Reference<css::lang::XServiceInfo> info(model, UNO_QUERY);
    if (!info.is() || !info->supportsService("com.sun.star.presentation.PresentationDocument")) return nullptr;
    if (auto known = documents.Find(model)) return known;
    auto document = std::make_shared<OfficeDocument>(model);
    Listen(document, events);
    documents.Add(document);
    return document;
}

/// Gives a show the turn that its own timer may have missed; false if no show runs.
bool KeepRunning(const OfficeDocument& document) {
    const auto presentation = document.Show();
    if (!presentation->isRunning()) return false;
    const auto controller = presentation->getController();
    double next = 0;
    if (controller.is() && !controller->isPaused()) controller->getSlideShow()->update(next);
    return true;
}

/// Sees every document that the user opens in the office.
class NewDocumentListener : public cppu::WeakImplHelper1<css::document::XDocumentEventListener> {
  public:
    NewDocumentListener(std::shared_ptr<OfficeDocuments> documents, std::shared_ptr<OfficeEvents> events)
        : m_documents(std::move(documents)), m_events(std::move(events)) {}
    void SAL_CALL documentEventOccured(const css::document::DocumentEvent& event) override {
        if (event.EventName != "OnLoad" && event.EventName != "OnNew" && event.EventName != "OnViewCreated") return;
        try {
            const auto document =
                AdoptInto(*m_documents, m_events, Reference<css::frame::XModel>(event.Source, UNO_QUERY));
            if (document && event.EventName == "OnLoad") document->MarkLoaded();
        } catch (const css::uno::Exception&) {
            // A document that is gone already needs no listener.
        }
    }
    void SAL_CALL disposing(const css::lang::EventObject&) override {}

  private:
    std::shared_ptr<OfficeDocuments> m_documents;
    std::shared_ptr<OfficeEvents> m_events;
};

}  // namespace

std::shared_ptr<OfficeModel> OfficeModel::Create(std::unique_ptr<OfficeLink> link, host::IEventLoop& loop,
                                                 host::IMonitors& monitors, std::string display) {
    std::shared_ptr<OfficeModel> model(new OfficeModel(std::move(link), loop, monitors, std::move(display)));
    model->Connect();
    return model;
}

OfficeModel::OfficeModel(std::unique_ptr<OfficeLink> link, host::IEventLoop& loop, host::IMonitors& monitors,
                         std::string display)
    : m_link(std::move(link)), m_loop(loop), m_monitors(monitors), m_display(std::move(display)) {}

OfficeModel::~OfficeModel() {
    Close();
}

void OfficeModel::Connect() {
    m_events = std::make_shared<OfficeEvents>([&loop = m_loop, weak = weak_from_this()] {
        loop.Post([weak] {
            if (auto model = weak.lock()) model->DispatchPending();
        });
    });
    m_link->OnDeath([events = m_events] { events->Push({OfficeEventKind::OfficeDied, nullptr, 0}); });
    m_link->Call(u"Connect",
                 [remote = m_link->Remote(), documents = m_documents, events = m_events] {
                     css::frame::theGlobalEventBroadcaster::get(remote)->addDocumentEventListener(
                         new NewDocumentListener(documents, events));
                     const auto open = css::frame::Desktop::create(remote)->getComponents()->createEnumeration();
                     while (open->hasMoreElements())
                         AdoptInto(*documents, events, Reference<css::frame::XModel>(open->nextElement(), UNO_QUERY));
                 },
                 {10000, 60000});
}

void OfficeModel::Close() {
    if (m_events) m_events->Close();
    m_pulseTimer.reset();
    m_link->GiveUp();
}

std::shared_ptr<OfficeDocument> OfficeModel::Adopt(const Reference<css::frame::XModel>& model) {
    return AdoptInto(*m_documents, m_events, model);
}

std::shared_ptr<OfficeDocument> OfficeModel::DocumentOf(const Reference<css::frame::XModel>& model) {
    try {
        return m_link->Call(u"Document", [self = shared_from_this(), model] { return self->Adopt(model); });
    } catch (const host::Error&) {
        return nullptr;  // closed meanwhile, or a dead office
    }
}

std::shared_ptr<OfficeDocument> OfficeModel::ActiveDocument() {
    if (!m_scopes.empty()) return m_scopes.back().show->document;
    const auto known = m_documents->All();
    if (std::find(known.begin(), known.end(), m_inHand) != known.end()) return m_inHand;
    if (!m_link->IsDead()) {
        const auto front = m_link->Call(u"ActivePresentation", [remote = m_link->Remote(), documents = m_documents] {
            const auto frame = css::frame::Desktop::create(remote)->getCurrentFrame();
            const auto controller = frame.is() ? frame->getController() : nullptr;
            return controller.is() ? documents->Find(controller->getModel()) : nullptr;
        });
        if (front) return front;
    }
    if (m_lastShown) return m_lastShown;
    if (known.empty()) throw OfficeError(u"ActivePresentation", u"No presentation is open.");
    return known.back();
}

std::shared_ptr<Show> OfficeModel::ShowOf(const std::shared_ptr<OfficeDocument>& document) const {
    for (const auto& show : m_shows)
        if (show->document == document && !show->ended) return show;
    return nullptr;
}

std::optional<std::int32_t> OfficeModel::EventSlide(const Show& show) const {
    for (auto scope = m_scopes.rbegin(); scope != m_scopes.rend(); ++scope)
        if (scope->show.get() == &show && scope->slide > 0) return scope->slide;
    return std::nullopt;
}

void OfficeModel::AddSink(host::IApplicationEvents& sink) {
    m_sinks.push_back(&sink);
}

void OfficeModel::RemoveSink(host::IApplicationEvents& sink) {
    std::erase(m_sinks, &sink);
}

void OfficeModel::DispatchPending() {
    while (const auto event = m_events->Pop()) Dispatch(*event);
}

bool OfficeModel::DispatchUntil(const std::function<bool()>& done, Patience patience) {
    PatientWait wait(m_link->ProcessId(), patience);
    while (!done()) {
        if (const auto event = m_events->Pop())
            Dispatch(*event);
        else if (!m_events->WaitFor(std::chrono::milliseconds(100)) && (m_link->IsDead() || wait.Exhausted()))
            return false;
    }
    return true;
}

void OfficeModel::Dispatch(const OfficeEvent& event) {
    const auto show = event.document ? ShowOf(event.document) : nullptr;
    switch (event.kind) {
        case OfficeEventKind::ShowBegun:
            if (!show) Begin(event.document);
            break;
        case OfficeEventKind::SlideShown:
            if (show) ShowSlide(show, event.slide);
            break;
        case OfficeEventKind::ClicksUsedUp:
            if (show) show->clicksUsedUp = true;
            break;
        case OfficeEventKind::ShowEnded:
            if (show) {
                End(show);
                Forget(show);
            }
            break;
        case OfficeEventKind::DocumentClosed:
            CloseDocument(event.document);
            break;
        case OfficeEventKind::OfficeDied:
            for (const auto& document : m_documents->All()) CloseDocument(document);
            break;
    }
}

void OfficeModel::Begin(const std::shared_ptr<OfficeDocument>& document) {
    auto show = std::make_shared<Show>();
    show->document = document;
    m_shows.push_back(show);
    m_lastShown = document;
    m_inHand = document;
    m_pulseTimer = m_loop.StartTimer(u"impress pulse", kPulseMs, host::TimerReentry::Skipped, [this] { TakePulse(); });
    m_scopes.push_back({show, 0});
    ImpressShowWindow window(shared_from_this(), show);
    Tell([&](host::IApplicationEvents& sink) { sink.SlideShowBegin(window); });
    m_scopes.pop_back();
}

void OfficeModel::ShowSlide(const std::shared_ptr<Show>& show, std::int32_t slide) {
    ++show->slidesShown;
    show->clicksUsedUp = false;
    show->clicksMade = 0;
    if (slide == show->slide) return;
    show->slide = slide;
    m_scopes.push_back({show, slide});
    ImpressShowWindow window(shared_from_this(), show);
    Tell([&](host::IApplicationEvents& sink) { sink.SlideShowNextSlide(window); });
    m_scopes.pop_back();
}

void OfficeModel::End(const std::shared_ptr<Show>& show) {
    show->ended = true;
    m_scopes.push_back({show, show->slide});
    ImpressPresentation presentation(shared_from_this(), show->document);
    Tell([&](host::IApplicationEvents& sink) { sink.SlideShowEnd(presentation); });
    m_scopes.pop_back();
}

void OfficeModel::CloseDocument(const std::shared_ptr<OfficeDocument>& document) {
    const auto open = m_documents->All();
    if (std::find(open.begin(), open.end(), document) == open.end()) return;
    const auto show = ShowOf(document);
    if (show) End(show);
    m_documents->Remove(document);
    ImpressPresentation presentation(shared_from_this(), document);
    Tell([&](host::IApplicationEvents& sink) { sink.PresentationClose(presentation); });
    if (show) Forget(show);
}

void OfficeModel::Forget(const std::shared_ptr<Show>& show) {
    std::erase(m_shows, show);
    if (m_inHand == show->document) m_inHand.reset();
    if (m_shows.empty()) m_pulseTimer.reset();
}

void OfficeModel::Tell(const std::function<void(host::IApplicationEvents&)>& call) {
    const auto sinks = m_sinks;  // one may subscribe or leave meanwhile
    for (auto* sink : sinks)
        if (std::find(m_sinks.begin(), m_sinks.end(), sink) != m_sinks.end()) call(*sink);
}

/// Sees an office that hangs, and a show whose end nobody told, without waiting for either.
void OfficeModel::TakePulse() {
    if (m_link->IsDead()) return;
    if (m_pulseUnderWay && m_pulseUnderWay()) {
        if (m_pulseWait->Exhausted()) m_link->GiveUp();
        return;
    }
    std::vector<std::shared_ptr<OfficeDocument>> shown;
    for (const auto& show : m_shows)
        if (!show->ended) shown.push_back(show->document);
    m_pulseWait.emplace(m_link->ProcessId(), Patience{});
    m_pulseUnderWay = m_link->Send([shown, events = m_events] {
        for (const auto& document : shown)
            if (!KeepRunning(*document)) events->Push({OfficeEventKind::ShowEnded, document, 0});
    });
}

ActiveScope::ActiveScope(OfficeModel& office, std::shared_ptr<OfficeDocument> document)
    : m_office(office), m_document(std::move(document)) {
    if (m_document) m_office.m_inHand = m_document;
}

ActiveScope::~ActiveScope() {
    if (m_document && m_office.m_inHand == m_document && !m_office.ShowOf(m_document)) m_office.m_inHand.reset();
}

}  // namespace kestrum::impress
