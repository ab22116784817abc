#include "apps/commandline/CommandLine.h"

#include <gtest/gtest.h>

namespace kestrum::app {
namespace {

std::string UsageErrorOf(const std::vector<std::string>& arguments) {
    try {
        ParseCommandLine(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(CommandLine, Record_TakesDeckStartAndAdvanceInAnyOrder) {
    const Request request = ParseCommandLine({"record", "--advance", "2.5", "my deck.pptx", "--from", "3"});
    const RecordRequest record = std::get<RecordRequest>(request);
    EXPECT_EQ(record.deck, "my deck.pptx");
    EXPECT_EQ(record.from, 3);
    EXPECT_EQ(record.advanceMs, 2500);
}

TEST(CommandLine, Record_WithoutAdvance_WaitsForAPerson) {
    const RecordRequest record = std::get<RecordRequest>(ParseCommandLine({"record", "a.pptx"}));
    EXPECT_FALSE(record.advanceMs.has_value());
    EXPECT_EQ(record.from, 1);
}

TEST(CommandLine, Watch_TakesOnePresentation) {
    EXPECT_EQ(std::get<WatchRequest>(ParseCommandLine({"watch", "a.pptx"})).deck, "a.pptx");
    EXPECT_THROW(ParseCommandLine({"watch"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"watch", "a.pptx", "b.pptx"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"watch", "a.pptx", "--advance", "1"}), UsageError);
}

TEST(CommandLine, Attach_NeedsThePipeOfAnOffice) {
    const auto request = std::get<AttachRequest>(
        ParseCommandLine({"attach", "--pipe", "kestrum-1f", "--command", "mnuMP4", "--automatic"}));
    EXPECT_EQ(request.pipe, "kestrum-1f");
    EXPECT_EQ(request.command, "mnuMP4");
    EXPECT_TRUE(request.automatic);
    EXPECT_FALSE(std::get<AttachRequest>(ParseCommandLine({"attach", "--pipe", "a"})).automatic);
    EXPECT_NE(UsageErrorOf({"attach"}).find("--pipe"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"attach", "--pipe"}).find("needs a value"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"attach", "--pipe", "a", "deck.pptx"}).find("deck.pptx"), std::string::npos);
}

TEST(CommandLine, Record_RefusesNumbersThatAreNone) {
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "--from", "0"}).find("--from"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "--from", "2x"}).find("2x"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "--advance", "0"}).find("--advance"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "--advance", "nan"}).find("nan"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "--advance"}).find("needs a value"), std::string::npos);
}

TEST(CommandLine, UnknownWords_AreNamedInTheSentence) {
    EXPECT_NE(UsageErrorOf({"rekord"}).find("rekord"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"info", "a.ktr", "--xml"}).find("--xml"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"publish", "avi", "a.ktr"}).find("publish mp4"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record", "a.pptx", "b.pptx"}).find("b.pptx"), std::string::npos);
    EXPECT_NE(UsageErrorOf({"record"}).find("DECK"), std::string::npos);
}

TEST(CommandLine, Publish_TakesPackagesAndWhatTheDialogOffers) {
    const auto request =
        std::get<PublishRequest>(ParseCommandLine({"publish", "mp4", "--size", "640x360", "a.ktr", "--bitrate", "900",
                                                   "b c.pptx", "--webcam", "top-left,240x180", "--json"}));
    EXPECT_EQ(request.sources, (std::vector<std::string>{"a.ktr", "b c.pptx"}));
    EXPECT_EQ(request.size, (PublishRequest::Size{640, 360}));
    EXPECT_EQ(request.kbps, 900);
    EXPECT_EQ(request.webcamPosition, "top-left");
    EXPECT_EQ(request.webcamSize, "240x180");
    EXPECT_TRUE(request.json);
}

TEST(CommandLine, Publish_RefusesWhatTheDialogDoesNotOffer) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{"--size", "640"},
                                                                                       {"--size", "239x180"},
                                                                                       {"--size", "640x179"},
                                                                                       {"--size", "1921x1080"},
                                                                                       {"--size", "640x360x2"},
                                                                                       {"--size", "x"},
                                                                                       {"--bitrate", "299"},
                                                                                       {"--bitrate", "12001"},
                                                                                       {"--bitrate", "900k"},
                                                                                       {"--webcam", "middle"},
                                                                                       {"--webcam", "none,1x1"},
                                                                                       {"--webcam", ""},
                                                                                       {"--fast"}}) {
        std::vector<std::string> line = {"publish", "mp4", "a.ktr"};
        line.insert(line.end(), words.begin(), words.end());
        EXPECT_NE(UsageErrorOf(line).find(words[0]), std::string::npos) << words.back();
    }
    EXPECT_FALSE(UsageErrorOf({"publish", "mp4"}).empty());
}

TEST(CommandLine, Info_TakesJson) {
    const InfoRequest info = std::get<InfoRequest>(ParseCommandLine({"info", "--json", "a.ktr"}));
    EXPECT_TRUE(info.json);
    EXPECT_EQ(info.package, "a.ktr");
}

TEST(CommandLine, Resolution_TakesNothing) {
    EXPECT_TRUE(std::holds_alternative<ResolutionRequest>(ParseCommandLine({"resolution"})));
    EXPECT_THROW(ParseCommandLine({"resolution", "1280x720"}), UsageError);
    EXPECT_NE(HelpText().find("kestrum resolution"), std::string::npos);
}

TEST(CommandLine, Configure_TakesALectureOrNone) {
    EXPECT_EQ(std::get<ConfigureRequest>(ParseCommandLine({"configure"})).source, "");
    EXPECT_EQ(std::get<ConfigureRequest>(ParseCommandLine({"configure", "a b.pptx"})).source, "a b.pptx");
    EXPECT_THROW(ParseCommandLine({"configure", "a", "b"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"configure", "--quick"}), UsageError);
}

TEST(CommandLine, Devices_AreShownOrListed) {
    EXPECT_EQ(std::get<DevicesRequest>(ParseCommandLine({"devices"})).source, "");
    EXPECT_EQ(std::get<DevicesRequest>(ParseCommandLine({"devices", "a b.pptx"})).source, "a b.pptx");
    EXPECT_FALSE(std::get<DevicesRequest>(ParseCommandLine({"devices"})).list);
    const auto listed = std::get<DevicesRequest>(ParseCommandLine({"devices", "--json", "--list"}));
    EXPECT_TRUE(listed.list);
    EXPECT_TRUE(listed.json);
    EXPECT_THROW(ParseCommandLine({"devices", "--json"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"devices", "--list", "a.pptx"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"devices", "a.pptx", "b.pptx"}), UsageError);
    EXPECT_THROW(ParseCommandLine({"devices", "--quick"}), UsageError);
}

TEST(CommandLine, NoWords_ShowTheHelp) {
    EXPECT_TRUE(std::holds_alternative<HelpRequest>(ParseCommandLine({})));
}

}  // namespace
}  // namespace kestrum::app
