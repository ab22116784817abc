// The two files of a project, byte for byte, written down by hand.
#include <gtest/gtest.h>

#include "ProjectWorld.h"

namespace kestrum {
namespace {

using test::InstallFile;
using test::ProjectWorld;

using Lines = std::vector<std::string>;

/// One tag a line, CR LF between them, none at the end, nothing indented.
std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\r\n") + line;
    return text;
}

const Lines kFilledProject = {
    R"(<?xml version="1.0" encoding="UTF-8"?>)",
    R"(<kestrum ver="8.0">)",
    "<project>",
    "<abstract>",
    "<title>Waves &amp; particles</title>",
    "<author>Anna</author>",
    "<manager>Mia</manager>",
    "<company>Uni</company>",
    "<category>Physics</category>",
    "<keywords>light, wave</keywords>",
    "<comments>a &lt; b</comments>",
    "</abstract>",
    "<configure>",
    "<template>blue</template>",
    R"(<photo size="320x240">anna.jpg</photo>)",
    R"(<sound volume="5">bgsound.mp3</sound>)",
    "<showcursor>0</showcursor>",
    "<realcursor>1</realcursor>",
    "<profile>",
    "<audio>",
    "<bitrate>64</bitrate>",
    "<codec/>",
    "</audio>",
    "<video>",
    "<bitrate>320</bitrate>",
    "<size>320x240</size>",
    "<preview>1</preview>",
    "</video>",
    "<screen>",
    "<size>1920x1080</size>",
    "<name>&amp;H4100E900</name>",
    "</screen>",
    "</profile>",
    "</configure>",
    "<scipinfo>",
    "<server>",
    "<url>course.example</url>",
    "<folderID>17</folderID>",
    "<contentID>4</contentID>",
    "</server>",
    "</scipinfo>",
    R"(<index duration="01:05.250" type="UL">)",
    "<item>",
    "<title>First</title>",
    "<recdate>2024/3/7 09:05:00</recdate>",
    "<pos>0</pos>",
    "</item>",
    "<item>",
    "<title/>",
    "<recdate/>",
    "<pos>-1</pos>",
    "<url>http://x/?a=1&amp;b=2</url>",
    "<size>77</size>",
    "</item>",
    "<item>",
    "<title>\xE6\xB3\xA2</title>",
    "<recdate>2024/3/7 09:06:00</recdate>",
    "<pos>5000</pos>",
    "</item>",
    "</index>",
    "</project>",
    "</kestrum>",
};

class CProjectFileGoldenTest : public testing::Test {
  protected:
    void Fill() {
        ksp.title = u"Waves & particles";
        ksp.author = u"An\tna";
        ksp.manager = u"Mia\v";
        ksp.company = u"\tUni";
        ksp.category = u"Phy\v\tsics";
        ksp.keywords = u"light,\t wave";
        ksp.comments = u"a < b\t";
        ksp.template_ = u"blue";
        ksp.photo = u"anna.jpg";
        ksp.photoSize = u"320x240";
        ksp.sound = u"bgsound.mp3";
        ksp.soundVolume = u"5";
        ksp.showcursor = u"0";
        ksp.realcursor = u"1";
        ksp.audioBitrate = u"64";
        ksp.videoBitrate = u"320";
        ksp.videoSize = u"320x240";
        ksp.videoPreview = u"1";
        ksp.screenSize = u"1920x1080";
        ksp.screenName = u"Aé";
        ksp.serverUrl = u"course.example";
        ksp.folderID = u"17";
        ksp.contentID = u"4";
        ksp.indexType = u"UL";
        ksp.SetDuration(65250);
        ksp.AddIndex(u"First", u"0", u"2024/3/7 09:05:00", u"", u"", u"", false, 0);
        ksp.AddIndex(u"", u"-1", u"", u"http://x/?a=1&b=2", u"", u"", false, 0);
        ksp.index.Item(2).size = u"77";
        ksp.AddIndex(u"\t波", u"5000", u"2024/3/7 09:06:00", u"", u"", u"", false, 0);
    }

