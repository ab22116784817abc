#include "adapters/impress/SlideBuilds.h"

#include <com/sun/star/animations/Event.hpp>
#include <com/sun/star/animations/EventTrigger.hpp>
#include <com/sun/star/animations/Timing.hpp>
#include <com/sun/star/animations/XAnimationNodeSupplier.hpp>
#include <com/sun/star/container/XEnumerationAccess.hpp>

namespace kestrum::impress {

namespace css = com::sun::star;
using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

bool WaitsForClick(const Reference<css::animations::XAnimationNode>& node) {
    css::animations::Event begin;
    if (node->getBegin() >>= begin) return begin.Trigger == css::animations::EventTrigger::ON_NEXT;
    css::animations::Timing timing{};
    return (node->getBegin() >>= timing) && timing == css::animations::Timing_INDEFINITE;
}

std::int32_t WaitingNodes(const Reference<css::animations::XAnimationNode>& node, int depth) {
    Reference<css::container::XEnumerationAccess> children(node, UNO_QUERY);
    if (depth == 0 || !children.is()) return 0;
    std::int32_t count = 0;
    const auto items = children->createEnumeration();
    while (items->hasMoreElements()) {
        Reference<css::animations::XAnimationNode> child(items->nextElement(), UNO_QUERY);
        if (child.is()) count += WaitsForClick(child) ? 1 : WaitingNodes(child, depth - 1);
    }
    return count;
}

}  // namespace

std::int32_t ClickBuilds(const Reference<css::drawing::XDrawPage>& page) {
    constexpr int kRootToClicks = 2;  // root, main sequence, one node per click
    Reference<css::animations::XAnimationNodeSupplier> supplier(page, UNO_QUERY);
    return supplier.is() ? WaitingNodes(supplier->getAnimationNode(), kRootToClicks) : 0;
}

}  // namespace kestrum::impress
