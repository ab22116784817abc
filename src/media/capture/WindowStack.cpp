#include "media/capture/WindowStack.h"

#include <algorithm>
#include <string>

#include "media/capture/XcbHandle.h"

namespace kestrum::media {
namespace {

// A frame, a decoration in it, the program's window.
constexpr int kDeepestMark = 2;

xcb_atom_t Atom(xcb_connection_t* connection, const std::string& name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const auto reply = Own(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<xcb_window_t> ChildrenOf(xcb_connection_t* connection, xcb_window_t window) {
    const auto reply = Own(xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!reply) return {};
    const auto* first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

}  // namespace

WindowStack::WindowStack(xcb_connection_t* connection, xcb_window_t root, int screenNumber, Stacking stacking)
    : m_connection(connection),
      m_root(root),
      m_stacking(stacking),
      m_ownAtom(Atom(connection, "_KESTRUM_OWN_WINDOW")),
      m_opacityAtom(Atom(connection, "_NET_WM_WINDOW_OPACITY")),
      m_compositorAtom(Atom(connection, "_NET_WM_CM_S" + std::to_string(screenNumber))) {
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &events);
}

bool WindowStack::HasOwn() const {
    return std::any_of(m_windows.begin(), m_windows.end(), [](const TopLevel& window) { return window.isOwn; });
}

bool WindowStack::IsMark(const xcb_generic_event_t& event) const {
    const xcb_atom_t atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
    return atom == m_ownAtom || (atom == m_opacityAtom && HasOwn());
}

void WindowStack::Handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_MAP_NOTIFY:
            // A window that was hidden may have been marked, or framed, since it was last seen.
            m_marks.erase(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
            m_stale = true;
            break;
        case XCB_PROPERTY_NOTIFY:
            if (!IsMark(event)) break;
            m_marks.clear();
            m_stale = true;
            break;
        case XCB_CONFIGURE_NOTIFY:
            m_stale |= HasOwn();
            if (m_stale) NoteMove(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            break;
        case XCB_DESTROY_NOTIFY:
        case XCB_UNMAP_NOTIFY:
        case XCB_REPARENT_NOTIFY:
        case XCB_CIRCULATE_NOTIFY:
            m_stale |= HasOwn();
            break;
        default:
            break;
    }
}

void WindowStack::NoteMove(const xcb_configure_notify_event_t& event) {
    const int border = 2 * event.border_width;
    m_moves.push_back({event.window, {event.x, event.y, event.width + border, event.height + border}});
}

void WindowStack::Read() {
    m_stale = false;
    m_windows.clear();
    const auto owner = Own(
        xcb_get_selection_owner_reply(m_connection, xcb_get_selection_owner(m_connection, m_compositorAtom), nullptr));
    m_hasCompositor = owner && owner->owner != XCB_NONE;
    const auto children = ChildrenOf(m_connection, m_root);
    // All is asked before the first answer is waited for.
    std::vector<xcb_get_window_attributes_cookie_t> attributes;
    std::vector<xcb_get_geometry_cookie_t> geometries;
    for (const auto window : children) {
        attributes.push_back(xcb_get_window_attributes(m_connection, window));
        geometries.push_back(xcb_get_geometry(m_connection, window));
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        const auto looks = Own(xcb_get_window_attributes_reply(m_connection, attributes[i], nullptr));
        const auto shape = Own(xcb_get_geometry_reply(m_connection, geometries[i], nullptr));
        if (!looks || !shape || looks->map_state != XCB_MAP_STATE_VIEWABLE) continue;
        if (looks->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) continue;
        const int border = shape->border_width;
        const Area place{shape->x, shape->y, shape->width + 2 * border, shape->height + 2 * border};
        const bool isManaged = looks->override_redirect == 0;
        m_windows.push_back({children[i], place, border, shape->depth, isManaged, false, 255});
    }
    if (m_stacking == Stacking::kDesktop) {
        std::stable_partition(m_windows.begin(), m_windows.end(), [](const TopLevel& one) { return one.isManaged; });
    }
    for (TopLevel& window : m_windows) {
        const auto known = m_marks.find(window.window);
        const Mark mark = known != m_marks.end() ? known->second : MarkOf(window.window, 0);
        m_marks[window.window] = mark;
        window.isOwn = mark.isOwn;
        window.opacity = mark.opacity;
    }
    // A window that moved may have gone since; its mark is still known.
    for (const auto& [window, place] : std::exchange(m_moves, {})) {
        const auto mark = m_marks.find(window);
        if (mark != m_marks.end() && mark->second.isOwn) m_passed.push_back(place);
    }
    std::erase_if(m_marks, [&children](const auto& mark) {
        return std::find(children.begin(), children.end(), mark.first) == children.end();
    });
}

WindowStack::Mark WindowStack::MarkOf(xcb_window_t window, int depth) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &events);
    Mark mark{Property(window, m_ownAtom, 0) == 1,
              static_cast<std::uint8_t>(Property(window, m_opacityAtom, 0xFFFFFFFF) >> 24)};
    if (depth == kDeepestMark) return mark;
    for (const auto child : ChildrenOf(m_connection, window)) {
        const Mark inner = MarkOf(child, depth + 1);
        mark.isOwn |= inner.isOwn;
        mark.opacity = std::min(mark.opacity, inner.opacity);
    }
    return mark;
}

std::uint32_t WindowStack::Property(xcb_window_t window, xcb_atom_t name, std::uint32_t fallback) {
    const auto cookie = xcb_get_property(m_connection, 0, window, name, XCB_ATOM_CARDINAL, 0, 1);
    const auto reply = Own(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) return fallback;
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

}  // namespace kestrum::media
