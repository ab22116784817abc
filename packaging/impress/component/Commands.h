// The one place of an office that knows the program behind the commands: whether it is connected, being started or
// absent, and which commands it has at the moment. Toolbars and menus ask here and bring their clicks here; the program
// reports here when it has connected. One object for each office: the singleton org.kestrum.theCommands.
//
// The program joins by initialize({its XDispatch}). It is given a status listener through its addStatusListener; as
// long as it holds on to that listener it is the program of this office, so that its death is noticed like its leaving.
// To the listener it tells the state of each command (FeatureURL.Path is the id, State a Visibility if there is one),
// and it gets each click as dispatch(id, {Document = the model of the window that was clicked}).
//
// All members may be called on any thread, though only clicks come from elsewhere than the office's main thread and the
// program's calls. No lock is held while anybody else is called.
#pragma once

#include <com/sun/star/frame/XDispatch.hpp>
#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/lang/XInitialization.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <cppuhelper/implbase2.hxx>
#include <map>
#include <mutex>
#include <rtl/ref.hxx>
#include <vector>

#include "Office.h"
#include "Program.h"

namespace kestrum::extension {

/// What a command looks like.
struct CommandState {
    bool enabled = true;
    bool visible = true;
    bool operator==(const CommandState& other) const { return enabled == other.enabled && visible == other.visible; }
};

class Commands : public cppu::WeakImplHelper2<css::lang::XInitialization, css::lang::XServiceInfo> {
  public:
    static constexpr const char* kScheme = "org.kestrum.commands:";

    explicit Commands(Context context) : m_context(std::move(context)) {}
    /// The object of this office. Raises a UNO exception if the extension is not whole.
    static rtl::Reference<Commands> Of(const Context& context);

    /// The user picked command `id` in `frame`. A program that is not there is started for it; while one is being
    /// started nothing else is taken. Main thread; re-enters if something has to be said.
    void Click(const rtl::OUString& id, const css::uno::Reference<css::frame::XFrame>& frame);
    /// A presentation has been opened: starts the program, which stays if shows are recorded automatically.
    void StartForAutomaticRecording();

    /// Tells `listener` the state of command `id` now and whenever it changes.
    void Add(const rtl::OUString& id, const css::uno::Reference<css::frame::XDispatch>& source,
             const css::uno::Reference<css::frame::XStatusListener>& listener, const css::util::URL& url);
    void Remove(const css::uno::Reference<css::frame::XStatusListener>& listener, const css::util::URL& url);

    /// The program's own report about command `id`, under the number that it joined with.
    void SetState(int program, const rtl::OUString& id, const CommandState& state);
    /// The program of this number has gone.
    void Left(int program);

    /// A program joins. Raises an exception if another one is there.
    void SAL_CALL initialize(const css::uno::Sequence<css::uno::Any>& arguments) override;

    rtl::OUString SAL_CALL getImplementationName() override;
    sal_Bool SAL_CALL supportsService(const rtl::OUString& name) override;
    css::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override;

  private:
    /// A command that waits for the program.
    struct Pick {
        rtl::OUString id;
        css::uno::Reference<css::frame::XFrame> frame;
        css::uno::Reference<css::frame::XModel> document;
    };
    struct Watcher {
        rtl::OUString id;
        css::uno::Reference<css::frame::XDispatch> source;
        css::uno::Reference<css::frame::XStatusListener> listener;
        css::util::URL url;
    };

    void Start(bool automatic);
    void ProgramEnded(const ProgramEnd& end, bool automatic);
    void HandOver(const css::uno::Reference<css::frame::XDispatch>& program, const Pick& pick);
    CommandState StateOf(const rtl::OUString& id) const;
    void TellAll();

    const Context m_context;
    mutable std::mutex m_mutex;
    css::uno::Reference<css::frame::XDispatch> m_program;
    int m_programs = 0;                              ///< how many have joined; the number of the one that is there
    bool m_starting = false;                         ///< a program runs that has not joined yet
    Pick m_waiting;                                  ///< for the program that is being started; without an id: nothing
    std::map<rtl::OUString, CommandState> m_states;  ///< as the program told them
    std::vector<Watcher> m_watchers;
    Channel m_channel;  ///< opened at the first start
};

}  // namespace kestrum::extension
