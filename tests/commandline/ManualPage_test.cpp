// One list of commands and options, told five times: by the parser, its help, the manual page and the completions of
// three shells. Each command has exactly the options that the parser takes for it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "Places.h"
#include "apps/commandline/CommandLine.h"

namespace kestrum::app {
namespace {

using Names = std::set<std::string>;
using Options = std::map<std::string, Names>;  ///< command to its options

std::string Text(const std::string& path) {
    std::ifstream file(std::string(places::kSource) + "/" + path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    EXPECT_FALSE(text.str().empty()) << path;
    return text.str();
}

/// The first group of every match.
Names All(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        names.insert((*match)[1]);
    return names;
}

Names OptionsIn(const std::string& text) {
    return All(text, "(--[a-z]+)");
}

/// Adds the options of every piece of `text` that begins with `mark` followed by a command.
Options ByCommand(const std::string& text, const std::string& mark) {
    Options options;
    for (std::size_t at = text.find(mark); at != std::string::npos;) {
        const std::size_t next = text.find(mark, at + mark.size());
        const std::string piece = text.substr(at + mark.size(), next - at - mark.size());
        const std::string command = piece.substr(0, piece.find_first_not_of("abcdefghijklmnopqrstuvwxyz"));
        if (!command.empty()) options[command].merge(OptionsIn(piece));
        at = next;
    }
    return options;
}

/// What the help says. `help` and `--version` stand for themselves.
Options Told() {
    Options options = ByCommand(HelpText(), "\n  kestrum ");
    options.erase("help");
    return options;
}

/// What the parser says to `command` with `option` behind it, the option's name taken out.
std::string Answer(const std::string& command, const std::string& option) {
    std::vector<std::string> words{command};
    if (command == "publish") words.push_back("mp4");
    words.push_back(option);
    try {
        ParseCommandLine(words);
    } catch (const UsageError& error) {
        return std::regex_replace(std::string(error.what()), std::regex(option), "");
    }
    return "";
}

/// An option is taken where the parser does not say what it says to one that nobody has.
bool Takes(const std::string& command, const std::string& option) {
    return Answer(command, option) != Answer(command, "--nonesuch");
}

std::string ManualPage() {
    return std::regex_replace(Text("packaging/man/kestrum.1.in"), std::regex(R"(\\-)"), "-");
}

TEST(ManualPage, TheHelpTellsExactlyTheCommandsOfTheParser) {
    Names commands = All(Text("src/apps/commandline/CommandLine.cpp"), "command == \"([a-z]+)\"");
    EXPECT_GT(commands.size(), 5u) << "the search itself must work";
    commands.erase("help");
    Names told;
    for (const auto& [command, options] : Told()) told.insert(command);
    EXPECT_EQ(told, commands);
}

TEST(ManualPage, TheHelpTellsExactlyTheOptionsThatTheParserTakes) {
    const Names known = All(Text("src/apps/commandline/CommandLine.cpp"), "word == \"(--[a-z]+)\"");
    EXPECT_GT(known.size(), 5u) << "the search itself must work";
    for (const auto& [command, options] : Told()) {
        for (const std::string& option : known)
            EXPECT_EQ(Takes(command, option), options.count(option) == 1) << command << " " << option;
        EXPECT_TRUE(std::includes(known.begin(), known.end(), options.begin(), options.end())) << command;
    }
}

TEST(ManualPage, ItsSynopsisIsThatOfTheHelp) {
    const std::string page = ManualPage();
    const std::string synopsis = page.substr(0, page.find(".SH DESCRIPTION"));
    Options shown = ByCommand(std::regex_replace(synopsis, std::regex("\\.SY kestrum\n\\.BR? "), "\x01"), "\x01");
    shown.erase("help");
    EXPECT_EQ(shown, Told());
    EXPECT_NE(synopsis.find("help \" | \" --version"), std::string::npos);
}

TEST(ManualPage, ItDescribesEveryCommandAndEveryOption) {
    const std::string page = ManualPage();
    const std::size_t begin = page.find(".SH COMMANDS");
    const std::string commands = page.substr(begin, page.find(".SH EXIT STATUS") - begin);
    for (const auto& [command, options] : Told()) {
        const std::regex heading("\\.TP\n\\.[A-Z]+ \"?" + command + "\\b");
        std::smatch found;
        ASSERT_TRUE(std::regex_search(commands, found, heading)) << command;
        const std::string behind = found.suffix();
        // Up to the heading of another command; those of options begin with a dash.
        std::smatch next;
        const bool more = std::regex_search(behind, next, std::regex("\\.TP\n\\.[A-Z]+ \"?[a-z]"));
        const Names described =
            OptionsIn(more ? std::string(next.prefix()) : behind.substr(0, behind.find("\n--version")));
        for (const std::string& option : options) EXPECT_TRUE(described.count(option)) << command << " " << option;
    }
}

TEST(ManualPage, TheCompletionOfBashOffersWhatTheHelpTells) {
    const std::string script = Text("packaging/completion/kestrum.bash");
    Options offered =
        ByCommand(std::regex_replace(script, std::regex("\n      ([a-z]+)\\) _kestrum_words"), "\x01$1 "), "\x01");
    for (const auto& [command, options] : Told()) {
        EXPECT_EQ(offered[command], options) << command;
        EXPECT_TRUE(std::regex_search(script, std::regex("'record [^']*\\b" + command + "\\b[^']*'|'" + command + " ")))
            << command;
    }
}

TEST(ManualPage, TheCompletionOfZshOffersWhatTheHelpTells) {
    const std::string script = Text("packaging/completion/kestrum.zsh");
    Options offered =
        ByCommand(std::regex_replace(script, std::regex("\n  ([a-z]+)\\) _arguments"), "\x01$1 "), "\x01");
    Names commands = All(script, "\n  '([a-z]+):");
    commands.erase("help");
    for (const auto& [command, options] : Told()) {
        EXPECT_EQ(offered[command], options) << command;
        EXPECT_EQ(commands.erase(command), 1u) << command;
    }
    EXPECT_EQ(commands, Names{});
}

TEST(ManualPage, TheCompletionOfFishOffersWhatTheHelpTells) {
    const std::string script = Text("packaging/completion/kestrum.fish");
    Options offered;
    const std::regex line("-n '__kestrum_at ([a-z ]+)' -l ([a-z]+)");
    for (std::sregex_iterator match(script.begin(), script.end(), line), end; match != end; ++match) {
        std::istringstream commands((*match)[1]);
        for (std::string command; commands >> command;) offered[command].insert("--" + (*match)[2].str());
    }
    Names commands = All(script, "__fish_use_subcommand -f -a ([a-z]+)");
    commands.erase("help");
    for (const auto& [command, options] : Told()) {
        EXPECT_EQ(offered[command], options) << command;
        EXPECT_EQ(commands.erase(command), 1u) << command;
    }
    EXPECT_EQ(commands, Names{});
}

}  // namespace
}  // namespace kestrum::app
