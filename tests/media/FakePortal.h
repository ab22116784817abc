// A desktop portal for one test: it answers questions for the screen as it was told, and remembers what it was asked.
#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "real/MessageBus.h"

namespace kestrum::media {

/// What its user does when he is asked.
enum class UserAnswer { kAllows, kRefuses, kFails, kSaysNothing, kPortalGoes };

class FakePortal {
  public:
    /// Members may be changed before the first question.
    explicit FakePortal(const real::MessageBus& bus);
    ~FakePortal();
    FakePortal(const FakePortal&) = delete;
    FakePortal& operator=(const FakePortal&) = delete;

    std::atomic<UserAnswer> answer{UserAnswer::kAllows};
    std::uint32_t sourceTypes = 1, pointerWays = 7, version = 4;
    std::atomic<std::uint32_t> node{42};
    std::atomic<int> x{0}, y{0}, width{64}, height{48};
    std::function<int()> remote;  ///< a connection to PipeWire, given away

    std::atomic<int> questions{0};
    std::atomic<bool> isWithdrawn{false};
    std::atomic<bool> isSessionClosed{false};  ///< by the program
    std::atomic<std::uint32_t> pointerAsked{0}, typesAsked{0}, persistAsked{0};
    std::string TokenAsked() const;

    /// The user ends the cast.
    void EndSession() { m_endSession = true; }

  private:
    static int OnCreate(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnSelect(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnStart(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnOpen(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnClose(sd_bus_message* message, void* self, sd_bus_error*);

    void Serve();
    void ReadOptions(sd_bus_message* message);
    int ReplyRequest(sd_bus_message* message);
    sd_bus_message* NewResponse(std::uint32_t code) const;
    void SendEndOfSession();

    sd_bus* m_bus = nullptr;
    std::string m_request, m_session, m_program;
    mutable std::mutex m_mutex;
    std::string m_token;
    std::atomic<bool> m_stop{false}, m_endSession{false};
    std::thread m_thread;
};

}  // namespace kestrum::media