    ProjectWorld w;
    CProjectFile& ksp = w.project.g_Project;
    sim::FileSystem& fs = w.world.fs;
};

TEST_F(CProjectFileGoldenTest, Save_WritesTheWholeFile) {
    ASSERT_TRUE(w.Load(InstallFile("default.ksp")));
    Fill();
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(fs.Bytes(ProjectWorld::kProjectFile), Joined(kFilledProject));
    EXPECT_EQ(w.Boxes(), std::vector<String>{});
}

/// The web player's form: the level of `project` is gone, what stood on its two lines leaves them empty, and the parts
/// about the recorded screen and the last upload stay as the file had them.
TEST_F(CProjectFileGoldenTest, SaveToXml_WritesTheReducedForm) {
    ASSERT_TRUE(w.Load(InstallFile("default.ksp")));
    Fill();
    ASSERT_TRUE(ksp.SaveToXml(ProjectWorld::InWork(u"project.xml")));
    Lines expected = kFilledProject;
    for (std::string& line : expected) {
        if (line == "<project>" || line == "</project>") line.clear();
        if (line == "<size>1920x1080</size>") line = "<size/>";
        if (line == "<name>&amp;H4100E900</name>") line = "<name/>";
        if (line == "<url>course.example</url>") line = "<url/>";
        if (line == "<folderID>17</folderID>") line = "<folderID/>";
        if (line == "<contentID>4</contentID>") line = "<contentID>0</contentID>";
    }
    EXPECT_EQ(fs.Bytes(ProjectWorld::InWork(u"project.xml")), Joined(expected));
    EXPECT_FALSE(fs.FileExists(ProjectWorld::InWork(u"project.xml.tmp")));
    EXPECT_EQ(w.Boxes(), std::vector<String>{});
}

/// Names of the root and of the two attributes are the file's own, as are the order and whatever stands beside.
TEST_F(CProjectFileGoldenTest, Save_KeepsTheFilesOwnShape) {
    ASSERT_TRUE(
        w.Load("<lecture v=\"8.31\" made=\"by hand\"><!-- mine --><project><index duration=\"00:10\"><slide><title>a"
               "</title><pos>0</pos><recdate>d</recdate></slide></index><configure><profile><screen><name/><size>1x2"
               "</size></screen><video><size>160x120</size><bitrate>96</bitrate><preview>0</preview></video><audio>"
               "<codec>aac</codec><bitrate> 48 </bitrate></audio></profile><sound loud=\"2\" x=\"y\"/><photo wide="
               "\"7x8\">p.png</photo><realcursor>0</realcursor><showcursor>1</showcursor><template>t</template>"
               "</configure><abstract><comments/><keywords/><category/><company/><manager/><author/><title>T</title>"
               "<mine>kept</mine></abstract></project></lecture>"));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(fs.Bytes(ProjectWorld::kProjectFile), Joined({"<lecture v=\"8.31\" made=\"by hand\">",
                                                            "<!-- mine -->",
                                                            "<project>",
                                                            "<configure>",
                                                            "<profile>",
                                                            "<screen>",
                                                            "<name/>",
                                                            "<size>1x2</size>",
                                                            "</screen>",
                                                            "<video>",
                                                            "<size>160x120</size>",
                                                            "<bitrate>96</bitrate>",
                                                            "<preview>0</preview>",
                                                            "</video>",
                                                            "<audio>",
                                                            "<codec>aac</codec>",
                                                            "<bitrate>48</bitrate>",
                                                            "</audio>",
                                                            "</profile>",
                                                            "<sound loud=\"2\" x=\"y\"/>",
                                                            "<photo wide=\"7x8\">p.png</photo>",
                                                            "<realcursor>0</realcursor>",
                                                            "<showcursor>1</showcursor>",
                                                            "<template>t</template>",
                                                            "</configure>",
                                                            "<abstract>",
                                                            "<comments/>",
                                                            "<keywords/>",
                                                            "<category/>",
                                                            "<company/>",
                                                            "<manager/>",
                                                            "<author/>",
                                                            "<title>T</title>",
                                                            "<mine>kept</mine>",
                                                            "</abstract>",
                                                            "<scipinfo>",
                                                            "<server>",
                                                            "<url/>",
                                                            "<folderID/>",
                                                            "<contentID>0</contentID>",
                                                            "</server>",
                                                            "</scipinfo>",
                                                            "<index duration=\"00:10\" type=\"OL\">",
                                                            "<item>",
                                                            "<title>a</title>",
                                                            "<recdate>d</recdate>",
                                                            "<pos>0</pos>",
                                                            "</item>",
                                                            "</index>",
                                                            "</project>",
                                                            "</lecture>"}));
    EXPECT_EQ(w.Boxes(), std::vector<String>{});
}

TEST_F(CProjectFileGoldenTest, Save_OfWhatWasLoaded_ChangesNoByte) {
    ASSERT_TRUE(w.Load(Joined(kFilledProject)));
    ksp.index.Item(2).size = u"77";  // never read back
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(fs.Bytes(ProjectWorld::kProjectFile), Joined(kFilledProject));
}

TEST_F(CProjectFileGoldenTest, Load_ReadsEveryField) {
    ASSERT_TRUE(w.Load(Joined(kFilledProject)));
    const String all = ksp.ver + u"|" + ksp.title + u"|" + ksp.author + u"|" + ksp.manager + u"|" + ksp.company + u"|" +
                       ksp.category + u"|" + ksp.keywords + u"|" + ksp.comments + u"|" + ksp.template_ + u"|" +
                       ksp.photo + u"|" + ksp.photoSize + u"|" + ksp.sound + u"|" + ksp.soundVolume + u"|" +
                       ksp.showcursor + u"|" + ksp.realcursor + u"|" + ksp.audioBitrate + u"|" + ksp.videoBitrate +
                       u"|" + ksp.videoSize + u"|" + ksp.videoPreview + u"|" + ksp.screenSize + u"|" + ksp.screenName +
                       u"|" + ksp.serverUrl + u"|" + ksp.folderID + u"|" + ksp.contentID + u"|" + ksp.indexType + u"|" +
                       ksp.durationText;
    EXPECT_EQ(host::ToUtf8(all),
              "8.0|Waves & particles|Anna|Mia|Uni|Physics|light, wave|a < b|blue|anna.jpg|320x240|bgsound.mp3|5|0|1|64|"
              "320|320x240|1|1920x1080|A\xC3\xA9|course.example|17|4|UL|01:05.250");
    ASSERT_EQ(ksp.index.Count(), 3);
    const CIndexItem& link = ksp.index.Item(2);
    EXPECT_EQ(link.pos, u"-1");
    EXPECT_EQ(link.Url, u"http://x/?a=1&b=2");
    EXPECT_EQ(link.title + link.RecDate + link.Length + link.PosEnd + link.size, u"");
    EXPECT_FALSE(link.Selected);
    EXPECT_EQ(ksp.index.Item(3).title, u"波");
    EXPECT_EQ(ksp.index.Item(3).RecDate, u"2024/3/7 09:06:00");
}

}  // namespace
}  // namespace kestrum
