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

/// `kestrum publish mp4 DECK|PACKAGE`
struct PublishRequest {
    std::string source;
};

/// `kestrum configure [DECK|PACKAGE]`
struct ConfigureRequest {
    std::string source;  ///< empty: the preferences alone
};

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

using Request = std::variant<RecordRequest, PublishRequest, ConfigureRequest, InfoRequest, VerifyRequest,
                             RegisterRequest, HelpRequest, VersionRequest>;

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
