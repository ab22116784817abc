#include "adapters/impress/ImpressShow.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNamed.hpp>

#include "adapters/impress/ImpressPresentation.h"
#include "adapters/impress/ImpressSlide.h"
#include "adapters/impress/Selection.h"
#include "adapters/impress/SlideBuilds.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using Controller = Reference<css::presentation::XSlideShowController>;

namespace {

// A slide full of pictures may take its time to draw.
constexpr Patience kShowPatience{5000, 60000};
constexpr Patience kLastBuildPatience{700, 3000};
constexpr double kPointsPerInch = 72;

std::int32_t SwapRedAndBlue(std::int32_t colour) {
    return ((colour & 0xFF) << 16) | (colour & 0xFF00) | ((colour >> 16) & 0xFF);
}

bool IsHidden(const Reference<css::drawing::XDrawPage>& page) {
    bool visible = true;
    Reference<css::beans::XPropertySet>(page, UNO_QUERY_THROW)->getPropertyValue("Visible") >>= visible;
    return !visible;
}

/// Leaves a hidden slide for the next one that is not; false if none follows.
bool LeaveHidden(const OfficeDocument& document, const Controller& controller, std::int32_t number) {
    for (std::int32_t next = number + 1; next <= document.SlideCount(); ++next) {
        const auto page = document.Page(next);
        if (IsHidden(page)) continue;
        controller->gotoSlide(page);
        return true;
    }
    return false;
}

bool GoToNextOf(const OfficeDocument& document, const Controller& controller) {
    const auto current = controller->getCurrentSlide();
    if (IsHidden(current)) return LeaveHidden(document, controller, SlideNumber(current));
    const auto next = controller->getNextSlideIndex();  // passes over hidden ones that the show's list may hold
    if (next < 0 || next >= controller->getSlideCount()) return false;
    controller->gotoSlideIndex(next);
    return true;
}

/// The office names a show's first page; it starts where the user is, which spares the audience a first slide that
/// flashes by.
rtl::OUString NameOfSelectedPage(const OfficeDocument& document) {
    const auto selected = SelectedSlideNumbers(document.Model());
    const auto page = document.Page(selected.empty() ? 1 : selected.front());
    return Reference<css::container::XNamed>(page, UNO_QUERY_THROW)->getName();
}

}  // namespace

// The property of one presentation is the setting of the office's user, for every presentation.
std::int32_t ImpressShowSettings::ShowMonitor() {
    return m_office->Link().Call(u"SlideShowSettings.ShowMonitor", [document = m_document] {
        std::int32_t number = 0;
        document->Show()->getPropertyValue("Display") >>= number;
        return number;
    });
}

void ImpressShowSettings::SetShowMonitor(std::int32_t number) {
    m_office->Link().Call(u"SlideShowSettings.ShowMonitor", [document = m_document, number] {
        document->Show()->setPropertyValue("Display", Any(number));
    });
}

std::unique_ptr<host::ISlideShowWindow> ImpressShowSettings::Run() {
    if (auto running = m_office->ShowOf(m_document)) return std::make_unique<ImpressShowWindow>(m_office, running);
    m_office->Link().Call(
        u"SlideShowSettings.Run",
        [document = m_document, fullScreen = m_fullScreen] {
            const auto show = document->Show();
            if (show->isRunning()) return;
            show->startWithArguments(Properties({Property("IsFullScreen", Any(fullScreen)),
                                                 Property("FirstPage", Any(NameOfSelectedPage(*document)))}));
        },
        kShowPatience);
    std::shared_ptr<Show> show;
    const auto onScreen = [&] {
        if (!show) show = m_office->ShowOf(m_document);
        return show && (show->slide > 0 || show->ended);
    };
    if (!m_office->DispatchUntil(onScreen, kShowPatience) && !show)
        throw OfficeError(u"SlideShowSettings.Run", u"Impress did not start the slide show.");
    return std::make_unique<ImpressShowWindow>(m_office, show);
}

std::unique_ptr<host::ISlideShowView> ImpressShowWindow::View() {
    return std::make_unique<ImpressShowView>(m_office, m_show);
}

std::unique_ptr<host::IPresentation> ImpressShowWindow::Presentation() {
    return std::make_unique<ImpressPresentation>(m_office, m_show->document);
}

void ImpressShowWindow::Activate() {
    ActivateFrame(*m_office, m_show->document, u"SlideShowWindow.Activate",
                  [](const auto& remote, const auto& model) { return FindShowFrame(remote, model); });
}

