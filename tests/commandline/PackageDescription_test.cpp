#include "apps/commandline/PackageDescription.h"

#include <gtest/gtest.h>

#include "adapters/sim/PackageInspector.h"
#include "support/JSON.h"

namespace kestrum::app {
namespace {

constexpr const char* kProject = R"(<kestrum ver="8.0"><project><abstract><title>Light &amp; lenses</title>)"
                                 R"(<author>Anna</author></abstract><index duration="00:09" type="OL">)"
                                 R"(<item><title>One</title><recdate>2026/1/2 10:00:00</recdate><pos>0</pos></item>)"
                                 R"(<item><title>Link</title><recdate>x</recdate><pos>-1</pos><url>a.html</url></item>)"
                                 R"(<item><title>关键帧</title><recdate>y</recdate><pos>4200</pos></item>)"
                                 R"(</index></project></kestrum>)";

class PackageDescriptionTest : public testing::Test {
  protected:
    PackageDescriptionTest() {
        sim::Package package;
        package.lengthMs = 9000;
        package.width = 1920;
        package.height = 1080;
        package.keyFrames = {0, 4100};
        package.stored["project"] = kProject;
        package.stored["photo"] = "GIF89a";
        m_world.ksLib.Put(m_path, package);
    }
    String FailureOf(const String& path) {
        try {
            Describe(m_context, m_inspector, path);
        } catch (const host::Error& error) {
            return error.Description();
        }
        return u"";
    }

    sim::World m_world;
    sim::PackageInspector m_inspector{m_world};
    ui::Forms m_forms{m_world.presenter, m_world.loop};
    support::State m_state;
    support::Context m_context{m_world.host(), m_forms, m_state};
    const String m_path = u"/home/anna/lecture.ktr";
};

TEST_F(PackageDescriptionTest, TellsProjectMediaAndIndex) {
    const PackageDescription description = Describe(m_context, m_inspector, m_path);
    EXPECT_EQ(description.title, u"Light & lenses");
    EXPECT_EQ(description.author, u"Anna");
    EXPECT_EQ(description.durationMs, 9000);
    EXPECT_EQ(description.width, 1920);
    ASSERT_EQ(description.index.size(), 3u);
    EXPECT_TRUE(description.index[0].keyFrame);
    EXPECT_EQ(description.index[1].url, u"a.html");
    EXPECT_EQ(description.index[2].title, u"关键帧");
    EXPECT_FALSE(description.index[2].keyFrame);
    ASSERT_EQ(description.storedFiles.size(), 2u);
    EXPECT_EQ(description.storedFiles[0].name, u"project.ksp");
}

TEST_F(PackageDescriptionTest, LeavesNoScratchFolderAndThePackageAsItWas) {
    const std::string before = m_world.fs.ReadFile(m_path);
    const auto temp = m_world.shell.Environment(u"temp");
    Describe(m_context, m_inspector, m_path);
    EXPECT_EQ(m_world.fs.ReadFile(m_path), before);
    EXPECT_TRUE(m_world.fs.ListFolder(temp).empty());
}

TEST_F(PackageDescriptionTest, Json_NamesTheFieldsInOrder) {
    const String json = JSON::ToJsonText(ToJson(Describe(m_context, m_inspector, m_path)));
    EXPECT_EQ(json.find(u"{\"title\":\"Light & lenses\",\"author\":\"Anna\",\"duration_ms\":9000,\"width\":1920,"
                        u"\"height\":1080,\"stored_files\":[{\"name\":\"project.ksp\",\"size\":"),
              0u);
    EXPECT_NE(json.find(u"{\"pos_ms\":-1,\"title\":\"Link\",\"date\":\"x\",\"url\":\"a.html\",\"key_frame\":false}"),
              String::npos);
}

TEST_F(PackageDescriptionTest, FailuresAreSentencesThatNameTheFile) {
    EXPECT_EQ(FailureOf(u"/home/anna/none.ktr"), u"There is no package \"/home/anna/none.ktr\".");
    m_world.fs.WriteFile(u"/home/anna/letter.ktr", "Dear students");
    EXPECT_EQ(FailureOf(u"/home/anna/letter.ktr"), u"\"/home/anna/letter.ktr\" is not a Kestrum package.");
}

}  // namespace
}  // namespace kestrum::app
