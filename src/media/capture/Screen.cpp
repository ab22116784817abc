#include "media/capture/Screen.h"

#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <utility>

#include "media/capture/CastPixels.h"
#include "media/capture/Comparison.h"
#include "media/capture/OwnWindows.h"
#include "media/capture/PollSet.h"
#include "media/capture/RootPixels.h"
#include "media/capture/SharedImage.h"
#include "media/capture/XcbHandle.h"

namespace kestrum::media {
namespace {

// Past this many rectangles one large read is cheaper than many small ones.
constexpr std::size_t kMostReads = 8;

CaptureError DisplayError(const std::string& sentence) {
    return {CaptureErrorKind::kNoDisplay, sentence};
}

XcbConnection Connect(const std::string& display, int& screenNumber) {
    XcbConnection connection(xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber));
    if (xcb_connection_has_error(connection.get())) {
        throw DisplayError("The display " + (display.empty() ? std::string("of this session") : display) +
                           " cannot be opened.");
    }
    return connection;
}

xcb_screen_t* FindScreen(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
    return screens.data;
}

PixelFormat RequireFormat(xcb_connection_t* connection, const xcb_screen_t& screen) {
    const auto format = PixelFormat::Of(connection, screen);
    if (format) return *format;
    throw DisplayError("The display has a colour depth of " + std::to_string(screen.root_depth) +
                       " bits; a recording needs 16, 24 or 32.");
}

void RequireArea(const Area& area, const Area& screen) {
    const std::string text = std::to_string(area.width) + "x" + std::to_string(area.height) + " at " +
                             std::to_string(area.x) + "," + std::to_string(area.y);
    if (area.IsEmpty() || area.width % 2 || area.height % 2) {
        throw CaptureError(CaptureErrorKind::kBadArea,
                           "The area to record (" + text + ") needs an even width and height above zero.");
    }
    if (Intersect(area, screen) != area) {
        throw CaptureError(CaptureErrorKind::kBadArea,
                           "The area to record (" + text + ") lies partly outside the screen of " +
                               std::to_string(screen.width) + "x" + std::to_string(screen.height) + ".");
    }
}

const xcb_query_extension_reply_t* RequireExtension(xcb_connection_t* connection, xcb_extension_t* extension,
                                                    const char* name) {
    const auto* data = xcb_get_extension_data(connection, extension);
    if (!data || !data->present) throw DisplayError(std::string("The display lacks the extension ") + name + ".");
    return data;
}

Area RootArea(xcb_connection_t* connection, xcb_window_t root) {
    const auto geometry = Own(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root), nullptr));
    return geometry ? Area{0, 0, geometry->width, geometry->height} : Area{};
}

/// The monitor that holds the middle of `area`; the whole screen where there are no monitors.
Area MonitorOf(xcb_connection_t* connection, xcb_window_t root, const Area& area) {
    const auto cookie = xcb_randr_get_monitors(connection, root, 1);
    const auto reply = Own(xcb_randr_get_monitors_reply(connection, cookie, nullptr));
    if (!reply || reply->nMonitors == 0) return RootArea(connection, root);
    const Area middle{area.x + area.width / 2, area.y + area.height / 2, 1, 1};
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem; xcb_randr_monitor_info_next(&it)) {
        const Area monitor{it.data->x, it.data->y, it.data->width, it.data->height};
        if (!Intersect(middle, monitor).IsEmpty()) return monitor;
    }
    return {};
}

}  // namespace

class Screen::Impl {
  public:
    Impl(const std::string& display, const Area& wanted, std::shared_ptr<ScreenCast> cast)
        : area(wanted), connection(Connect(display, screenNumber)), screen(FindScreen(connection.get(), screenNumber)) {
        const PixelFormat format = RequireFormat(connection.get(), *screen);
        RequireArea(area, RootArea(connection.get(), screen->root));
        image = std::make_unique<SharedImage>(connection.get(), screen->root_depth, format, area);
        WatchDrawing();
        WatchMonitors();
        const Stacking stacking = cast ? Stacking::kDesktop : Stacking::kDisplay;
        OpenPixels(std::move(cast));
        own = std::make_unique<OwnWindows>(connection.get(), screen->root, screenNumber, stacking, area, *image);
        WatchPointer();
        JoinDescriptors();
        xcb_flush(connection.get());
    }

