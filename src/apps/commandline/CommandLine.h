// What the user asked for on the command line, checked and with defaults; nothing is looked up here.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace kestrum::app {

/// `kestrum record DECK [--from N] [--advance SECONDS]`
struct RecordRequest {
    std::string deck;
    std::int32_t from = 1;                  ///< slide number of the document, 1 or more
    std::optional<std::int32_t> advanceMs;  ///< unattended: how long each slide stays, 100 ms to a day
};

/// `kestrum watch DECK`
struct WatchRequest {
    std::string deck;
};

/// `kestrum attach --pipe NAME [--command ID] [--automatic]`
struct AttachRequest {
    std::string pipe;        ///< where an office listens
    std::string command;     ///< to begin with, as the menu names it; empty: none
    bool automatic = false;  ///< only if shows are recorded automatically
};

/// `kestrum publish mp4 DECK|PACKAGE... [--size WxH] [--bitrate K] [--webcam POS[,SIZE]] [--json]`
struct PublishRequest {
    struct Size {
        std::int32_t width = 0, height = 0;
        bool operator==(const Size&) const = default;
    };
    std::vector<std::string> sources;  ///< at least one
    std::optional<Size> size;          ///< 240x180 to 1920x1920
    std::optional<std::int32_t> kbps;  ///< 300 to 12000
    std::string webcamPosition;        ///< a word of the dialog's list, such as "top-right"; empty keeps its choice
    std::string webcamSize;            ///< "320x240"; empty keeps the dialog's choice
    bool json = false;
};

/// `kestrum configure [DECK|PACKAGE]`
struct ConfigureRequest {
    std::string source;  ///< empty: the preferences alone
};

/// `kestrum devices [DECK|PACKAGE]`, `kestrum devices --list [--json]`
struct DevicesRequest {
    std::string source;  ///< empty: the preferences alone
    bool list = false;   ///< print the devices instead of showing the dialog
    bool json = false;
};

/// `kestrum resolution`
struct ResolutionRequest {};

/// `kestrum info [--json] PACKAGE`
struct InfoRequest {
    std::string package;
    bool json = false;
};

/// `kestrum verify [--repair] [--json] PACKAGE`
struct VerifyRequest {
    std::string package;
    bool repair = false;
    bool json = false;
};

/// `kestrum -regpath PACKAGE`: a recording tells the desktop of its package. The recent list of the settings store has
/// it by then; this desktop keeps none of its own.
struct RegisterRequest {};

struct HelpRequest {};
struct VersionRequest {};

using Request =
    std::variant<RecordRequest, WatchRequest, AttachRequest, PublishRequest, ConfigureRequest, DevicesRequest,
                 ResolutionRequest, InfoRequest, VerifyRequest, RegisterRequest, HelpRequest, VersionRequest>;

/// The words cannot be understood; what() is the sentence for the user.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments behind the program's name. Throws UsageError.
Request ParseCommandLine(const std::vector<std::string>& arguments);

/// The help text.
std::string HelpText();

}  // namespace kestrum::app
