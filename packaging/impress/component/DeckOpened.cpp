// The job that the office runs when a document has been opened: for a presentation the program is started, so that it
// is there before a show that is to be recorded automatically. The program ends at once if that is not wanted.
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

bool IsPresentation(const NamedValues& arguments) {
    NamedValues environment;
    Value(arguments, "Environment") >>= environment;
    Reference<css::lang::XServiceInfo> model;
    Value(environment, "Model") >>= model;
    return model.is() && model->supportsService("com.sun.star.presentation.PresentationDocument");
}

class DeckOpened : public cppu::WeakImplHelper2<css::task::XJob, css::lang::XServiceInfo> {
  public:
    explicit DeckOpened(Context context) : m_context(std::move(context)) {}

    css::uno::Any SAL_CALL execute(const NamedValues& arguments) override {
        if (IsPresentation(arguments)) {
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
