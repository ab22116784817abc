#include "adapters/linux/X11Windows.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kestrum::platform {
namespace {

constexpr const char* kMailProperty = "_KESTRUM_MAIL";
constexpr std::size_t kLargestMail = 64 * 1024;

/// A message as bytes of one computer: sizes and order are the machine's own.
struct MailHead {
    std::uint32_t size = 0;  ///< of the data that follows
    std::int32_t message = 0;
    std::int64_t first = 0, second = 0;
};

std::string Pack(const host::WindowMessage& message) {
    const MailHead head{static_cast<std::uint32_t>(message.data.size()), message.message, message.first,
                        message.second};
    std::string bytes(sizeof head, '\0');
    std::memcpy(bytes.data(), &head, sizeof head);
    return bytes + message.data;
}

/// Takes whole records off the front of `bytes`; what is no record is dropped.
std::vector<host::WindowMessage> Unpack(std::string_view bytes) {
    std::vector<host::WindowMessage> messages;
    MailHead head;
    while (bytes.size() >= sizeof head) {
        std::memcpy(&head, bytes.data(), sizeof head);
        bytes.remove_prefix(sizeof head);
        if (head.size > bytes.size()) break;
        messages.push_back({head.message, head.first, head.second, std::string(bytes.substr(0, head.size))});
        bytes.remove_prefix(head.size);
    }
    return messages;
}

xcb_window_t XWindow(host::WindowHandle window) {
    return static_cast<xcb_window_t>(window);
}

}  // namespace

struct X11Windows::Registry {
    std::map<host::WindowHandle, std::shared_ptr<Procedure>> procedures;
    host::WindowHandle last = 0;  ///< handles where there is no display
};

class X11Windows::MessageWindow : public host::IMessageWindow {
  public:
    MessageWindow(X11Windows& windows, host::WindowHandle handle)
        : m_windows(windows), m_registry(windows.m_registry), m_handle(handle) {}
    MessageWindow(const MessageWindow&) = delete;
    MessageWindow& operator=(const MessageWindow&) = delete;
    ~MessageWindow() override {
        const auto registry = m_registry.lock();
        if (!registry) return;
        registry->procedures.erase(m_handle);
        std::erase_if(m_windows.m_properties, [this](const auto& entry) { return entry.first.first == m_handle; });
        m_windows.Destroy(XWindow(m_handle));
    }
    host::WindowHandle Handle() override { return m_handle; }

  private:
    X11Windows& m_windows;
    std::weak_ptr<Registry> m_registry;  ///< gone: so are the windows
    host::WindowHandle m_handle;
};

X11Windows::X11Windows(LoopBase& loop, X11Connection& display)
    : m_loop(loop), m_display(display), m_registry(std::make_shared<Registry>()) {
    if (!m_mail.IsOpen()) return;
    m_watch = m_loop.WatchDescriptor(xcb_get_file_descriptor(m_mail.Get()), [this] { Drain(); });
}

X11Windows::~X11Windows() = default;

host::WindowHandle X11Windows::MakeHandle(const std::string& name) {
    if (!m_mail.IsOpen()) return ++m_registry->last;
    const xcb_window_t window = xcb_generate_id(m_mail.Get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_mail.Get(), XCB_COPY_FROM_PARENT, window, m_mail.Root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    const std::string classes = name + '\0' + name + '\0';
    const auto set = [&](xcb_atom_t property, xcb_atom_t type, const std::string& text) {
        xcb_change_property(m_mail.Get(), XCB_PROP_MODE_REPLACE, window, property, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    };
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, classes);
    set(m_mail.Atom("_NET_WM_NAME"), m_mail.Atom("UTF8_STRING"), name);
    xcb_flush(m_mail.Get());
    return window;
}

std::unique_ptr<host::IMessageWindow> X11Windows::CreateMessageWindow(const String& name, Procedure procedure) {
    const host::WindowHandle handle = MakeHandle(host::ToUtf8(name));
    m_registry->procedures[handle] = std::make_shared<Procedure>(std::move(procedure));
    return std::make_unique<MessageWindow>(*this, handle);
}

/// Waits until the server has done it, so that nobody finds the window afterwards. Mail that the reply pushed into our
/// queue is looked for in the next pump.
void X11Windows::Destroy(xcb_window_t window) {
    if (!m_mail.IsOpen()) return;
    const XReply<xcb_generic_error_t> ignored(
        xcb_request_check(m_mail.Get(), xcb_destroy_window_checked(m_mail.Get(), window)));
    m_loop.Post([this, registry = std::weak_ptr(m_registry)] {
        if (!registry.expired()) Drain();
    });
}

bool X11Windows::IsWindow(host::WindowHandle window) {
    if (m_registry->procedures.count(window) > 0) return true;
    if (window == 0 || !m_display.IsOpen()) return false;
    const XReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        m_display.Get(), xcb_get_window_attributes(m_display.Get(), XWindow(window)), nullptr));
    return reply != nullptr;
}

/// The windows that the window manager lists come first, in its order; then all others, hidden ones too.
std::vector<xcb_window_t> X11Windows::TopLevelWindows() {
    std::vector<xcb_window_t> windows;
    if (!m_display.IsOpen()) return windows;
    for (const std::uint32_t managed : m_display.Numbers(m_display.Root(), "_NET_CLIENT_LIST")) {
        windows.push_back(managed);
    }
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_display.Get(), xcb_query_tree(m_display.Get(), m_display.Root()), nullptr));
    if (!tree) return windows;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    windows.insert(windows.end(), children, children + xcb_query_tree_children_length(tree.get()));
    return windows;
}

