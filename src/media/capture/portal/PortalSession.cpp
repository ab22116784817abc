#include "media/capture/portal/PortalSession.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "media/capture/CaptureError.h"

namespace kestrum::media {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kObject = "/org/freedesktop/portal/desktop";
constexpr const char* kScreenCast = "org.freedesktop.portal.ScreenCast";
constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr std::uint64_t kCallTimeoutUs = 10'000'000;
constexpr std::uint64_t kLookUs = 100'000;
constexpr std::uint32_t kMonitor = 1;                        // kinds of sources
constexpr std::uint32_t kPointerHidden = 1, kPointerIn = 2;  // ways with the pointer
constexpr std::uint32_t kUntilRevoked = 2;                   // how long a permission holds
constexpr std::uint32_t kCursorVersion = 2, kTokenVersion = 4;

CaptureError Refusal(const std::string& sentence) {
    return {CaptureErrorKind::kNoDisplay, sentence};
}

CaptureError NoPortal() {
    return Refusal(
        "The desktop has no service that gives programs the picture of the screen (a desktop portal with screen "
        "casts).");
}

CaptureError PortalGone() {
    return Refusal("The desktop's portal ended while it was asked for the screen.");
}

/// Calls `read` for each entry of a dictionary, the reading position at its value; what it leaves is skipped.
template <typename Read>
void ForEachEntry(sd_bus_message* message, Read read) {
    if (sd_bus_message_enter_container(message, 'a', "{sv}") < 0) return;
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char* key = nullptr;
        if (sd_bus_message_read(message, "s", &key) < 0) return;
        if (!read(std::string(key))) sd_bus_message_skip(message, "v");
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
}

bool ReadText(sd_bus_message* message, std::string& text) {
    const char* value = nullptr;
    if (sd_bus_message_read(message, "v", "s", &value) < 0) return false;
    text = value;
    return true;
}

/// Two numbers: a place or a size.
bool ReadPair(sd_bus_message* message, int& first, int& second) {
    std::int32_t a = 0, b = 0;
    if (sd_bus_message_read(message, "v", "(ii)", &a, &b) < 0) return false;
    first = a;
    second = b;
    return true;
}

/// The first of the streams.
void ReadStreams(sd_bus_message* message, CastGrant& grant) {
    if (sd_bus_message_enter_container(message, 'v', "a(ua{sv})") < 0) return;
    if (sd_bus_message_enter_container(message, 'a', "(ua{sv})") < 0) return;
    if (sd_bus_message_enter_container(message, 'r', "ua{sv}") > 0) {
        sd_bus_message_read(message, "u", &grant.node);
        Area place;
        bool hasPosition = false;
        ForEachEntry(message, [&](const std::string& key) {
            if (key == "position") return hasPosition = ReadPair(message, place.x, place.y);
            return key == "size" && ReadPair(message, place.width, place.height);
        });
        if (hasPosition) grant.place = place;
        sd_bus_message_exit_container(message);
        // Only one was asked for.
        while (sd_bus_message_skip(message, "(ua{sv})") > 0) continue;
    }
    sd_bus_message_exit_container(message);
    sd_bus_message_exit_container(message);
}

}  // namespace

PortalSession::PortalSession(const std::string& token, const KeepWaiting& keepWaiting) {
    Connect();
    CreateSession(keepWaiting);
    SelectSources(token, keepWaiting);
    Start(keepWaiting);
}

PortalSession::~PortalSession() {
    // A portal that has gone is not started again for this.
    if (m_session.empty() || m_isPortalGone) return;
    sd_bus_call_method_async(m_bus.get(), nullptr, kPortal, m_session.c_str(), "org.freedesktop.portal.Session",
                             "Close", nullptr, nullptr, nullptr);
}

void PortalSession::Connect() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) throw NoPortal();
    m_bus.reset(bus);
    sd_bus_set_method_call_timeout(bus, kCallTimeoutUs);
    sd_bus_match_signal(bus, nullptr, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                        "NameOwnerChanged", OnOwner, this);
    sd_bus_match_signal(bus, nullptr, kPortal, nullptr, kRequest, "Response", OnResponse, this);
    sd_bus_match_signal(bus, nullptr, kPortal, nullptr, "org.freedesktop.portal.Session", "Closed", OnClosed, this);
    if (Property("version") == 0 || (Property("AvailableSourceTypes") & kMonitor) == 0) throw NoPortal();
}

std::uint32_t PortalSession::Property(const char* name) {
    std::uint32_t value = 0;
    sd_bus_get_property_trivial(m_bus.get(), kPortal, kObject, kScreenCast, name, nullptr, 'u', &value);
    return value;
}

int PortalSession::OnOwner(sd_bus_message* message, void* self, sd_bus_error*) {
    const char *name = nullptr, *before = nullptr, *after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) < 0) return 0;
    if (std::strcmp(name, kPortal) == 0 && !*after) static_cast<PortalSession*>(self)->m_isPortalGone = true;
    return 0;
}

int PortalSession::OnResponse(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& session = *static_cast<PortalSession*>(self);
    if (session.RequestPath() == sd_bus_message_get_path(message))
        session.m_response.reset(sd_bus_message_ref(message));
    return 0;
}

int PortalSession::OnClosed(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& session = *static_cast<PortalSession*>(self);
    session.m_isClosed |= session.m_session == sd_bus_message_get_path(message);
    return 0;
}

