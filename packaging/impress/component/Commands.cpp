#include "Commands.h"

#include <algorithm>
#include <com/sun/star/frame/DoubleInitializationException.hpp>
#include <com/sun/star/frame/status/Visibility.hpp>
#include <cppuhelper/implbase1.hxx>
#include <cppuhelper/supportsservice.hxx>
#include <thread>

#include "Text.h"

namespace kestrum::extension {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

/// What the program holds as long as it is there: the office lets go of it when the connection breaks.
class Membership : public cppu::WeakImplHelper1<css::frame::XStatusListener> {
  public:
    Membership(rtl::Reference<Commands> commands, int number) : m_commands(std::move(commands)), m_number(number) {}
    ~Membership() override { m_commands->Left(m_number); }
    void SAL_CALL statusChanged(const css::frame::FeatureStateEvent& event) override {
        css::frame::status::Visibility visibility{true};
        event.State >>= visibility;
        m_commands->SetState(m_number, event.FeatureURL.Path,
                             {static_cast<bool>(event.IsEnabled), static_cast<bool>(visibility.bVisible)});
    }
    void SAL_CALL disposing(const css::lang::EventObject&) override {}

  private:
    const rtl::Reference<Commands> m_commands;
    const int m_number;
};

css::frame::FeatureStateEvent EventOf(const CommandState& state) {
    css::frame::FeatureStateEvent event;
    event.IsEnabled = state.enabled;
    event.State <<= css::frame::status::Visibility{state.visible};
    return event;
}

/// The model that `frame` shows; null if it shows none.
Reference<css::frame::XModel> DocumentOf(const Reference<css::frame::XFrame>& frame) {
    const auto controller = frame.is() ? frame->getController() : nullptr;
    return controller.is() ? controller->getModel() : nullptr;
}

}  // namespace

rtl::Reference<Commands> Commands::Of(const Context& context) {
    const Reference<css::lang::XInitialization> object(context->getValueByName("/singletons/org.kestrum.theCommands"),
                                                       UNO_QUERY_THROW);
    auto* commands = dynamic_cast<Commands*>(object.get());
    if (!commands) throw css::uno::RuntimeException("Kestrum's commands are in another process.");
    return commands;
}

void Commands::Click(const rtl::OUString& id, const Reference<css::frame::XFrame>& frame) {
    const Pick pick{id, frame, DocumentOf(frame)};
    Reference<css::frame::XDispatch> program;
    bool start = false;
    {
        std::lock_guard lock(m_mutex);
        program = m_program;
        if (!program.is() && m_waiting.id.isEmpty()) {
            m_waiting = pick;
            start = !m_starting;
        }
    }
    if (program.is()) return HandOver(program, pick);
    TellAll();
    if (start) Start(false);
}

void Commands::StartForAutomaticRecording() {
    {
        std::lock_guard lock(m_mutex);
        if (m_program.is() || m_starting) return;
    }
    Start(true);
}

void Commands::Start(bool automatic) {
    const rtl::Reference<Commands> self(this);
    try {
        if (m_channel.pipe.isEmpty()) m_channel = OpenChannel(m_context);
        {
            std::lock_guard lock(m_mutex);
            m_starting = true;
        }
        const bool started = StartProgram(m_channel.pipe, automatic, [self, automatic](const ProgramEnd& end) {
            OnMainThread(self->m_context, [self, end, automatic] { self->ProgramEnded(end, automatic); });
        });
        if (started) return;
        ProgramEnded({automatic, Text("msgMenuNoProgram", ProgramPath())}, automatic);
    } catch (const css::uno::Exception& failure) {
        ProgramEnded({automatic, Text("msgMenuNoChannel", failure.Message)}, automatic);
    }
}

// A program that ended before it joined leaves what it was started for. One for automatic recording that was not needed
// says nothing, and is started once more if the user picked a command meanwhile.
void Commands::ProgramEnded(const ProgramEnd& end, bool automatic) {
    Pick waiting;
    bool again = false;
    {
        std::lock_guard lock(m_mutex);
        m_starting = false;
        again = automatic && end.wellBehaved && !m_waiting.id.isEmpty() && !m_program.is();
        if (!again && !m_program.is()) std::swap(waiting, m_waiting);
    }
    if (again) return Start(false);
    TellAll();
    if (end.wellBehaved && waiting.id.isEmpty()) return;
    const auto sentence = end.sentence.isEmpty() ? Text("msgMenuEnded") : end.sentence;
    AfterShows(m_context, [context = m_context, waiting, sentence] { ShowSentence(context, waiting.frame, sentence); });
}