std::string X11Windows::Title(xcb_window_t window) {
    const std::string modern = m_display.Property(window, "_NET_WM_NAME");
    return modern.empty() ? m_display.Property(window, "WM_NAME") : modern;
}

/// WM_CLASS holds two words, each ended by a NUL: the program's name and its class.
bool X11Windows::HasClass(xcb_window_t window, const std::string& name) {
    const std::string words = m_display.Property(window, "WM_CLASS");
    const std::size_t middle = words.find('\0');
    if (middle == std::string::npos) return words == name;
    return words.substr(0, middle) == name || words.compare(middle + 1, std::string::npos, name + '\0') == 0;
}

std::optional<host::WindowHandle> X11Windows::FindWindow(const String& className, const String& title) {
    const std::string wantedClass = host::ToUtf8(className), wantedTitle = host::ToUtf8(title);
    for (const xcb_window_t window : TopLevelWindows()) {
        if (!wantedClass.empty() && !HasClass(window, wantedClass)) continue;
        if (!wantedTitle.empty() && Title(window) != wantedTitle) continue;
        return window;
    }
    return std::nullopt;
}

String X11Windows::WindowText(host::WindowHandle window, std::int32_t limit) {
    if (!m_display.IsOpen() || limit <= 0) return {};
    const String title = host::FromUtf8(Title(XWindow(window)));
    return title.substr(0, static_cast<std::size_t>(limit));
}

std::int64_t X11Windows::SendMessage(host::WindowHandle window, const host::WindowMessage& message) {
    const auto found = m_registry->procedures.find(window);
    if (found != m_registry->procedures.end()) {
        const auto procedure = found->second;
        return (*procedure)(message);
    }
    if (IsWindow(window)) SendMail(XWindow(window), message);
    return 0;
}

void X11Windows::SendMail(xcb_window_t window, const host::WindowMessage& message) {
    const std::string bytes = Pack(message);
    if (bytes.size() > kLargestMail) return;
    const xcb_atom_t property = m_display.Atom(kMailProperty);
    xcb_change_property(m_display.Get(), XCB_PROP_MODE_APPEND, window, property, property, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
    m_display.Flush();
}

void X11Windows::Drain() {
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_mail.Get())}) {
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
        const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if (changed.state == XCB_PROPERTY_NEW_VALUE) ReceiveMail(changed.window);
    }
    if (!m_mail.IsOpen()) m_watch.reset();
}

/// Reads and clears the property in one step, so that no record is lost between the two. The question goes over the
/// connection without events.
void X11Windows::ReceiveMail(xcb_window_t window) {
    const xcb_atom_t property = m_display.Atom(kMailProperty);
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_display.Get(), xcb_get_property(m_display.Get(), 1, window, property, property, 0, 1 << 20), nullptr));
    if (!reply) return;
    const std::string bytes(static_cast<const char*>(xcb_get_property_value(reply.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    for (const host::WindowMessage& message : Unpack(bytes)) {
        if (m_registry->procedures.count(window) > 0) SendMessage(window, message);
    }
}

void X11Windows::Post(host::WindowHandle window, const host::WindowMessage& message) {
    m_loop.Post([this, registry = std::weak_ptr(m_registry), window, message] {
        if (!registry.expired()) SendMessage(window, message);
    });
}

void X11Windows::InvalidateAndUpdate(host::WindowHandle window) {
    if (!m_display.IsOpen()) return;
    xcb_clear_area(m_display.Get(), 1, XWindow(window), 0, 0, 0, 0);
    m_display.Flush();
}

void X11Windows::BringToFront(host::WindowHandle window) {
    if (!m_display.IsOpen()) return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_display.Get(), XWindow(window), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_client_message_event_t ask{};
    ask.response_type = XCB_CLIENT_MESSAGE;
    ask.format = 32;
    ask.window = XWindow(window);
    ask.type = m_display.Atom("_NET_ACTIVE_WINDOW");
    ask.data.data32[0] = 2;  // asked for by a tool of the desktop, not by an application about itself
    xcb_send_event(m_display.Get(), 0, m_display.Root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&ask));
    m_display.Flush();
}

std::uint64_t X11Windows::Property(host::WindowHandle window, const String& name) {
    const auto found = m_properties.find({window, name});
    return found == m_properties.end() ? 0 : found->second;
}

bool X11Windows::SetProperty(host::WindowHandle window, const String& name, std::uint64_t value) {
    if (!IsWindow(window)) return false;
    m_properties[{window, name}] = value;
    return true;
}

void X11Windows::RemoveProperty(host::WindowHandle window, const String& name) {
    m_properties.erase({window, name});
}

std::optional<host::WindowHandle> X11Windows::WindowOfProcess(std::int64_t processId) {
    for (const xcb_window_t window : TopLevelWindows()) {
        const auto owner = m_display.Numbers(window, "_NET_WM_PID");
        if (owner.empty() || owner.front() != static_cast<std::uint32_t>(processId)) continue;
        const XReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            m_display.Get(), xcb_get_window_attributes(m_display.Get(), window), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE) return window;
    }
    return std::nullopt;
}

}  // namespace kestrum::platform
