#include "Office.h"

#include <chrono>
#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/awt/MessageBoxButtons.hpp>
#include <com/sun/star/awt/MessageBoxType.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XCallback.hpp>
#include <com/sun/star/awt/XMessageBoxFactory.hpp>
#include <com/sun/star/awt/XWindowPeer.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/lang/XInitialization.hpp>
#include <com/sun/star/presentation/XPresentation2.hpp>
#include <com/sun/star/presentation/XPresentationSupplier.hpp>
#include <cppuhelper/implbase1.hxx>
#include <random>
#include <thread>

namespace kestrum::extension {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

class Callback : public cppu::WeakImplHelper1<css::awt::XCallback> {
  public:
    explicit Callback(std::function<void()> task) : m_task(std::move(task)) {}
    void SAL_CALL notify(const Any&) override { m_task(); }

  private:
    std::function<void()> m_task;
};

rtl::OUString UnguessableName() {
    constexpr int kWords = 4;  // 128 bits
    std::random_device random;
    rtl::OUString name("kestrum-");
    for (int i = 0; i < kWords; ++i) name += rtl::OUString::number(static_cast<sal_Int64>(random()), 16);
    return name;
}

bool AnyShowRuns(const Context& context) {
    try {
        const auto open = css::frame::Desktop::create(context)->getComponents()->createEnumeration();
        while (open->hasMoreElements()) {
            const Reference<css::presentation::XPresentationSupplier> deck(open->nextElement(), UNO_QUERY);
            if (!deck.is()) continue;
            const Reference<css::presentation::XPresentation2> show(deck->getPresentation(), UNO_QUERY);
            if (show.is() && show->isRunning()) return true;
        }
    } catch (const css::uno::Exception&) {
        // A document that is being closed shows nothing.
    }
    return false;
}

}  // namespace

void OnMainThread(const Context& context, std::function<void()> task) {
    try {
        css::awt::AsyncCallback::create(context)->addCallback(new Callback(std::move(task)), Any());
    } catch (const css::uno::Exception&) {
        // The office is ending: there is nobody to be told.
    }
}

void ShowSentence(const Context& context, const Reference<css::frame::XFrame>& frame, const rtl::OUString& sentence) {
    try {
        const Reference<css::awt::XWindowPeer> parent(frame.is() ? frame->getContainerWindow() : nullptr, UNO_QUERY);
        const Reference<css::awt::XMessageBoxFactory> boxes(css::awt::Toolkit::create(context), UNO_QUERY_THROW);
        boxes
            ->createMessageBox(parent, css::awt::MessageBoxType_ERRORBOX, css::awt::MessageBoxButtons::BUTTONS_OK,
                               "Kestrum", sentence)
            ->execute();
    } catch (const css::uno::Exception&) {
        // The window went away under the box, and who read it with it.
    }
}

void AfterShows(const Context& context, std::function<void()> task) {
    static constexpr auto kLook = std::chrono::seconds(1);
    if (!AnyShowRuns(context)) return task();
    std::thread([context, task = std::move(task)] {
        std::this_thread::sleep_for(kLook);
        OnMainThread(context, [context, task] { AfterShows(context, task); });
    }).detach();
}

Channel OpenChannel(const Context& context) {
    const auto name = UnguessableName();
    const Reference<css::lang::XInitialization> acceptor(
        context->getServiceManager()->createInstanceWithContext("com.sun.star.office.Acceptor", context),
        UNO_QUERY_THROW);
    css::uno::Sequence<Any> arguments(2);
    arguments.getArray()[0] <<= "pipe,name=" + name + ";urp;StarOffice.ComponentContext";
    arguments.getArray()[1] <<= true;
    acceptor->initialize(arguments);
    return {name, acceptor};
}

}  // namespace kestrum::extension
