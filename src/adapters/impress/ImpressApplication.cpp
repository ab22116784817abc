#include "adapters/impress/ImpressApplication.h"

#include "adapters/impress/ImpressPresentation.h"
#include "adapters/impress/ImpressShow.h"
#include "adapters/impress/Selection.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

namespace {

/// The selection as it was when it was asked for.
class SlideRange : public host::ISlideRange {
  public:
    explicit SlideRange(std::vector<std::int32_t> numbers) : m_numbers(std::move(numbers)) {}
    std::int32_t Count() override { return static_cast<std::int32_t>(m_numbers.size()); }
    std::int32_t SlideIndex() override {
        if (m_numbers.empty()) throw OfficeError(u"SlideRange.SlideIndex", u"No slide is selected.");
        return m_numbers.front();
    }

  private:
    std::vector<std::int32_t> m_numbers;
};

class Subscription : public host::ISubscription {
  public:
    Subscription(std::weak_ptr<OfficeModel> office, host::IApplicationEvents& sink)
        : m_office(std::move(office)), m_sink(sink) {}
    ~Subscription() override {
        if (auto office = m_office.lock()) office->RemoveSink(m_sink);
    }

  private:
    std::weak_ptr<OfficeModel> m_office;
    host::IApplicationEvents& m_sink;
};

css::uno::Reference<css::frame::XFrame> DocumentFrame(const css::uno::Reference<css::uno::XComponentContext>&,
                                                      const css::uno::Reference<css::frame::XModel>& model) {
    const auto controller = model->getCurrentController();
    return controller.is() ? controller->getFrame() : nullptr;
}

}  // namespace

String ImpressApplication::Version() {
    return u"16.0";
}

std::int32_t ImpressApplication::PresentationCount() {
    return static_cast<std::int32_t>(m_office->Documents().All().size());
}

std::unique_ptr<host::IPresentation> ImpressApplication::ActivePresentation() {
    return std::make_unique<ImpressPresentation>(m_office, m_office->ActiveDocument());
}

std::unique_ptr<host::ISlideRange> ImpressApplication::SelectedSlides() {
    const auto document = m_office->ActiveDocument();
    return std::make_unique<SlideRange>(
        m_office->Link().Call(u"Selection.SlideRange", [document] { return SelectedSlideNumbers(document->Model()); }));
}

void ImpressApplication::ActivateWindow() {
    ActivateFrame(*m_office, m_office->ActiveDocument(), u"ActiveWindow.Activate", &DocumentFrame);
}

std::int32_t ImpressApplication::SlideShowWindowCount() {
    return static_cast<std::int32_t>(m_office->Shows().size());
}

std::unique_ptr<host::ISlideShowWindow> ImpressApplication::SlideShowWindow(std::int32_t index) {
    if (index < 1 || index > SlideShowWindowCount())
        throw host::Error(host::ErrorNumber::OutOfRange, u"SlideShowWindows", u"There is no such slide show.");
    return std::make_unique<ImpressShowWindow>(m_office, m_office->Shows()[static_cast<std::size_t>(index - 1)]);
}

void ImpressApplication::SetCommandBarVisible(const String& name, bool) {
    throw host::Error(host::ErrorNumber::OutOfRange, u"CommandBars", u"Impress has no command bar \"" + name + u"\".");
}

std::unique_ptr<host::ISubscription> ImpressApplication::Subscribe(host::IApplicationEvents& events) {
    m_office->AddSink(events);
    return std::make_unique<Subscription>(m_office, events);
}

}  // namespace kestrum::impress
