#include "apps/commandline/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <string_view>

namespace kestrum::app {
namespace {

constexpr double kShortestAdvance = 0.1;
constexpr double kLongestAdvance = 86400;

/// Walks over the words: options by name, everything else in order.
class Words {
  public:
    explicit Words(const std::vector<std::string>& arguments) : m_words(arguments) {}

    bool AtEnd() const { return m_next >= m_words.size(); }
    const std::string& Take() { return m_words[m_next++]; }
    const std::string& TakeValue(const std::string& option) {
        if (AtEnd()) throw UsageError(option + " needs a value.");
        return Take();
    }

  private:
    const std::vector<std::string>& m_words;
    std::size_t m_next = 0;
};

bool IsOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-';
}

void TakeOperand(std::string& target, const std::string& word, const std::string& what) {
    if (!target.empty()) throw UsageError("Only one " + what + " can be given; \"" + word + "\" is one too many.");
    target = word;
}

std::int32_t SlideNumber(const std::string& text) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1) {
        throw UsageError("--from needs the number of a slide, 1 or more, not \"" + text + "\".");
    }
    return number;
}

std::int32_t Milliseconds(const std::string& text) {
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    if (!whole || !(seconds >= kShortestAdvance && seconds <= kLongestAdvance)) {
        throw UsageError("--advance needs the seconds that each slide stays, 0.1 to 86400, not \"" + text + "\".");
    }
    return static_cast<std::int32_t>(std::lround(seconds * 1000));
}

RecordRequest ParseRecord(Words& words) {
    RecordRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--from") {
            request.from = SlideNumber(words.TakeValue(word));
        } else if (word == "--advance") {
            request.advanceMs = Milliseconds(words.TakeValue(word));
        } else if (IsOption(word)) {
            throw UsageError("record has no option " + word + ".");
        } else {
            TakeOperand(request.deck, word, "presentation");
        }
    }
    if (request.deck.empty()) throw UsageError("record needs a presentation: kestrum record DECK.");
    return request;
}

WatchRequest ParseWatch(Words& words) {
    WatchRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (IsOption(word)) throw UsageError("watch has no option " + word + ".");
        TakeOperand(request.deck, word, "presentation");
    }
    if (request.deck.empty()) throw UsageError("watch needs a presentation: kestrum watch DECK.");
    return request;
}

AttachRequest ParseAttach(Words& words) {
    AttachRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--pipe") {
            request.pipe = words.TakeValue(word);
        } else if (word == "--command") {
            request.command = words.TakeValue(word);
        } else if (word == "--automatic") {
            request.automatic = true;
        } else if (IsOption(word)) {
            throw UsageError("attach has no option " + word + ".");
        } else {
            throw UsageError("attach serves an office, not \"" + word + "\".");
        }
    }
    if (request.pipe.empty()) throw UsageError("attach needs the pipe of an office: kestrum attach --pipe NAME.");
    return request;
}

/// A whole number from `least` to `most`; throws `sentence` otherwise.
std::int32_t Bounded(std::string_view text, std::int32_t least, std::int32_t most, const std::string& sentence) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
        throw UsageError(sentence);
    return number;
}

PublishRequest::Size MovieSize(const std::string& text) {
    const std::string sentence = "--size needs a size from 240x180 to 1920x1920, not \"" + text + "\".";
    const std::string_view words = text;
    const std::size_t x = std::min(words.find('x'), words.size());
    const std::string_view height = x < words.size() ? words.substr(x + 1) : std::string_view();
    return {Bounded(words.substr(0, x), 240, 1920, sentence), Bounded(height, 180, 1920, sentence)};
}

void TakeWebcam(PublishRequest& request, const std::string& text) {
    const std::size_t comma = std::min(text.find(','), text.size());
    request.webcamPosition = text.substr(0, comma);
    request.webcamSize = comma < text.size() ? text.substr(comma + 1) : std::string();
    const auto known = [](const std::string& word, std::initializer_list<const char*> words) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    const bool place = known(request.webcamPosition, {"top-right", "bottom-right", "top-left", "bottom-left", "none"});
    const bool size = comma == text.size() || known(request.webcamSize, {"320x240", "240x180", "160x120"});
    if (!place || !size)
        throw UsageError(
            "--webcam needs a place (top-right, bottom-right, top-left, bottom-left, none) and may name a size, as in "
            "top-left,240x180, not \"" +
            text + "\".");
}

PublishRequest ParsePublish(Words& words) {
    if (words.AtEnd() || words.Take() != "mp4")
        throw UsageError("publish needs a format: kestrum publish mp4 PACKAGE.");
    PublishRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--size") {
            request.size = MovieSize(words.TakeValue(word));
        } else if (word == "--bitrate") {
            const std::string& value = words.TakeValue(word);
            request.kbps =
                Bounded(value, 300, 12000, "--bitrate needs kbit/s from 300 to 12000, not \"" + value + "\".");
        } else if (word == "--webcam") {
            TakeWebcam(request, words.TakeValue(word));
        } else if (word == "--json") {
            request.json = true;
        } else if (IsOption(word)) {
            throw UsageError("publish has no option " + word + ".");
        } else {
            request.sources.push_back(word);
        }
    }
    if (request.sources.empty()) throw UsageError("publish needs a presentation or a package.");
    return request;
}