    void Pump() {
        pixels->Pump();
        while (const auto event = Own(xcb_poll_for_event(connection.get()))) Handle(*event);
    }

    bool IsLost() const { return xcb_connection_has_error(connection.get()) != 0 || pixels->IsLost(); }

    void Fetch(BgraPicture& picture, ChangeMap& changes, bool everywhere) {
        Pump();
        if (everywhere) {
            CompareMonitor();
            due = {{0, 0, area.width, area.height}};
        }
        if (pixels->HasNews()) AddDrawnAreas();
        if (Take(picture, changes, everywhere)) return;
        // Windows moved while their places were read: now they have to stand still.
        xcb_grab_server(connection.get());
        isGrabbed = true;
        Pump();
        Take(picture, changes, everywhere);
        isGrabbed = false;
        xcb_ungrab_server(connection.get());
        xcb_flush(connection.get());
    }

    void CompareMonitor() {
        if (randrEvent) newResolution |= MonitorOf(connection.get(), screen->root, area) != monitor;
    }

    Area area;
    int screenNumber = 0;
    XcbConnection connection;
    xcb_screen_t* screen;
    std::unique_ptr<SharedImage> image;
    std::unique_ptr<ScreenPixels> pixels;
    PollSet descriptors;
    std::uint8_t damageEvent = 0;
    std::uint8_t fixesEvent = 0;
    std::uint8_t randrEvent = 0;
    std::uint8_t inputOpcode = 0;
    bool pointerMoved = true;
    bool newResolution = false;
    bool isGrabbed = false;
    Area monitor;
    Areas due;  ///< to be read from the screen, places in the rectangle
    std::unique_ptr<OwnWindows> own;

  private:
    void AddDrawnAreas() {
        const Areas drawn = pixels->TakeDrawn();
        due.insert(due.end(), drawn.begin(), drawn.end());
        MergeIfMany(due);
        // A window that is in the pixels is known from here on, however they came.
        Pump();
    }

    /// Reads all that is due, own windows left out. False if a window moved meanwhile: the rest is still due then.
    bool Take(BgraPicture& picture, ChangeMap& changes, bool everywhere) {
        // Where windows moved below an own one, what is beside it is taken at the same moment.
        const bool moved = own->IsStale();
        const Areas bared = own->Update(everywhere);
        due.insert(due.end(), bared.begin(), bared.end());
        if (moved && !own->Hidden().empty()) due = {{0, 0, area.width, area.height}};
        const bool isScreenDrawn = !due.empty();
        for (; !due.empty(); due.pop_back()) {
            if (!Read(due.back(), picture, changes)) return false;
        }
        for (const Area& part : own->TakeChanged(isScreenDrawn, everywhere)) {
            const auto composed = own->Compose(part, picture);
            if (WindowsMoved()) return false;
            TakeOver(picture, changes, part, {composed.data(), part});
        }
        return true;
    }

    bool Read(const Area& part, BgraPicture& picture, ChangeMap& changes) {
        const Areas pieces = Subtract({part}, own->Hidden());
        const auto* fresh = pieces.empty() ? nullptr : pixels->Read(part);
        if (WindowsMoved()) return false;
        if (!fresh) return true;
        for (const Area& piece : pieces) TakeOver(picture, changes, piece, {fresh, part});
        return true;
    }

    /// The server tells of a window that moved before it gives a picture with it. While it stands still for us all that
    /// moved before is known.
    bool WindowsMoved() {
        if (isGrabbed) return false;
        while (const auto event = Own(xcb_poll_for_queued_event(connection.get()))) Handle(*event);
        return own->IsStale();
    }