/// Where the answer to the last question comes from.
std::string PortalSession::RequestPath() const {
    const char* unique = nullptr;
    sd_bus_get_unique_name(m_bus.get(), &unique);
    std::string sender = unique ? unique + 1 : "";  // without its colon
    std::replace(sender.begin(), sender.end(), '.', '_');
    return std::string(kObject) + "/request/" + sender + "/kestrum" + std::to_string(m_requests);
}

void PortalSession::CreateSession(const KeepWaiting& keepWaiting) {
    Message call = NewCall("CreateSession");
    OpenOptions(call.get());
    sd_bus_message_append(call.get(), "{sv}", "session_handle_token", "s", "kestrum");
    const Message answer = Ask(std::move(call), keepWaiting);
    ForEachEntry(answer.get(),
                 [&](const std::string& key) { return key == "session_handle" && ReadText(answer.get(), m_session); });
    if (m_session.empty()) throw NoPortal();
}

void PortalSession::SelectSources(const std::string& token, const KeepWaiting& keepWaiting) {
    const std::uint32_t version = Property("version");
    const std::uint32_t pointer = version < kCursorVersion ? 0 : Property("AvailableCursorModes");
    m_grant.showsPointer = (pointer & kPointerIn) != 0;
    Message call = NewCall("SelectSources");
    sd_bus_message_append(call.get(), "o", m_session.c_str());
    OpenOptions(call.get());
    sd_bus_message_append(call.get(), "{sv}{sv}", "types", "u", kMonitor, "multiple", "b", 0);
    if (pointer != 0) {
        sd_bus_message_append(call.get(), "{sv}", "cursor_mode", "u",
                              m_grant.showsPointer ? kPointerIn : kPointerHidden);
    }
    if (version >= kTokenVersion) {
        sd_bus_message_append(call.get(), "{sv}", "persist_mode", "u", kUntilRevoked);
        if (!token.empty()) sd_bus_message_append(call.get(), "{sv}", "restore_token", "s", token.c_str());
    }
    Ask(std::move(call), keepWaiting);
}

void PortalSession::Start(const KeepWaiting& keepWaiting) {
    Message call = NewCall("Start");
    sd_bus_message_append(call.get(), "os", m_session.c_str(), "");
    OpenOptions(call.get());
    const Message answer = Ask(std::move(call), keepWaiting);
    bool hasStream = false;
    ForEachEntry(answer.get(), [&](const std::string& key) {
        if (key == "restore_token") return ReadText(answer.get(), m_grant.token);
        if (key != "streams") return false;
        ReadStreams(answer.get(), m_grant);
        return hasStream = true;
    });
    if (!hasStream) throw Refusal("The desktop gave no picture of the screen.");
}

PortalSession::Message PortalSession::NewCall(const char* method) {
    sd_bus_message* call = nullptr;
    if (sd_bus_message_new_method_call(m_bus.get(), &call, kPortal, kObject, kScreenCast, method) < 0) throw NoPortal();
    return Message(call);
}

/// Begins the options, with the name of the request in them; Ask ends them.
void PortalSession::OpenOptions(sd_bus_message* call) {
    ++m_requests;
    m_response.reset();
    sd_bus_message_open_container(call, 'a', "{sv}");
    const std::string name = "kestrum" + std::to_string(m_requests);
    sd_bus_message_append(call, "{sv}", "handle_token", "s", name.c_str());
}

PortalSession::Message PortalSession::Call(sd_bus_message* call) {
    sd_bus_message* reply = nullptr;
    const int result = sd_bus_call(m_bus.get(), call, 0, nullptr, &reply);
    if (result < 0) throw PortalGone();
    return Message(reply);
}

/// The answer, its reading position at the results.
PortalSession::Message PortalSession::Ask(Message call, const KeepWaiting& keepWaiting) {
    sd_bus_message_close_container(call.get());
    Call(call.get());
    WaitForResponse(keepWaiting);
    Message answer = std::move(m_response);
    std::uint32_t code = 0;
    sd_bus_message_read(answer.get(), "u", &code);
    constexpr std::uint32_t kGranted = 0, kCancelled = 1;
    if (code == kGranted) return answer;
    if (code == kCancelled) {
        throw Refusal("The screen was not released for recording; record again, and allow it when the desktop asks.");
    }
    throw Refusal("The desktop ended its question for the screen without an answer.");
}

void PortalSession::WaitForResponse(const KeepWaiting& keepWaiting) {
    while (!m_response) {
        const int result = sd_bus_process(m_bus.get(), nullptr);
        if (result < 0 || m_isPortalGone) throw PortalGone();
        if (result > 0) continue;
        if (!keepWaiting()) {
            Withdraw();
            throw Refusal("Nobody answered the desktop's question for the screen; record again, and allow it.");
        }
        sd_bus_wait(m_bus.get(), kLookUs);
    }
}

/// Takes the desktop's question away.
void PortalSession::Withdraw() {
    sd_bus_call_method_async(m_bus.get(), nullptr, kPortal, RequestPath().c_str(), kRequest, "Close", nullptr, nullptr,
                             nullptr);
}

int PortalSession::OpenRemote() {
    Message call = NewCall("OpenPipeWireRemote");
    sd_bus_message_append(call.get(), "oa{sv}", m_session.c_str(), 0);
    const Message reply = Call(call.get());
    int fd = -1;
    if (sd_bus_message_read(reply.get(), "h", &fd) < 0) throw Refusal("The desktop gave no picture of the screen.");
    return fcntl(fd, F_DUPFD_CLOEXEC, 0);  // the message closes its own
}

bool PortalSession::IsClosed() {
    while (sd_bus_process(m_bus.get(), nullptr) > 0) continue;
    return m_isClosed;
}

}  // namespace kestrum::media