ConfigureRequest ParseConfigure(Words& words) {
    ConfigureRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (IsOption(word)) throw UsageError("configure has no option " + word + ".");
        TakeOperand(request.source, word, "presentation or package");
    }
    return request;
}

DevicesRequest ParseDevices(Words& words) {
    DevicesRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--list") {
            request.list = true;
        } else if (word == "--json") {
            request.json = true;
        } else if (IsOption(word)) {
            throw UsageError("devices has no option " + word + ".");
        } else {
            TakeOperand(request.source, word, "presentation or package");
        }
    }
    if (request.json && !request.list) throw UsageError("--json goes with --list: kestrum devices --list --json.");
    if (request.list && !request.source.empty())
        throw UsageError("The devices are those of this computer; --list goes without a presentation.");
    return request;
}

ResolutionRequest ParseResolution(Words& words) {
    if (!words.AtEnd()) throw UsageError("resolution takes nothing behind it, not \"" + words.Take() + "\".");
    return {};
}

InfoRequest ParseInfo(Words& words) {
    InfoRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--json") {
            request.json = true;
        } else if (IsOption(word)) {
            throw UsageError("info has no option " + word + ".");
        } else {
            TakeOperand(request.package, word, "package");
        }
    }
    if (request.package.empty()) throw UsageError("info needs a package: kestrum info PACKAGE.");
    return request;
}

VerifyRequest ParseVerify(Words& words) {
    VerifyRequest request;
    while (!words.AtEnd()) {
        const std::string word = words.Take();
        if (word == "--repair") {
            request.repair = true;
        } else if (word == "--json") {
            request.json = true;
        } else if (IsOption(word)) {
            throw UsageError("verify has no option " + word + ".");
        } else {
            TakeOperand(request.package, word, "package");
        }
    }
    if (request.package.empty()) throw UsageError("verify needs a package: kestrum verify PACKAGE.");
    return request;
}

}  // namespace

Request ParseCommandLine(const std::vector<std::string>& arguments) {
    Words words(arguments);
    if (words.AtEnd()) return HelpRequest{};
    const std::string command = words.Take();
    if (command == "record") return ParseRecord(words);
    if (command == "watch") return ParseWatch(words);
    if (command == "attach") return ParseAttach(words);
    if (command == "publish") return ParsePublish(words);
    if (command == "configure") return ParseConfigure(words);
    if (command == "devices") return ParseDevices(words);
    if (command == "resolution") return ParseResolution(words);
    if (command == "info") return ParseInfo(words);
    if (command == "verify") return ParseVerify(words);
    if (command == "help" || command == "--help" || command == "-h") return HelpRequest{};
    if (command == "-regpath") return RegisterRequest{};
    if (command == "--version") return VersionRequest{};
    throw UsageError("There is no command \"" + command + "\"; kestrum help lists them.");
}

std::string HelpText() {
    return R"(Kestrum records a lecture: slides, screen, pointer and voice, with an index of the slides.

  kestrum record DECK [--from N] [--advance SECONDS]
      Runs the slide show of DECK in Impress and records it into one package beside it (.ktr).
      --from N           begin at slide N
      --advance SECONDS  unattended: every slide stays that long, then the show ends

  kestrum watch DECK
      Opens DECK in Impress and records each slide show that is started there, until DECK is closed. Automatic recording
      must be switched on in the settings.

  kestrum attach --pipe NAME [--command ID] [--automatic]
      Serves the commands of an Impress that is open already and listens on the pipe NAME, as long as it is open. The
      Kestrum menu of Impress starts this by itself.
      --command ID       run this command of the menu first
      --automatic        end at once unless automatic recording is switched on

  kestrum publish mp4 DECK|PACKAGE... [--size WxH] [--bitrate K] [--webcam PLACE[,SIZE]] [--json]
      Makes a folder with a web page that plays the lecture. The folder stands beside the package.
      --size WxH         size of the picture, 240x180 to 1920x1920 (default: as recorded)
      --bitrate K        kbit/s of the picture, 300 to 12000
      --webcam PLACE     top-right, bottom-right, top-left, bottom-left or none; SIZE is 320x240, 240x180 or 160x120
      --json             the result as one line of JSON for each package, nothing else

  kestrum configure [DECK|PACKAGE]
      Shows the settings on the desktop: those of the recorder, and of the lecture that is named.

  kestrum devices [DECK|PACKAGE]
      Shows microphone and camera on the desktop, with level, picture and a test recording, to choose among them.
      --list [--json]    prints the devices instead

  kestrum resolution
      Offers the screen resolution that suits recording; what is chosen is in force at once and stays.

  kestrum info [--json] PACKAGE
      Shows what a package holds: title, length, stored files, index.

  kestrum verify [--repair] [--json] PACKAGE
      Reads the whole package and tells what is wrong with it, entry by entry; changes nothing.
      --repair           mends what can be mended; the package as it was is kept beside it

  kestrum help | --version
)";
}

}  // namespace kestrum::app