// A thread of its own: a program that hangs must not stop the office.
void Commands::HandOver(const Reference<css::frame::XDispatch>& program, const Pick& pick) {
    css::util::URL url;
    url.Complete = rtl::OUString::createFromAscii(kScheme) + pick.id;
    url.Path = pick.id;
    css::uno::Sequence<css::beans::PropertyValue> arguments(1);
    arguments.getArray()[0].Name = "Document";
    arguments.getArray()[0].Value <<= pick.document;
    std::thread([program, url, arguments] {
        try {
            program->dispatch(url, arguments);
        } catch (const css::uno::Exception&) {
            // It died in this moment, and is reported as gone.
        }
    }).detach();
}

void Commands::initialize(const css::uno::Sequence<Any>& arguments) {
    Reference<css::frame::XDispatch> program;
    if (arguments.getLength() != 1 || !(arguments[0] >>= program) || !program.is())
        throw css::uno::RuntimeException("A program joins with its dispatch alone.");
    int number = 0;
    Pick waiting;
    {
        std::lock_guard lock(m_mutex);
        if (m_program.is()) throw css::frame::DoubleInitializationException("Another program is connected.", nullptr);
        m_program = program;
        m_states.clear();
        number = ++m_programs;
        std::swap(waiting, m_waiting);
    }
    program->addStatusListener(new Membership(this, number), css::util::URL());
    TellAll();
    if (!waiting.id.isEmpty()) HandOver(program, waiting);
}

void Commands::SetState(int program, const rtl::OUString& id, const CommandState& state) {
    {
        std::lock_guard lock(m_mutex);
        if (program != m_programs || !m_program.is()) return;
        m_states[id] = state;
    }
    TellAll();
}

void Commands::Left(int program) {
    Reference<css::frame::XDispatch> gone;
    {
        std::lock_guard lock(m_mutex);
        if (program != m_programs) return;
        std::swap(gone, m_program);
        m_states.clear();
    }
    OnMainThread(m_context, [self = rtl::Reference<Commands>(this)] { self->TellAll(); });
}

// Absent, the program can do everything, for it is started by a click; as long as it comes up, nothing more.
CommandState Commands::StateOf(const rtl::OUString& id) const {
    if (!m_program.is()) return {m_waiting.id.isEmpty(), true};
    const auto found = m_states.find(id);
    return found != m_states.end() ? found->second : CommandState{false, true};
}

void Commands::Add(const rtl::OUString& id, const Reference<css::frame::XDispatch>& source,
                   const Reference<css::frame::XStatusListener>& listener, const css::util::URL& url) {
    auto event = css::frame::FeatureStateEvent();
    {
        std::lock_guard lock(m_mutex);
        m_watchers.push_back({id, source, listener, url});
        event = EventOf(StateOf(id));
    }
    event.Source = source;
    event.FeatureURL = url;
    listener->statusChanged(event);
}

void Commands::Remove(const Reference<css::frame::XStatusListener>& listener, const css::util::URL& url) {
    std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_watchers.begin(), m_watchers.end(), [&](const Watcher& watcher) {
        return watcher.listener == listener && watcher.url.Complete == url.Complete;
    });
    if (found != m_watchers.end()) m_watchers.erase(found);
}

void Commands::TellAll() {
    std::vector<std::pair<Watcher, CommandState>> told;
    {
        std::lock_guard lock(m_mutex);
        for (const auto& watcher : m_watchers) told.emplace_back(watcher, StateOf(watcher.id));
    }
    for (const auto& [watcher, state] : told) {
        auto event = EventOf(state);
        event.Source = watcher.source;
        event.FeatureURL = watcher.url;
        try {
            watcher.listener->statusChanged(event);
        } catch (const css::uno::Exception&) {
            // Its toolbar is being closed.
        }
    }
}

rtl::OUString Commands::getImplementationName() {
    return "org.kestrum.comp.Commands";
}

sal_Bool Commands::supportsService(const rtl::OUString& name) {
    return cppu::supportsService(this, name);
}

css::uno::Sequence<rtl::OUString> Commands::getSupportedServiceNames() {
    css::uno::Sequence<rtl::OUString> names(1);
    names.getArray()[0] = "org.kestrum.Commands";
    return names;
}

}  // namespace kestrum::extension
