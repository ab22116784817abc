// The slide-show host as ports: the part of PowerPoint's published object model that the rules use, under its own
// names. Two adapters answer: LibreOffice Impress through UNO, PowerPoint through COM.
//
// Every call may throw host::Error (the office refused, the object is gone, the office is dead). No call hangs: an
// adapter gives up after two seconds and answers every later call with host::Error at once. Objects are cheap views;
// hold none across a re-entry point. List numbers are one-based. Sizes are points, colours are 0x00BBGGRR.
#pragma once

#include <cstdint>
#include <memory>

#include "host/String.h"

namespace kestrum::host {

class IShape {
  public:
    virtual ~IShape() = default;
    virtual bool HasTextFrame() = 0;
    /// True if the text frame holds at least one character. Raises without a text frame.
    virtual bool HasText() = 0;
    /// The text; paragraphs are separated by CR, a line break inside a paragraph is a blank.
    virtual String Text() = 0;
    /// Top edge of the text itself, in points from the slide's top.
    virtual float TextTop() = 0;
    /// Size in points of the text as it is set (the first run's), not the shape's default.
    virtual float TextFontSize() = 0;
};

class IShapes {
  public:
    virtual ~IShapes() = default;
    /// True if the slide has a title placeholder, an empty one included.
    virtual bool HasTitle() = 0;
    /// The title placeholder; raises if there is none.
    virtual std::unique_ptr<IShape> Title() = 0;
    virtual std::int32_t Count() = 0;
    /// Shape `index`, 1 to Count, in drawing order; raises outside.
    virtual std::unique_ptr<IShape> Item(std::int32_t index) = 0;
};

class ISlide {
  public:
    virtual ~ISlide() = default;
    /// Number of the slide in the document, hidden slides counted.
    virtual std::int32_t SlideIndex() = 0;
    virtual std::unique_ptr<IShapes> Shapes() = 0;
    /// Height of the slide's master in points.
    virtual float MasterHeight() = 0;
};

/// The four values of `PointerType` that the rules use.
enum class PointerType : std::int32_t { None = 0, Arrow = 1, Pen = 2, AlwaysHidden = 3 };

class ISlideShowView {
  public:
    virtual ~ISlideShowView() = default;
    /// State of the running show; raises when the show has ended. The value itself carries no meaning for the rules.
    virtual std::int32_t State() = 0;
    /// The slide on screen. Inside an event it is the slide that the event tells of.
    virtual std::unique_ptr<ISlide> Slide() = 0;
    /// Document number of the slide on screen; inside an event that event's.
    virtual std::int32_t CurrentShowPosition() = 0;
    virtual host::PointerType PointerType() = 0;
    virtual void SetPointerType(host::PointerType type) = 0;
    /// Pen colour, 0x00BBGGRR.
    virtual std::int32_t PointerColor() = 0;
    virtual void SetPointerColor(std::int32_t bgr) = 0;
    /// Goes to the slide with document number `index`. Returns after its events were dispatched (re-enters).
    virtual void GotoSlide(std::int32_t index, bool resetSlide) = 0;
    /// The next step of the show as the Right key does it: a build, the next visible slide, or the end. Re-enters.
    virtual void Next() = 0;
    /// True while builds of the slide on screen wait for a click. May wait for the last build to appear (re-enters).
    virtual bool ClicksLeft() = 0;
    /// Goes to the next slide of the show (hidden slides and waiting builds are passed over); false if the slide on
    /// screen is the last one. Re-enters.
    virtual bool NextSlide() = 0;
    /// Ends the show. Returns after the end event was dispatched (re-enters).
    virtual void Exit() = 0;
};

class IPresentation;

class ISlideShowWindow {
  public:
    virtual ~ISlideShowWindow() = default;
    virtual std::unique_ptr<ISlideShowView> View() = 0;
    virtual std::unique_ptr<IPresentation> Presentation() = 0;
    /// Gives the keyboard to the show. Raises only for a presentation marked as final.
    virtual void Activate() = 0;
    /// Position in points, by the pixels per inch of the monitors port.
    virtual float Left() = 0;
    virtual float Top() = 0;
};

class ISlideShowSettings {
  public:
    virtual ~ISlideShowSettings() = default;
    /// 1 is a show presented by a speaker (full screen).
    virtual void SetShowType(std::int32_t type) = 0;
    /// The monitor that shows appear on, by its number from 1 in IMonitors::Handles' order; 0: the host chooses. It is
    /// the user's setting in the host and holds for every presentation.
    virtual std::int32_t ShowMonitor() = 0;
    virtual void SetShowMonitor(std::int32_t number) = 0;
    /// Starts the show and returns its window after the begin event and the first slide's event were dispatched
    /// (re-enters). On a presentation whose show is running it returns that show's window.
    virtual std::unique_ptr<ISlideShowWindow> Run() = 0;
};

class IPresentation {
  public:
    virtual ~IPresentation() = default;
    /// Full path; for one that was never saved its title alone. Answered from a cache after the office died in a show.
    virtual String FullName() = 0;
    /// Non-zero if nothing has changed since the last save.
    virtual std::int16_t Saved() = 0;
    virtual void SetSaved(std::int16_t saved) = 0;
    virtual float SlideWidth() = 0;   ///< PageSetup, points, snapped to 1/8
    virtual float SlideHeight() = 0;  ///< PageSetup, points, snapped to 1/8
    virtual std::int32_t SlideCount() = 0;
    virtual std::unique_ptr<ISlide> Slide(std::int32_t index) = 0;
    virtual std::unique_ptr<ISlideShowSettings> SlideShowSettings() = 0;
    /// A built-in document property by its lower-case English name ("title", "author", "manager", "company",
    /// "category", "comments", "keywords"); raises for one that the document does not have. Cached like FullName.
    virtual String BuiltInDocumentProperty(const String& name) = 0;
};

/// The selected slides of the active window.
class ISlideRange {
  public:
    virtual ~ISlideRange() = default;
    virtual std::int32_t Count() = 0;
    /// Document number of the first selected slide; raises if none is selected.
    virtual std::int32_t SlideIndex() = 0;
};

/// What the host tells. Each call comes on the core's thread, inside the event loop or inside a call to the host.
/// A sink must not throw.
class IApplicationEvents {
  public:
    virtual ~IApplicationEvents() = default;
    virtual void SlideShowBegin(ISlideShowWindow& window) = 0;
    /// A slide has come on screen, the first one included.
    virtual void SlideShowNextSlide(ISlideShowWindow& window) = 0;
    /// A show has ended, for whatever reason. `SlideShowWindowCount` still counts it.
    virtual void SlideShowEnd(IPresentation& presentation) = 0;
    /// A presentation is being closed, or its office has died.
    virtual void PresentationClose(IPresentation& presentation) = 0;
};

/// Keeps a subscription alive; destroying it ends the subscription.
class ISubscription {
  public:
    virtual ~ISubscription() = default;
};

class IApplication {
  public:
    virtual ~IApplication() = default;
    /// Version text such as "16.0".
    virtual String Version() = 0;
    virtual std::int32_t PresentationCount() = 0;
    /// Raises if no presentation is open.
    virtual std::unique_ptr<IPresentation> ActivePresentation() = 0;
    /// Selection of the active window; raises if there is none.
    virtual std::unique_ptr<ISlideRange> SelectedSlides() = 0;
    /// Brings the active document window to the front; raises for a presentation marked as final.
    virtual void ActivateWindow() = 0;
    virtual std::int32_t SlideShowWindowCount() = 0;
    virtual std::unique_ptr<ISlideShowWindow> SlideShowWindow(std::int32_t index) = 0;
    /// Shows or hides the host's command bar `name`; raises if there is none.
    virtual void SetCommandBarVisible(const String& name, bool visible) = 0;
    /// Events reach `events` until the handle is destroyed; `events` must outlive it.
    [[nodiscard]] virtual std::unique_ptr<ISubscription> Subscribe(IApplicationEvents& events) = 0;
};

}  // namespace kestrum::host
