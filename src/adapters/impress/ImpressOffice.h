// One LibreOffice Impress at our service: the door of this folder. Start one of our own (on any X display, with a
// profile of its own) or join a running one, open decks in it, and hand `Application` to the core.
//
// All members are for the core's thread. Destroying the object ends an office that was started here and removes its
// profile; one that was joined goes on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "adapters/impress/OfficeMenu.h"
#include "host/IApplication.h"
#include "host/IEventLoop.h"
#include "host/IMonitors.h"

namespace kestrum::impress {

/// What becomes of presentations with unsaved changes at the end.
enum class UnsavedChanges {
    Discard,  ///< the office ends, nobody is asked
    Keep,     ///< the office stays open with them, for its user to decide
};

struct OfficeOptions {
    std::string display;        ///< X display such as ":3"; empty: DISPLAY
    std::string vclPlugin;      ///< the office's toolkit, "gen" on a virtual display; empty: the desktop's
    std::string programFolder;  ///< empty: where the office was installed when this was built
    UnsavedChanges unsaved = UnsavedChanges::Discard;
};

class ImpressOffice {
  public:
    /// Starts an office and waits until it answers, a minute and a half at most. Raises host::Error with a sentence.
    static std::unique_ptr<ImpressOffice> Start(const OfficeOptions& options, host::IEventLoop& loop,
                                                host::IMonitors& monitors);
    /// Joins the office that listens on the named pipe `pipe`. Raises host::Error with a sentence if there is none, or
    /// if another recorder drives it.
    static std::unique_ptr<ImpressOffice> Join(const String& pipe, host::IEventLoop& loop, host::IMonitors& monitors);
    ~ImpressOffice();
    ImpressOffice(const ImpressOffice&) = delete;
    ImpressOffice& operator=(const ImpressOffice&) = delete;

    host::IApplication& Application();

    /// Opens the presentation `path` (a full path) in a window of its own, or comes back at once if it is open. Raises
    /// host::Error with a sentence for a missing file, a locked one, and one that is no presentation.
    void Open(const String& path);

    /// Selects slide `number` of the active presentation. Raises host::Error with a sentence if it has no such slide.
    void SelectSlide(std::int32_t number);

    /// Writes slide `number` of the active presentation as a PNG picture of `width` by `height` pixels.
    void ExportSlidePng(std::int32_t number, const String& path, std::int32_t width, std::int32_t height);

    /// The commands in the office's own menu, which are ours from start or joining on; null without the extension.
    OfficeMenu* Menu();

    /// False if the window of the active presentation is none that the X display knows, as that of an office that runs
    /// as a Wayland program: then its shows cannot be found on the screen.
    bool HasXWindows();

    /// Process of the office, 0 if unknown.
    std::int64_t ProcessId() const;
    /// False once the office has died or was given up.
    bool IsAlive() const;

  private:
    struct Parts;
    explicit ImpressOffice(std::unique_ptr<Parts> parts);
    bool HoldsChanges();
    bool AskToEnd();
    void EndProcess();

    std::unique_ptr<Parts> m_parts;
};

}  // namespace kestrum::impress
