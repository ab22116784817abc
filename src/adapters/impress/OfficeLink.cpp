#include "adapters/impress/OfficeLink.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <com/sun/star/bridge/BridgeFactory.hpp>
#include <com/sun/star/bridge/XBridgeFactory2.hpp>
#include <com/sun/star/connection/ConnectionSetupException.hpp>
#include <com/sun/star/connection/Connector.hpp>
#include <com/sun/star/connection/NoConnectException.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <cppuhelper/implbase1.hxx>
#include <rtl/bootstrap.hxx>

#include "adapters/impress/UnoText.h"

namespace kestrum::impress {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

struct OfficeLink::Ticket {
    bool done = false;
    std::exception_ptr failure;
};

struct OfficeLink::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool dead = false;
    std::function<void()> onDeath;
    pid_t pid = 0;
    Reference<css::uno::XComponentContext> local;
    Reference<css::bridge::XBridge> bridge;
    Reference<css::uno::XComponentContext> remote;

    void Die() {
        std::function<void()> tell;
        {
            std::lock_guard lock(mutex);
            if (dead) return;
            dead = true;
            tell = onDeath;
            changed.notify_all();
        }
        if (tell) tell();
    }
};

namespace {

/// Hears the connection break.
class BridgeListener : public cppu::WeakImplHelper1<css::lang::XEventListener> {
  public:
    explicit BridgeListener(std::function<void()> broken) : m_broken(std::move(broken)) {}
    void SAL_CALL disposing(const css::lang::EventObject&) override { m_broken(); }

  private:
    std::function<void()> m_broken;
};

/// The process behind a pipe: the office's pipes are sockets of the temp folder.
pid_t ProcessBehind(const std::string& pipe) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return 0;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/tmp/OSL_PIPE_" + std::to_string(getuid()) + "_" + pipe;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ucred peer{};
    socklen_t size = sizeof peer;
    pid_t pid = 0;
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0)
        pid = peer.pid;
    close(fd);
    return pid;
}

Reference<css::uno::XComponentContext> LocalContext() {
    // Without the office's own types the first call into it crashes.
    rtl::Bootstrap::set("URE_MORE_TYPES", "file://" KESTRUM_OFFICE_PROGRAM "/types/offapi.rdb");
    return cppu::defaultBootstrap_InitialComponentContext();
}

}  // namespace

std::unique_ptr<OfficeLink> OfficeLink::TryConnect(const String& pipe) {
    auto state = std::make_shared<State>();
    try {
        state->local = LocalContext();
        auto connection = css::connection::Connector::create(state->local)->connect(ToUno(u"pipe,name=" + pipe));
        state->bridge = css::bridge::BridgeFactory::create(state->local)->createBridge("", "urp", connection, nullptr);
        Reference<css::lang::XComponent>(state->bridge, UNO_QUERY_THROW)
            ->addEventListener(new BridgeListener([weak = std::weak_ptr(state)] {
                if (auto alive = weak.lock()) alive->Die();
            }));
        state->remote.set(state->bridge->getInstance("StarOffice.ComponentContext"), UNO_QUERY_THROW);
        state->pid = ProcessBehind(host::ToUtf8(pipe));
    } catch (const css::connection::NoConnectException&) {
        return nullptr;
    } catch (const css::uno::Exception& e) {
        throw OfficeError(u"Connect", e);
    }
    return std::unique_ptr<OfficeLink>(new OfficeLink(state));
}

OfficeLink::OfficeLink(std::shared_ptr<State> state)
    : m_state(std::move(state)), m_thread(std::make_unique<OfficeThread>(m_state->remote)) {}

OfficeLink::~OfficeLink() {
    {
        std::lock_guard lock(m_state->mutex);
        m_state->onDeath = nullptr;
    }
    m_state->Die();
    m_thread->Abandon();
    try {
        Reference<css::lang::XComponent>(m_state->bridge, UNO_QUERY_THROW)->dispose();
    } catch (const css::uno::Exception&) {
        // The other end was faster.
    }
}

pid_t OfficeLink::ProcessId() const {
    return m_state->pid;
}

const Reference<css::uno::XComponentContext>& OfficeLink::Remote() const {
    return m_state->remote;
}

void OfficeLink::OnDeath(std::function<void()> callback) {
    bool dead = false;
    {
        std::lock_guard lock(m_state->mutex);
        m_state->onDeath = callback;
        dead = m_state->dead;
    }
    if (dead) callback();
}

bool OfficeLink::IsDead() const {
    std::lock_guard lock(m_state->mutex);
    return m_state->dead;
}

void OfficeLink::GiveUp() {
    m_state->Die();
}

std::shared_ptr<OfficeLink::Ticket> OfficeLink::Submit(const String& source, std::function<void()> job) {
    if (IsDead()) throw OfficeError(source, u"Impress has ended or does not answer.");
    auto ticket = std::make_shared<Ticket>();
    m_thread->Submit([state = m_state, ticket, source, job = std::move(job)] {
        std::exception_ptr failure;
        try {
            job();
        } catch (const host::Error&) {
            failure = std::current_exception();
        } catch (const css::uno::Exception& e) {
            failure = std::make_exception_ptr(OfficeError(source, e));
        }
        std::lock_guard lock(state->mutex);
        ticket->failure = failure;
        ticket->done = true;
        state->changed.notify_all();
    });
    return ticket;
}

void OfficeLink::Wait(const String& source, std::function<void()> job, Patience patience) {
    constexpr auto kLook = std::chrono::milliseconds(100);
    const auto ticket = Submit(source, std::move(job));
    PatientWait wait(m_state->pid, patience);
    std::unique_lock lock(m_state->mutex);
    while (!m_state->changed.wait_for(lock, kLook, [&] { return ticket->done || m_state->dead; })) {
        if (!wait.Exhausted()) continue;
        lock.unlock();
        GiveUp();
        throw OfficeError(source, u"Impress does not answer.");
    }
    if (!ticket->done) throw OfficeError(source, u"Impress has ended or does not answer.");
    if (ticket->failure) std::rethrow_exception(ticket->failure);
}

std::function<bool()> OfficeLink::Send(std::function<void()> job) {
    const auto ticket = Submit(u"Send", std::move(job));
    return [state = m_state, ticket] {
        std::lock_guard lock(state->mutex);
        return !ticket->done;
    };
}

}  // namespace kestrum::impress
