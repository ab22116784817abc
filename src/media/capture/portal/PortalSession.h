// The question to the desktop whether the screen may be recorded, and its answer (org.freedesktop.portal.ScreenCast).
// Decides what is asked for: one monitor, with the pointer in its picture where the desktop offers that, and to be
// remembered.
//
// One thread at a time. The desktop ends the cast when the object goes.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "media/capture/Area.h"
#include "media/capture/portal/KeepWaiting.h"

namespace kestrum::media {

/// What the desktop gave.
struct CastGrant {
    std::uint32_t node = 0;     ///< of PipeWire
    std::optional<Area> place;  ///< of the monitor, in the desktop's own measure
    bool showsPointer = false;
    std::string token;  ///< spares the next question; empty where the desktop remembers nothing
};

class PortalSession {
  public:
    /// Asks, and waits for the user if the desktop asks him. `token` is that of the last answer, or empty. Throws
    /// CaptureError (kNoDisplay) with a sentence: no such service, refused, not answered, or the service went.
    PortalSession(const std::string& token, const KeepWaiting& keepWaiting);
    ~PortalSession();
    PortalSession(const PortalSession&) = delete;
    PortalSession& operator=(const PortalSession&) = delete;

    const CastGrant& Grant() const { return m_grant; }
    /// A connection to PipeWire on which the node is seen; the descriptor is the caller's. Throws CaptureError.
    int OpenRemote();
    /// The desktop, or its user, has ended the cast.
    bool IsClosed();

  private:
    struct BusDeleter {
        void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    };
    struct MessageDeleter {
        void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
    };
    using Message = std::unique_ptr<sd_bus_message, MessageDeleter>;

    static int OnResponse(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnOwner(sd_bus_message* message, void* self, sd_bus_error*);
    static int OnClosed(sd_bus_message* message, void* self, sd_bus_error*);

    void Connect();
    std::uint32_t Property(const char* name);
    void CreateSession(const KeepWaiting& keepWaiting);
    void SelectSources(const std::string& token, const KeepWaiting& keepWaiting);
    void Start(const KeepWaiting& keepWaiting);
    Message NewCall(const char* method);
    void OpenOptions(sd_bus_message* call);
    Message Call(sd_bus_message* call);
    Message Ask(Message call, const KeepWaiting& keepWaiting);
    void WaitForResponse(const KeepWaiting& keepWaiting);
    void Withdraw();
    std::string RequestPath() const;

    std::unique_ptr<sd_bus, BusDeleter> m_bus;
    int m_requests = 0;
    Message m_response;
    std::string m_session;
    bool m_isPortalGone = false;
    bool m_isClosed = false;
    CastGrant m_grant;
};

}  // namespace kestrum::media
