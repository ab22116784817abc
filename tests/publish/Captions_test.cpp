// Captions beside the package: which are found, what becomes of them, and what the dialog says.
#include "publish/CaptionText.h"
#include "publish/PublishWorld.h"

namespace kestrum {
namespace {

using publish::CaptionFormat;
using publish::ReadCaptions;

String Vtt(const std::string& bytes) {
    return ReadCaptions(bytes, CaptionFormat::WebVtt).webVtt;
}

String Srt(const std::string& bytes) {
    return ReadCaptions(bytes, CaptionFormat::SubRip).webVtt;
}

TEST(CaptionText, SubRip_BecomesWebVtt) {
    EXPECT_EQ(
        Srt("1\r\n00:00:01,500 --> 00:00:03,000\r\nHello\r\nyou\r\n\r\n2\r\n01:00:00,000 --> 01:00:02,250\r\nEnd\r\n"),
        u"WEBVTT\n\n00:00:01.500 --> 00:00:03.000\nHello\nyou\n\n01:00:00.000 --> 01:00:02.250\nEnd\n\n");
}

TEST(CaptionText, WebVtt_KeepsTimesAndWordsAlone) {
    EXPECT_EQ(Vtt("WEBVTT - made by Anna\n\nNOTE do not publish\nthis\n\nSTYLE\n::cue{color:red}\n\nintro\n"
                  "00:01.000 --> 00:02.000 align:start\n<v Anna>Hi &amp; welcome\n"),
              u"WEBVTT\n\n00:00:01.000 --> 00:00:02.000\n<v Anna>Hi &amp; welcome\n\n");
}

TEST(CaptionText, SubRip_MeansItsSignsAsTheyStand_AndLosesDecoration) {
    EXPECT_EQ(Srt("1\n00:00:01,0 --> 00:00:02,0\n{\\an8}a < b & <i>c</i> <font color=\"red\">d</font> </script>\n"),
              u"WEBVTT\n\n00:00:01.000 --> 00:00:02.000\na &lt; b &amp; <i>c</i> d &lt;/script>\n\n");
}

TEST(CaptionText, EncodingsOfOldPrograms_AreUnderstood) {
    const String wanted = u"WEBVTT\n\n00:00:01.000 --> 00:00:02.000\nGr\u00FC\u00DFe \u201Ehier\u201C\n\n";
    const std::string times = "00:00:01.000 --> 00:00:02.000\n";
    EXPECT_EQ(Vtt(times + "Gr\xC3\xBC\xC3\x9F"
                          "e \xE2\x80\x9Ehier\xE2\x80\x9C"),
              wanted)
        << "UTF-8";
    EXPECT_EQ(Vtt("\xEF\xBB\xBF" + times +
                  "Gr\xC3\xBC\xC3\x9F"
                  "e \xE2\x80\x9Ehier\xE2\x80\x9C"),
              wanted)
        << "marked UTF-8";
    EXPECT_EQ(Vtt(times + "Gr\xFC\xDF"
                          "e \x84hier\x93"),
              wanted)
        << "Windows western";
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char16_t unit : host::FromUtf8(times) + u"Gr\u00FC\u00DFe \u201Ehier\u201C") {
        little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
        big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    }
    EXPECT_EQ(Vtt(little), wanted) << "UTF-16";
    EXPECT_EQ(Vtt(big), wanted) << "UTF-16, high byte first";
}

TEST(CaptionText, WrongTimes_AreLeftOutAndCounted) {
    const auto text = ReadCaptions(
        "1\n00:00:05,000 --> 00:00:05,000\nno time at all\n\n2\n00:00:09,000 --> 00:00:08,000\nbackwards\n\n"
        "3\nsoon --> later\nwords\n\n4\n00:61:00,000 --> 00:62:00,000\nsixty-one\n\n5\n99999999999:00:00,000 --> "
        "00:00:01,000\nhuge\n\n6\n00:00:01,000 --> 00:00:02,000\ngood\n",
        CaptionFormat::SubRip);
    EXPECT_EQ(text.leftOut, 5);
    EXPECT_EQ(text.cues, 1);
    EXPECT_EQ(text.webVtt, u"WEBVTT\n\n00:00:01.000 --> 00:00:02.000\ngood\n\n");
}

TEST(CaptionText, ACueWithoutTheEmptyLineBehindIt_EndsWhereTheNextBegins) {
    EXPECT_EQ(Srt("1\n00:00:01,000 --> 00:00:02,000\none\n2\n00:00:03,000 --> 00:00:04,000\ntwo"),
              u"WEBVTT\n\n00:00:01.000 --> 00:00:02.000\none\n\n00:00:03.000 --> 00:00:04.000\ntwo\n\n");
}

TEST(CaptionText, WhatIsNone_GivesNone) {
    for (const std::string& bytes : {std::string(), std::string("\xFF"), std::string("\xFF\xFE\x01"),
                                     std::string(100, '\0'), std::string("-->"), std::string("a movie\n\n\x80\x81")})
        EXPECT_EQ(ReadCaptions(bytes, CaptionFormat::SubRip).cues, 0);
}

class CaptionsTest : public testing::Test, protected test::PublishWorld {
  protected:
    CaptionsTest() { world.fs.Put(InInstall(u"mp4/captions.js"), "var captions = [];\n"); }