WindowRectangle ImpressShowWindow::Rectangle() {
    const auto xid = m_office->Link().Call(u"SlideShowWindow", [remote = m_office->Link().Remote(), show = m_show] {
        return XidOf(FindShowFrame(remote, show->document->Model()));
    });
    return MeasureWindow(m_office->Display(), xid);
}

float ImpressShowWindow::Left() {
    return static_cast<float>(Rectangle().left * kPointsPerInch / m_office->Monitors().PixelsPerInchX());
}

float ImpressShowWindow::Top() {
    return static_cast<float>(Rectangle().top * kPointsPerInch / m_office->Monitors().PixelsPerInchY());
}

template <class Job>
auto ImpressShowView::Ask(const String& source, Job job) {
    if (m_show->ended) throw OfficeError(source, u"The slide show has ended.");
    return m_office->Link().Call(
        source, [document = m_show->document, source, job] { return job(document->ShowController(source)); },
        kShowPatience);
}

std::int32_t ImpressShowView::State() {
    constexpr std::int32_t kRunning = 1, kPaused = 2;
    return Ask(u"View.State", [](const Controller& show) { return show->isPaused() ? kPaused : kRunning; });
}

std::int32_t ImpressShowView::SlideOnScreen() {
    return Ask(u"View.Slide", [](const Controller& show) { return SlideNumber(show->getCurrentSlide()); });
}

std::int32_t ImpressShowView::CurrentShowPosition() {
    if (const auto told = m_office->EventSlide(*m_show)) return *told;
    return SlideOnScreen();
}

std::unique_ptr<host::ISlide> ImpressShowView::Slide() {
    return std::make_unique<ImpressSlide>(m_office, m_show->document, CurrentShowPosition());
}

host::PointerType ImpressShowView::PointerType() {
    return Ask(u"View.PointerType", [](const Controller& show) {
        if (show->getUsePen()) return host::PointerType::Pen;
        return show->getMouseVisible() ? host::PointerType::Arrow : host::PointerType::AlwaysHidden;
    });
}

void ImpressShowView::SetPointerType(host::PointerType type) {
    Ask(u"View.PointerType", [type](const Controller& show) {
        show->setUsePen(type == host::PointerType::Pen);
        show->setMouseVisible(type != host::PointerType::AlwaysHidden);
    });
}

std::int32_t ImpressShowView::PointerColor() {
    return Ask(u"View.PointerColor", [](const Controller& show) { return SwapRedAndBlue(show->getPenColor()); });
}

void ImpressShowView::SetPointerColor(std::int32_t bgr) {
    Ask(u"View.PointerColor", [bgr](const Controller& show) { show->setPenColor(SwapRedAndBlue(bgr)); });
}

void ImpressShowView::GotoSlide(std::int32_t index, bool) {
    const auto before = m_show->slidesShown;
    Ask(u"View.GotoSlide",
        [document = m_show->document, index](const Controller& show) { show->gotoSlide(document->Page(index)); });
    m_office->DispatchUntil([&] { return m_show->ended || m_show->slidesShown > before; }, {});
}

void ImpressShowView::Next() {
    ++m_show->clicksMade;
    Ask(u"View.Next", [](const Controller& show) { show->gotoNextEffect(); });
    m_office->DispatchPending();
}

bool ImpressShowView::ClicksLeft() {
    m_office->DispatchPending();
    if (m_show->clicksUsedUp) return false;
    const auto builds =
        Ask(u"View.ClicksLeft", [](const Controller& show) { return ClickBuilds(show->getCurrentSlide()); });
    if (m_show->clicksMade < builds) return true;
    // The office tells of the last click only when its build has been drawn, and a click more would leave the slide;
    // but one that came before the slide was drawn is lost, so the number of clicks alone does not tell.
    const auto slide = m_show->slidesShown;
    const auto settled = [&] { return m_show->clicksUsedUp || m_show->ended || m_show->slidesShown != slide; };
    return builds > 0 && !m_office->DispatchUntil(settled, kLastBuildPatience);
}

bool ImpressShowView::NextSlide() {
    const auto before = m_show->slidesShown;
    const bool moved = Ask(u"View.NextSlide", [document = m_show->document](const Controller& show) {
        return GoToNextOf(*document, show);
    });
    if (moved) m_office->DispatchUntil([&] { return m_show->ended || m_show->slidesShown > before; }, {});
    return moved;
}

void ImpressShowView::Exit() {
    Ask(u"View.Exit", [document = m_show->document](const Controller&) { document->Show()->end(); });
    m_office->DispatchUntil([&] { return m_show->ended; }, kShowPatience);
}

}  // namespace kestrum::impress
