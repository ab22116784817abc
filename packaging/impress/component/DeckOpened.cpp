// The job that the office runs when a document has been opened: for a presentation that a user sees the program is
// started, so that it is there before a show that is to be recorded automatically. The program ends at once if that is
// not wanted.
#include <rtl/process.h>

#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/task/XJob.hpp>
#include <cppuhelper/implbase2.hxx>
#include <cppuhelper/supportsservice.hxx>

#include "Commands.h"

namespace kestrum::extension {

using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

using NamedValues = css::uno::Sequence<css::beans::NamedValue>;

css::uno::Any Value(const NamedValues& values, const char* name) {
    for (const auto& value : values)
        if (value.Name.equalsAscii(name)) return value.Value;
    return {};
}

/// The document that was opened; null if it is no presentation.
Reference<css::frame::XModel> DeckIn(const NamedValues& arguments) {
    NamedValues environment;
    Value(arguments, "Environment") >>= environment;
    Reference<css::frame::XModel> model;
    Value(environment, "Model") >>= model;
    const Reference<css::lang::XServiceInfo> info(model, UNO_QUERY);
    if (!info.is() || !info->supportsService("com.sun.star.presentation.PresentationDocument")) return nullptr;
    return model;
}

/// An office that converts files has no user, and a document that another program works with has none.
bool IsSeen(const Reference<css::frame::XModel>& deck) {
    for (sal_uInt32 i = 0; i < rtl_getAppCommandArgCount(); ++i) {
        rtl::OUString word;
        rtl_getAppCommandArg(i, &word.pData);
        if (word == "--headless" || word == "--invisible" || word == "--convert-to") return false;
    }
    bool hidden = false;
    for (const auto& argument : deck->getArgs())
        if (argument.Name == "Hidden") argument.Value >>= hidden;
    return !hidden;
}

class DeckOpened : public cppu::WeakImplHelper2<css::task::XJob, css::lang::XServiceInfo> {
  public:
    explicit DeckOpened(Context context) : m_context(std::move(context)) {}

    css::uno::Any SAL_CALL execute(const NamedValues& arguments) override {
        if (const auto deck = DeckIn(arguments); deck.is() && IsSeen(deck)) {
            OnMainThread(m_context, [commands = Commands::Of(m_context)] { commands->StartForAutomaticRecording(); });
        }
        return {};
    }

    rtl::OUString SAL_CALL getImplementationName() override { return "org.kestrum.comp.DeckOpened"; }
    sal_Bool SAL_CALL supportsService(const rtl::OUString& name) override { return cppu::supportsService(this, name); }
    css::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override {
        css::uno::Sequence<rtl::OUString> names(1);
        names.getArray()[0] = "org.kestrum.DeckOpened";
        return names;
    }

  private:
    const Context m_context;
};

}  // namespace

css::uno::Reference<css::uno::XInterface> MakeDeckOpened(const Context& context) {
    return static_cast<cppu::OWeakObject*>(new DeckOpened(context));
}

}  // namespace kestrum::extension
