// What a publication says and what it keeps to itself: titles come out letter by letter, whatever they hold; notes,
// user names and paths of the lecturer's machine come out nowhere.
#include <algorithm>
#include <map>
#include <sstream>

#include "PublicationFixture.h"

namespace kestrum::adapters {
namespace {

using Strings = std::vector<std::string>;

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '&') {
            escaped += "&amp;";
        } else if (letter == '<') {
            escaped += "&lt;";
        } else {
            escaped += letter;
        }
    }
    return escaped;
}

/// A GIF picture with a comment in it.
std::string WithGifComment(const std::string& gif, const std::string& comment) {
    const std::size_t end = gif.rfind('\x3B');
    return gif.substr(0, end) + "\x21\xFE" + static_cast<char>(comment.size()) + comment + std::string(1, '\0') +
           '\x3B';
}

class PublicationPrivacyTest : public PublicationTest {
  protected:
    void OpenProject(const std::string& text) {
        real::WriteText(m_folder / "work/project.ksp", text);
        ASSERT_TRUE(m_project.g_Project.Load(m_support.workFolder + u"/project.ksp"));
    }

    /// The published page's titles as a browser's JSON reader sees them, one a line.
    std::string TitlesOnThePage() const {
        return real::Run({"python3", "-c",
                          "import json,sys\n"
                          "t=open(sys.argv[1],'rb').read()\n"
                          "assert all(b<128 for b in t)\n"
                          "for e in json.loads(t[len(b'var config = '):])['index']:\n"
                          "  sys.stdout.buffer.write((e['title']+'\\n').encode('utf-8'))\n",
                          Output("config.js")})
            .output;
    }

    std::string TitlesInTheMovie() const {
        return real::Run({"ffprobe", "-v", "error", "-show_entries", "chapter_tags=title", "-of", "default=nw=1:nk=1",
                          Output("media.mp4")})
            .output;
    }

    /// Every published file, its bytes by its name.
    std::map<std::string, std::string> Published() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(Package() + ".mp4"))
            if (entry.is_regular_file()) files[entry.path().string()] = real::ReadText(entry.path().string());
        return files;
    }
};

TEST_F(PublicationPrivacyTest, Titles_ChangeNothingButTheirOwnText) {
    const Strings titles = {"\"quoted\" 'twice' \\ back",
                            "<b>bold</b> & <img src=x onerror=alert(1)>",
                            "</script><script>alert(1)</script>",
                            "line\xE2\x80\xA8separators\xE2\x80\xA9here",
                            "emoji \xF0\x9F\x98\x80 \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x8F\xAB",
                            "\xD9\x85\xD8\xAD\xD8\xA7\xD8\xB6\xD8\xB1\xD8\xA9",
                            [] {
                                std::string text;
                                for (int i = 0; i < 5000; ++i) text += "\xE9\x95\xBF";
                                return text;
                            }()};
    std::string items;
    std::string wanted;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        items += test::Item(Escaped(titles[i]), std::to_string(500 * i));
        wanted += titles[i] + "\n";
    }
    OpenProject(test::ProjectText(items, "00:04"));
    Publish();
    EXPECT_TRUE(TitlesOnThePage() == wanted) << TitlesOnThePage().substr(0, 600);
    EXPECT_TRUE(TitlesInTheMovie() == wanted) << TitlesInTheMovie().substr(0, 600);
    EXPECT_EQ(real::ReadText(Output("config.js")).find("</script"), std::string::npos);
}

TEST_F(PublicationPrivacyTest, ChaptersAndPage_HaveTheSameEntries) {
    OpenProject(test::ProjectText(test::Item("One", "0") + test::Item("...Two", "1000") +
                                      test::Item("A file", "-1", "/home/anna/x.pdf") + test::Item("Three", "2500"),
                                  "00:04"));
    Publish();
    EXPECT_EQ(TitlesOnThePage(), "One\nTwo\nThree\n");
    EXPECT_EQ(TitlesInTheMovie(), "One\nTwo\nThree\n");
}

TEST_F(PublicationPrivacyTest, WhatIsPrivate_IsInNoPublishedFile) {
    const std::string user = "secretuser";
    const real::ScopedEnv name("USER", user);
    const real::ScopedEnv home("HOME", m_folder / user);
    std::string text = test::ProjectText(test::Item("Public title", "0") +
                                             test::Item("SECRET inserted", "-1", "file:///home/secretuser/SECRET.pdf") +
                                             test::Item("Two", "2000"),
                                         "00:04");
    for (const char* field : {"manager", "company", "category", "keywords", "comments"}) {
        const std::string open = "<" + std::string(field) + ">";
        text = test::ReplacedOnce(text, open + "</", open + "SECRET " + field + "</");
    }
    text = test::ReplacedOnce(text, "<author></author>", "<author>Public Author</author>");
    OpenProject(text);
    // What else a package holds: notes of slides, titles of hidden ones, pictures with comments of their makers.
    media::WriteStored(Package(), {{media::kProjectFileName, media::test::AsBytes(text)},
                                   {media::kIndexTextName, media::test::AsBytes("SECRET notes, SECRET hidden slide")}});
    const std::string photo = real::ReadText(kInstall + "/encfiles/photo.gif");
    real::WriteText(m_folder / "work/photo.gif", WithGifComment(photo, "SECRET maker"));
    real::WriteText(Talks() + "/关键帧.vtt", "WEBVTT\n\nNOTE SECRET remark\n\n00:01.000 --> 00:02.000\nspoken words\n");
    Publish();
    const auto files = Published();
    EXPECT_GT(files.size(), 8u);
    for (const auto& [path, bytes] : files)
        for (const std::string& secret :
             {std::string("SECRET"), user, std::string("课件"), m_folder.Path().string(), kInstall})
            EXPECT_EQ(bytes.find(secret), std::string::npos) << secret << " is in " << path;
    const std::string config = real::ReadText(Output("config.js"));
    EXPECT_NE(config.find("Public Author"), std::string::npos);
    EXPECT_NE(config.find("Public title"), std::string::npos);
    EXPECT_NE(real::ReadText(Output("captions.js")).find("spoken words"), std::string::npos)
        << real::ReadText(Output("captions.js")) << ToUtf8(publish::FindCaptions(m_context).sentence);
}

TEST_F(PublicationPrivacyTest, MovieAndPictures_CarryNoTagsButTheChapters) {
    Publish();
    const auto tags = [](const std::string& file) {
        return real::Run({"ffprobe", "-v", "error", "-show_entries", "format_tags:stream_tags", "-of",
                          "default=nw=1:nk=0", file})
            .output;
    };
    std::istringstream movie(tags(Output("media.mp4")));
    for (std::string line; std::getline(movie, line);) {
        const bool technical = line.starts_with("TAG:major_brand=") || line.starts_with("TAG:minor_version=") ||
                               line.starts_with("TAG:compatible_brands=") || line.starts_with("TAG:encoder=Lavf") ||
                               line.starts_with("TAG:language=") || line.starts_with("TAG:handler_name=") ||
                               line.starts_with("TAG:vendor_id=");
        EXPECT_TRUE(technical) << line;
    }
    EXPECT_EQ(tags(Output("author.png")), "");
    EXPECT_EQ(tags(Output("cover.jpg")), "");
}

}  // namespace
}  // namespace kestrum::adapters
