#include "adapters/impress/OfficeMenu.h"

#include <com/sun/star/frame/DoubleInitializationException.hpp>
#include <com/sun/star/frame/XDispatch.hpp>
#include <com/sun/star/frame/status/Visibility.hpp>
#include <com/sun/star/lang/XInitialization.hpp>
#include <cppuhelper/implbase1.hxx>
#include <deque>
#include <mutex>

#include "adapters/impress/OfficeModel.h"
#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;

namespace {

constexpr const char* kCommands = "/singletons/org.kestrum.theCommands";

struct Pick {
    String id;
    Reference<css::frame::XModel> document;
};

css::frame::FeatureStateEvent EventOf(const String& id, const CommandState& state) {
    css::frame::FeatureStateEvent event;
    event.FeatureURL.Path = ToUno(id);
    event.IsEnabled = state.enabled;
    event.State <<= css::frame::status::Visibility{state.visible};
    return event;
}

}  // namespace

struct OfficeMenu::Shared {
    Shared(const std::shared_ptr<OfficeModel>& model, host::IEventLoop& eventLoop) : office(model), loop(eventLoop) {}

    const std::weak_ptr<OfficeModel> office;
    host::IEventLoop& loop;
    // The core's thread only:
    std::function<void(const String& id)> picked;
    std::map<String, CommandState> shown;
    // Any thread, under the lock:
    std::mutex mutex;
    Reference<css::frame::XStatusListener> member;  ///< as long as it is held the commands are ours
    std::deque<Pick> picks;
    bool closed = false;
};

/// What the office knows of us. It calls on any thread and waits meanwhile.
class OfficeMenu::Receiver : public cppu::WeakImplHelper1<css::frame::XDispatch> {
  public:
    explicit Receiver(std::weak_ptr<Shared> shared) : m_shared(std::move(shared)) {}

    void SAL_CALL dispatch(const css::util::URL& command,
                           const css::uno::Sequence<css::beans::PropertyValue>& arguments) override {
        const auto shared = m_shared.lock();
        if (!shared) return;
        Pick pick{FromUno(command.Path), nullptr};
        for (const auto& argument : arguments)
            if (argument.Name == "Document") argument.Value >>= pick.document;
        std::lock_guard lock(shared->mutex);
        if (shared->closed) return;
        shared->picks.push_back(std::move(pick));
        shared->loop.Post([weak = m_shared] {
            if (const auto alive = weak.lock()) Deliver(alive);
        });
    }
    void SAL_CALL addStatusListener(const Reference<css::frame::XStatusListener>& listener,
                                    const css::util::URL&) override {
        const auto shared = m_shared.lock();
        if (!shared) return;
        std::lock_guard lock(shared->mutex);
        shared->member = listener;
    }
    void SAL_CALL removeStatusListener(const Reference<css::frame::XStatusListener>&, const css::util::URL&) override {}

  private:
    const std::weak_ptr<Shared> m_shared;
};

std::unique_ptr<OfficeMenu> OfficeMenu::TakeOver(const std::shared_ptr<OfficeModel>& office, host::IEventLoop& loop) {
    auto shared = std::make_shared<Shared>(office, loop);
    const Reference<css::frame::XDispatch> receiver(new Receiver(shared));
    const bool taken = office->Link().Call(u"Menu", [remote = office->Link().Remote(), receiver] {
        const Reference<css::lang::XInitialization> commands(
            remote->getValueByName(rtl::OUString::createFromAscii(kCommands)), UNO_QUERY);
        if (!commands.is()) return false;
        css::uno::Sequence<Any> arguments(1);
        arguments.getArray()[0] <<= receiver;
        try {
            commands->initialize(arguments);
        } catch (const css::frame::DoubleInitializationException&) {
            throw OfficeError(u"Menu", u"Kestrum is already at work in this office.");
        }
        return true;
    });
    return std::unique_ptr<OfficeMenu>(taken ? new OfficeMenu(std::move(shared)) : nullptr);
}

OfficeMenu::OfficeMenu(std::shared_ptr<Shared> shared) : m_shared(std::move(shared)) {}

OfficeMenu::~OfficeMenu() {
    Reference<css::frame::XStatusListener> member;
    std::lock_guard lock(m_shared->mutex);
    m_shared->closed = true;
    m_shared->picks.clear();
    std::swap(member, m_shared->member);
}

void OfficeMenu::OnPick(std::function<void(const String& id)> picked) {
    m_shared->picked = std::move(picked);
    m_shared->loop.Post([weak = std::weak_ptr(m_shared)] {
        if (const auto alive = weak.lock()) Deliver(alive);
    });
}

void OfficeMenu::Deliver(const std::shared_ptr<Shared>& shared) {
    if (!shared->picked) return;
    Pick pick;
    {
        std::lock_guard lock(shared->mutex);
        if (shared->picks.empty()) return;
        pick = std::move(shared->picks.front());
        shared->picks.pop_front();
    }
    const auto office = shared->office.lock();
    if (!office) return;
    const ActiveScope active(*office, office->DocumentOf(pick.document));
    const auto picked = shared->picked;  // it may be replaced meanwhile
    picked(pick.id);
}

void OfficeMenu::Show(const std::map<String, CommandState>& states) {
    std::map<String, CommandState> news;
    for (const auto& [id, state] : states) {
        const auto found = m_shared->shown.find(id);
        if (found == m_shared->shown.end() || !(found->second == state)) news[id] = state;
    }
    const auto office = m_shared->office.lock();
    if (news.empty() || !office || office->Link().IsDead()) return;
    for (const auto& [id, state] : news) m_shared->shown[id] = state;
    Reference<css::frame::XStatusListener> member;
    {
        std::lock_guard lock(m_shared->mutex);
        member = m_shared->member;
    }
    if (!member.is()) return;
    office->Link().Send([member, news] {
        for (const auto& [id, state] : news) member->statusChanged(EventOf(id, state));
    });
}

}  // namespace kestrum::impress
