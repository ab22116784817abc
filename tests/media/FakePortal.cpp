#include "FakePortal.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace kestrum::media {
namespace {

constexpr const char* kName = "org.freedesktop.portal.Desktop";
constexpr const char* kObject = "/org/freedesktop/portal/desktop";
constexpr const char* kScreenCast = "org.freedesktop.portal.ScreenCast";
constexpr std::uint64_t kLookUs = 20'000;

FakePortal& Of(void* self) {
    return *static_cast<FakePortal*>(self);
}

int TellNumber(sd_bus_message* reply, std::uint32_t number) {
    return sd_bus_message_append(reply, "u", number);
}

}  // namespace

FakePortal::FakePortal(const real::MessageBus& bus) {
    sd_bus_new(&m_bus);
    sd_bus_set_address(m_bus, bus.Address().c_str());
    sd_bus_set_bus_client(m_bus, 1);
    if (sd_bus_start(m_bus) < 0) throw std::runtime_error("the bus does not answer");
    static constexpr auto kTypes = [](sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* self,
                                      sd_bus_error*) { return TellNumber(reply, Of(self).sourceTypes); };
    static constexpr auto kPointers = [](sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                                         void* self, sd_bus_error*) { return TellNumber(reply, Of(self).pointerWays); };
    static constexpr auto kVersion = [](sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                                        void* self, sd_bus_error*) { return TellNumber(reply, Of(self).version); };
    static const sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD("CreateSession", "a{sv}", "o", OnCreate, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("SelectSources", "oa{sv}", "o", OnSelect, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("Start", "osa{sv}", "o", OnStart, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_METHOD("OpenPipeWireRemote", "oa{sv}", "h", OnOpen, SD_BUS_VTABLE_UNPRIVILEGED),
        SD_BUS_PROPERTY("AvailableSourceTypes", "u", kTypes, 0, 0),
        SD_BUS_PROPERTY("AvailableCursorModes", "u", kPointers, 0, 0),
        SD_BUS_PROPERTY("version", "u", kVersion, 0, 0),
        SD_BUS_VTABLE_END};
    sd_bus_add_object_vtable(m_bus, nullptr, kObject, kScreenCast, kTable, this);
    sd_bus_add_filter(m_bus, nullptr, OnClose, this);
    if (sd_bus_request_name(m_bus, kName, 0) < 0) throw std::runtime_error("the portal's name is taken");
    m_thread = std::thread([this] { Serve(); });
}

FakePortal::~FakePortal() {
    m_stop = true;
    m_thread.join();
    sd_bus_flush_close_unref(m_bus);
}

std::string FakePortal::TokenAsked() const {
    const std::lock_guard lock(m_mutex);
    return m_token;
}

void FakePortal::Serve() {
    while (!m_stop) {
        while (sd_bus_process(m_bus, nullptr) > 0) continue;
        if (m_endSession.exchange(false)) SendEndOfSession();
        sd_bus_wait(m_bus, kLookUs);
    }
}

/// Requests and sessions are objects that the program may close.
int FakePortal::OnClose(sd_bus_message* message, void* self, sd_bus_error*) {
    if (sd_bus_message_is_method_call(message, "org.freedesktop.portal.Request", "Close") > 0) {
        Of(self).isWithdrawn = true;
        return sd_bus_reply_method_return(message, nullptr);
    }
    if (sd_bus_message_is_method_call(message, "org.freedesktop.portal.Session", "Close") > 0) {
        Of(self).isSessionClosed = true;
        return sd_bus_reply_method_return(message, nullptr);
    }
    return 0;
}

void FakePortal::ReadOptions(sd_bus_message* message) {
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        const char *key = nullptr, *text = nullptr;
        std::uint32_t number = 0;
        sd_bus_message_read(message, "s", &key);
        const std::string name = key;
        const bool isText = name.find("token") != std::string::npos;
        if (isText) {
            sd_bus_message_read(message, "v", "s", &text);
        } else if (name == "multiple") {
            sd_bus_message_skip(message, "v");
        } else {
            sd_bus_message_read(message, "v", "u", &number);
        }
        if (name == "handle_token") m_request = text;
        if (name == "session_handle_token") m_session = text;
        if (name == "types") typesAsked = number;
        if (name == "cursor_mode") pointerAsked = number;
        if (name == "persist_mode") persistAsked = number;
        if (name == "restore_token") {
            const std::lock_guard lock(m_mutex);
            m_token = text;
        }
        sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
}

/// Names the request, as the portal does: after who asked and the word that he chose for it.
int FakePortal::ReplyRequest(sd_bus_message* message) {
    std::string sender = sd_bus_message_get_sender(message) + 1;
    std::replace(sender.begin(), sender.end(), '.', '_');
    m_program = sd_bus_message_get_sender(message);
    m_request = std::string(kObject) + "/request/" + sender + "/" + m_request;
    m_session = std::string(kObject) + "/session/" + sender + "/cast";
    return sd_bus_reply_method_return(message, "o", m_request.c_str());
}

sd_bus_message* FakePortal::NewResponse(std::uint32_t code) const {
    sd_bus_message* response = nullptr;
    sd_bus_message_new_signal(m_bus, &response, m_request.c_str(), "org.freedesktop.portal.Request", "Response");
    sd_bus_message_set_destination(response, m_program.c_str());
    sd_bus_message_append(response, "u", code);
    return response;
}

int FakePortal::OnCreate(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = Of(self);
    portal.ReadOptions(message);
    portal.ReplyRequest(message);
    sd_bus_message* response = portal.NewResponse(0);
    sd_bus_message_append(response, "a{sv}", 1, "session_handle", "s", portal.m_session.c_str());
    sd_bus_send(portal.m_bus, response, nullptr);
    sd_bus_message_unref(response);
    return 1;
}

int FakePortal::OnSelect(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = Of(self);
    sd_bus_message_skip(message, "o");
    portal.ReadOptions(message);
    portal.ReplyRequest(message);
    sd_bus_message* response = portal.NewResponse(0);
    sd_bus_message_append(response, "a{sv}", 0);
    sd_bus_send(portal.m_bus, response, nullptr);
    sd_bus_message_unref(response);
    return 1;
}

int FakePortal::OnStart(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = Of(self);
    sd_bus_message_skip(message, "os");
    portal.ReadOptions(message);
    portal.ReplyRequest(message);
    ++portal.questions;
    const UserAnswer answer = portal.answer;
    if (answer == UserAnswer::kSaysNothing) return 1;
    if (answer == UserAnswer::kPortalGoes) return sd_bus_release_name(portal.m_bus, kName) >= 0 ? 1 : 0;
    const std::uint32_t code = answer == UserAnswer::kAllows ? 0 : answer == UserAnswer::kRefuses ? 1 : 2;
    sd_bus_message* response = portal.NewResponse(code);
    if (code != 0) {
        sd_bus_message_append(response, "a{sv}", 0);
    } else {
        const std::string token = "token" + std::to_string(portal.questions);
        sd_bus_message_append(response, "a{sv}", 3, "persist_mode", "u", 2u, "restore_token", "s", token.c_str(),
                              "streams", "a(ua{sv})", 1, portal.node.load(), 3, "position", "(ii)", portal.x.load(),
                              portal.y.load(), "size", "(ii)", portal.width.load(), portal.height.load(), "source_type",
                              "u", 1u);
    }
    sd_bus_send(portal.m_bus, response, nullptr);
    sd_bus_message_unref(response);
    return 1;
}

int FakePortal::OnOpen(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = Of(self);
    const int fd = portal.remote ? portal.remote() : -1;
    if (fd < 0) return sd_bus_reply_method_errorf(message, "org.freedesktop.portal.Error.Failed", "no PipeWire");
    const int result = sd_bus_reply_method_return(message, "h", fd);
    close(fd);
    return result;
}

void FakePortal::SendEndOfSession() {
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(m_bus, &signal, m_session.c_str(), "org.freedesktop.portal.Session", "Closed");
    sd_bus_message_set_destination(signal, m_program.c_str());
    sd_bus_message_append(signal, "a{sv}", 0);
    sd_bus_send(m_bus, signal, nullptr);
    sd_bus_message_unref(signal);
}

}  // namespace kestrum::media
