// What a publication leaves behind, on real files.
#include "PublicationFixture.h"

#include <algorithm>

namespace kestrum::adapters {
namespace {

TEST_F(PublicationTest, Publish_LeavesWhatThePlayerNeedsAndNothingElse) {
    Publish();
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(Package() + ".mp4")) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"author.png", "captions.js", "config.js", "cover.jpg", "index.html",
                                               "media.mp4", "player", "player.css", "player.js", "ques_config.js"}));
}

TEST_F(PublicationTest, Publish_MakesAKeyFrameAtEachEntry) {
    Publish();
    const auto times = media::KeyFrameTimes(Output("media.mp4"));
    const std::string config = real::ReadText(Output("config.js"));
    for (const int pos : {0, 1000, 2500}) {
        EXPECT_TRUE(std::find(times.begin(), times.end(), 1000 * pos) != times.end()) << pos;
        EXPECT_NE(config.find("\"time\":\"" + std::to_string(pos) + "\""), std::string::npos) << config;
    }
}

TEST_F(PublicationTest, Publish_DrawsTheCoverInTheMoviesSize) {
    Publish();
    const auto probe = real::Run(
        {"ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0", Output("cover.jpg")});
    EXPECT_EQ(probe.output, "160,120\n");
}

TEST_F(PublicationTest, Publish_DrawsThePhotoIntoThePortraitsFrame) {
    Publish();
    const auto probe =
        real::Run({"ffprobe", "-v", "error", "-show_entries", "stream=width", "-of", "csv=p=0", Output("author.png")});
    EXPECT_EQ(probe.output, "120\n");
    EXPECT_NE(real::ReadText(Output("author.png")), real::ReadText(kInstall + "/mp4/author_120.png"));
}

TEST_F(PublicationTest, Publish_SignsThePage) {
    Publish();
    const std::string page = real::ReadText(Output("index.html"));
    EXPECT_NE(page.find("\r\n<!-- Kestrum 8."), std::string::npos);
}

TEST_F(PublicationTest, PublishedTwice_GoesToAnotherFolder) {
    Publish();
    Publish();
    EXPECT_TRUE(fs::exists(Package() + ".mp4(1)/config.js"));
}

}  // namespace
}  // namespace kestrum::adapters
