// What the office finds in this library, by the names in kestrum.components.
#include "Commands.h"

namespace kestrum::extension {

css::uno::Reference<css::uno::XInterface> MakeCommandProtocol(const Context& context);
css::uno::Reference<css::uno::XInterface> MakeDeckOpened(const Context& context);

namespace {

/// The office takes over the one reference that the answer stands for.
css::uno::XInterface* Given(const css::uno::Reference<css::uno::XInterface>& object) {
    object->acquire();
    return object.get();
}

}  // namespace
}  // namespace kestrum::extension

namespace extension = kestrum::extension;
namespace uno = com::sun::star::uno;

extern "C" SAL_DLLPUBLIC_EXPORT uno::XInterface* kestrum_Commands(uno::XComponentContext* context,
                                                                  const uno::Sequence<uno::Any>&) {
    return extension::Given(static_cast<cppu::OWeakObject*>(new extension::Commands(context)));
}

extern "C" SAL_DLLPUBLIC_EXPORT uno::XInterface* kestrum_CommandProtocol(uno::XComponentContext* context,
                                                                         const uno::Sequence<uno::Any>&) {
    return extension::Given(extension::MakeCommandProtocol(context));
}

extern "C" SAL_DLLPUBLIC_EXPORT uno::XInterface* kestrum_DeckOpened(uno::XComponentContext* context,
                                                                    const uno::Sequence<uno::Any>&) {
    return extension::Given(extension::MakeDeckOpened(context));
}