    void PutBeside(const String& name, const std::string& bytes) { world.fs.Put(u"/home/anna/talks/" + name, bytes); }

    static constexpr char kCue[] = "1\n00:00:01,000 --> 00:00:02,000\nHi \"you\" </script>\n";
};

TEST_F(CaptionsTest, Publish_CarriesCaptionsAlong) {
    PutBeside(u"deck.srt", kCue);
    Publish();
    EXPECT_EQ(Output(u"captions.js"),
              u"var captions = [{\"lang\":\"\",\"label\":\"\",\"text\":\"WEBVTT\\n\\n00:00:01.000 --> 00:00:02.000\\n"
              u"Hi \\\"you\\\" &lt;\\/script>\\n\\n\"}];\n");
}

TEST_F(CaptionsTest, Publish_TakesEachLanguageOnce_AndNothingOfOtherLectures) {
    PutBeside(u"deck.de.srt", kCue);
    PutBeside(u"deck.DE.vtt", kCue);
    PutBeside(u"deck.de.vtt", kCue);
    PutBeside(u"deck.zh-Hans.VTT", kCue);
    PutBeside(u"deck2.vtt", kCue);
    PutBeside(u"deck notes.vtt", kCue);
    PutBeside(u"deck.my notes.vtt", kCue);
    const publish::Captions captions = publish::FindCaptions(publishing);
    std::vector<String> files;
    for (const auto& track : captions.tracks) files.push_back(track.file);
    EXPECT_EQ(files, (std::vector<String>{u"deck.DE.vtt", u"deck.de.vtt", u"deck.zh-Hans.VTT"}));
    EXPECT_EQ(captions.tracks.back().language, u"zh-Hans");
}

TEST_F(CaptionsTest, PublishedAgain_TakesWhatLiesThereNow) {
    PutBeside(u"deck.vtt", kCue);
    Publish();
    PutBeside(u"deck.vtt", "00:01.000 --> 00:02.000\nnew words\n");
    Publish();
    EXPECT_NE(host::FromUtf8(world.fs.Bytes(u"/home/anna/talks/deck.ktr.mp4(1)/captions.js")).find(u"new words"),
              String::npos);
}

TEST_F(CaptionsTest, Publish_WithoutCaptions_LeavesTheEmptyList) {
    Publish();
    EXPECT_EQ(Output(u"captions.js"), u"var captions = [];\n");
}

TEST_F(CaptionsTest, TheDialog_SaysThatThereAreNone_AndHowToAddThem) {
    Form().Show();
    EXPECT_EQ(Form().lCaptions.Caption(), u"Captions: none. To add some, put deck.vtt or deck.srt beside the package.");
}

TEST_F(CaptionsTest, TheDialog_NamesWhatItFound_AndWhatIsWrongWithIt) {
    PutBeside(u"deck.vtt", std::string(kCue) + "\n00:09.000 --> 00:08.000\nbackwards\n");
    PutBeside(u"deck.fr.srt", "no captions");
    Form().Show();
    EXPECT_EQ(Form().lCaptions.Caption(),
              u"Captions: deck.vtt. In deck.vtt, 1 without proper times are left out. There are no captions in "
              u"deck.fr.srt that can be read.");
}

TEST_F(CaptionsTest, CaptionsThatCannotBeRead_DoNotStopThePublication) {
    PutBeside(u"deck.vtt", kCue);
    world.fs.Put(u"/home/anna/talks/deck.fr.vtt", std::string((8 << 20) + 1, 'x'));
    Form().Show();
    world.faults.FailCall(u"fs.ReadFile", 1, sim::ForEver);
    EXPECT_TRUE(publish::FindCaptions(publishing).tracks.empty());
}

TEST_F(CaptionsTest, ADiskWithoutRoom_IsToldBeforeTheWork) {
    Form().Show();
    EXPECT_FALSE(Form().lSpace.Visible());
    Form().Unload();
    world.fs.AddDrive(u"/", host::DriveType::Fixed, 5 << 20);
    Form().Show();
    EXPECT_TRUE(Form().lSpace.Visible());
    EXPECT_NE(Form().lSpace.Caption().find(u"only 5 MB left"), String::npos) << host::ToUtf8(Form().lSpace.Caption());
    EXPECT_TRUE(Form().cmdPublish.Enabled()) << "it is a warning: the estimate may be wrong";
}

}  // namespace
}  // namespace kestrum
