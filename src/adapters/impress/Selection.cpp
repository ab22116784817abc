#include "adapters/impress/Selection.h"

#include <algorithm>
#include <com/sun/star/drawing/XDrawView.hpp>
#include <com/sun/star/drawing/framework/AnchorBindingMode.hpp>
#include <com/sun/star/drawing/framework/XControllerManager.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>
#include <optional>

#include "adapters/impress/OfficeDocument.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

/// The slide pane or sorter of a window, if one is open.
Reference<css::view::XSelectionSupplier> SorterOf(const Reference<css::frame::XController>& controller) {
    Reference<css::drawing::framework::XControllerManager> manager(controller, UNO_QUERY);
    if (!manager.is()) return nullptr;
    const auto panes = manager->getConfigurationController();
    const auto ids = panes->getCurrentConfiguration()->getResources(
        nullptr, "", css::drawing::framework::AnchorBindingMode_INDIRECT);
    for (const auto& id : ids)
        if (id->getResourceURL() == "private:resource/view/SlideSorter")
            return Reference<css::view::XSelectionSupplier>(panes->getResource(id), UNO_QUERY);
    return nullptr;
}

/// The selected pages of a sorter; none if its selection is of another kind.
std::optional<std::vector<std::int32_t>> PagesIn(const css::uno::Any& selection) {
    css::uno::Sequence<Reference<css::uno::XInterface>> items;
    if (!(selection >>= items)) return std::nullopt;
    std::vector<std::int32_t> numbers;
    for (const auto& item : items)
        if (Reference<css::drawing::XDrawPage> page(item, UNO_QUERY); page.is()) numbers.push_back(SlideNumber(page));
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace

std::vector<std::int32_t> SelectedSlideNumbers(const Reference<css::frame::XModel>& model) {
    const auto controller = model->getCurrentController();
    if (const auto sorter = SorterOf(controller); sorter.is())
        if (auto numbers = PagesIn(sorter->getSelection())) return *numbers;
    Reference<css::drawing::XDrawView> view(controller, UNO_QUERY);
    if (!view.is()) throw OfficeError(u"Selection", u"The presentation has no window.");
    return {SlideNumber(view->getCurrentPage())};
}

void SelectSlideNumber(const Reference<css::frame::XModel>& model, const Reference<css::drawing::XDrawPage>& page) {
    Reference<css::drawing::XDrawView> view(model->getCurrentController(), UNO_QUERY);
    if (!view.is()) throw OfficeError(u"Selection", u"The presentation has no window.");
    view->setCurrentPage(page);
}

}  // namespace kestrum::impress
