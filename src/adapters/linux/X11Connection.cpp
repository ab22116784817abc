#include "adapters/linux/X11Connection.h"

#include <cstring>

namespace kestrum::platform {
namespace {

constexpr std::uint32_t kLongestProperty = 1 << 16;  // in units of 4 bytes

}  // namespace

X11Connection::X11Connection() : m_connection(xcb_connect(nullptr, nullptr)) {
    if (IsOpen()) m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

X11Connection::~X11Connection() {
    xcb_disconnect(m_connection);
}

bool X11Connection::IsOpen() const {
    return xcb_connection_has_error(m_connection) == 0;
}

xcb_atom_t X11Connection::Atom(const std::string& name) {
    const auto known = m_atoms.find(name);
    if (known != m_atoms.end()) return known->second;
    const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    if (!reply) return XCB_ATOM_NONE;
    return m_atoms[name] = reply->atom;
}

std::string X11Connection::AtomName(xcb_atom_t atom) const {
    const XReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

std::string X11Connection::Property(xcb_window_t window, const std::string& name) {
    const auto cookie =
        xcb_get_property(m_connection, 0, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kLongestProperty);
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<std::uint32_t> X11Connection::Numbers(xcb_window_t window, const std::string& name) {
    const std::string bytes = Property(window, name);
    std::vector<std::uint32_t> numbers(bytes.size() / sizeof(std::uint32_t));
    std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

host::Point X11Connection::Pointer() const {
    const XReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, Root()), nullptr));
    return reply ? host::Point{reply->root_x, reply->root_y} : host::Point{};
}

void X11Connection::Flush() const {
    xcb_flush(m_connection);
    while (const XReply<xcb_generic_event_t> refused{xcb_poll_for_event(m_connection)}) continue;
}

}  // namespace kestrum::platform
