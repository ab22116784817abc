// How the office brings the addresses org.kestrum.commands:ID of its menus and toolbars to the commands: for each
// window one handler, which is given the window's frame, and for each address one dispatch of it.
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <cppuhelper/implbase1.hxx>
#include <cppuhelper/implbase3.hxx>
#include <cppuhelper/supportsservice.hxx>

#include "Commands.h"

namespace kestrum::extension {

using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

class CommandDispatch : public cppu::WeakImplHelper1<css::frame::XDispatch> {
  public:
    CommandDispatch(rtl::Reference<Commands> commands, rtl::OUString id, Reference<css::frame::XFrame> frame)
        : m_commands(std::move(commands)), m_id(std::move(id)), m_frame(std::move(frame)) {}

    void SAL_CALL dispatch(const css::util::URL&, const css::uno::Sequence<css::beans::PropertyValue>&) override {
        m_commands->Click(m_id, m_frame);
    }
    void SAL_CALL addStatusListener(const Reference<css::frame::XStatusListener>& listener,
                                    const css::util::URL& url) override {
        m_commands->Add(m_id, this, listener, url);
    }
    void SAL_CALL removeStatusListener(const Reference<css::frame::XStatusListener>& listener,
                                       const css::util::URL& url) override {
        m_commands->Remove(listener, url);
    }

  private:
    const rtl::Reference<Commands> m_commands;
    const rtl::OUString m_id;
    const Reference<css::frame::XFrame> m_frame;
};

class CommandProtocol
    : public cppu::WeakImplHelper3<css::frame::XDispatchProvider, css::lang::XInitialization, css::lang::XServiceInfo> {
  public:
    explicit CommandProtocol(rtl::Reference<Commands> commands) : m_commands(std::move(commands)) {}

    void SAL_CALL initialize(const css::uno::Sequence<css::uno::Any>& arguments) override {
        if (arguments.getLength() > 0) arguments[0] >>= m_frame;
    }

    Reference<css::frame::XDispatch> SAL_CALL queryDispatch(const css::util::URL& url, const rtl::OUString&,
                                                            sal_Int32) override {
        rtl::OUString id;
        if (!url.Complete.startsWith(rtl::OUString::createFromAscii(Commands::kScheme), &id)) return nullptr;
        return new CommandDispatch(m_commands, id, m_frame);
    }
    css::uno::Sequence<Reference<css::frame::XDispatch>> SAL_CALL
    queryDispatches(const css::uno::Sequence<css::frame::DispatchDescriptor>& wanted) override {
        css::uno::Sequence<Reference<css::frame::XDispatch>> found(wanted.getLength());
        for (sal_Int32 i = 0; i < wanted.getLength(); ++i)
            found.getArray()[i] = queryDispatch(wanted[i].FeatureURL, wanted[i].FrameName, wanted[i].SearchFlags);
        return found;
    }

    rtl::OUString SAL_CALL getImplementationName() override { return "org.kestrum.comp.CommandProtocol"; }
    sal_Bool SAL_CALL supportsService(const rtl::OUString& name) override { return cppu::supportsService(this, name); }
    css::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override {
        css::uno::Sequence<rtl::OUString> names(1);
        names.getArray()[0] = "com.sun.star.frame.ProtocolHandler";
        return names;
    }

  private:
    const rtl::Reference<Commands> m_commands;
    Reference<css::frame::XFrame> m_frame;
};

}  // namespace

css::uno::Reference<css::uno::XInterface> MakeCommandProtocol(const Context& context) {
    return static_cast<cppu::OWeakObject*>(new CommandProtocol(Commands::Of(context)));
}

}  // namespace kestrum::extension