    void WatchDrawing() {
        auto* c = connection.get();
        fixesEvent = RequireExtension(c, &xcb_xfixes_id, "XFIXES")->first_event;
        damageEvent = RequireExtension(c, &xcb_damage_id, "DAMAGE")->first_event;
        Own(xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 5, 0), nullptr));
        Own(xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr));
    }

    void OpenPixels(std::shared_ptr<ScreenCast> cast) {
        if (cast) {
            pixels = std::make_unique<CastPixels>(std::move(cast), area, monitor);
        } else {
            pixels = std::make_unique<RootPixels>(connection.get(), *screen, area, *image, damageEvent);
        }
    }

    void JoinDescriptors() {
        descriptors.Add(xcb_get_file_descriptor(connection.get()));
        if (pixels->FileDescriptor() >= 0) descriptors.Add(pixels->FileDescriptor());
    }

    /// Motion is told by the input extension, so that a pointer at rest costs nothing; without it the regular look at
    /// the whole screen finds the pointer.
    void WatchPointer() {
        auto* c = connection.get();
        xcb_xfixes_select_cursor_input(c, screen->root, XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
        const auto* input = xcb_get_extension_data(c, &xcb_input_id);
        if (!input || !input->present) return;
        Own(xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr));
        inputOpcode = input->major_opcode;
        struct {
            xcb_input_event_mask_t head;
            std::uint32_t mask;
        } const order{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_MOTION};
        xcb_input_xi_select_events(c, screen->root, 1, &order.head);
    }

    void WatchMonitors() {
        monitor = RootArea(connection.get(), screen->root);
        const auto* randr = xcb_get_extension_data(connection.get(), &xcb_randr_id);
        if (!randr || !randr->present) return;
        randrEvent = randr->first_event;
        auto* c = connection.get();
        Own(xcb_randr_query_version_reply(c, xcb_randr_query_version(c, 1, 5), nullptr));
        xcb_randr_select_input(c, screen->root,
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE);
        monitor = MonitorOf(c, screen->root, area);
    }

    void Handle(const xcb_generic_event_t& event) {
        const std::uint8_t type = event.response_type & 0x7F;
        own->Handle(event);
        pixels->Handle(event);
        if (type == fixesEvent + XCB_XFIXES_CURSOR_NOTIFY) pointerMoved = true;
        if (type == XCB_GE_GENERIC) {
            pointerMoved |= reinterpret_cast<const xcb_ge_generic_event_t&>(event).extension == inputOpcode;
        }
        const bool randr = randrEvent && (type == randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                                          type == randrEvent + XCB_RANDR_NOTIFY);
        if (randr) CompareMonitor();
    }

    static void MergeIfMany(Areas& areas) {
        if (areas.size() <= kMostReads) return;
        Area all;
        for (const auto& one : areas) all = Unite(all, one);
        areas = {all};
    }
};

Screen::Screen(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast)
    : m_impl(std::make_unique<Impl>(display, area, std::move(cast))) {}
Screen::~Screen() = default;

int Screen::FileDescriptor() const {
    return m_impl->descriptors.FileDescriptor();
}
void Screen::Pump() {
    m_impl->Pump();
}
bool Screen::HasNews() const {
    const bool pointer = m_impl->pointerMoved && !m_impl->pixels->ShowsPointer();
    return m_impl->pixels->HasNews() || pointer || m_impl->own->HasNews();
}
bool Screen::IsLost() const {
    return m_impl->IsLost();
}
bool Screen::HasNewResolution() const {
    return m_impl->newResolution || m_impl->pixels->HasNewSize();
}

void Screen::Fetch(BgraPicture& picture, ChangeMap& changes, bool everywhere) {
    if (!m_impl->IsLost()) m_impl->Fetch(picture, changes, everywhere);
}

PointerImage Screen::FetchPointer() {
    m_impl->pointerMoved = false;
    if (m_impl->pixels->ShowsPointer()) return {};
    auto* c = m_impl->connection.get();
    const auto cookie = xcb_xfixes_get_cursor_image(c);
    const auto reply = Own(xcb_xfixes_get_cursor_image_reply(c, cookie, nullptr));
    if (!reply) return {};
    const Area& area = m_impl->area;
    const Area place{reply->x - reply->xhot - area.x, reply->y - reply->yhot - area.y, reply->width, reply->height};
    if (Intersect(place, {0, 0, area.width, area.height}).IsEmpty()) return {};
    const auto* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    return {place, {pixels, pixels + static_cast<std::size_t>(reply->width) * reply->height}};
}

Uniformity ProbePicture(const std::string& display, const Area& area, std::shared_ptr<ScreenCast> cast) {
    Screen screen(display, area, std::move(cast));
    BgraPicture picture(area.width, area.height);
    ChangeMap changes(area.width, area.height);
    screen.Fetch(picture, changes, true);
    constexpr std::uint32_t kColour = 0x00FFFFFF;
    const std::uint32_t first = picture.pixels.front() & kColour;
    for (const auto pixel : picture.pixels) {
        if ((pixel & kColour) != first) return {false, first};
    }
    return {true, first};
}

}  // namespace kestrum::media
