// The background sound: what is heard, under which names it lies, and what the lecture keeps of it.
#include "devices/frmConfigSound.h"

#include "DevicesWorld.h"
#include "project/ProjectWorld.h"
#include "support/modConfig.h"

namespace kestrum {
namespace {

const String kWork = u"/tmp/user/scratch";
const String kMusic = u"/home/anna/music/calm \"sea\".mp3";

/// A page that notes what it is told.
class Page : public host::IPageView {
  public:
    explicit Page(host::IEventLoop& loop) : m_loop(loop) {}
    void OpenPage(const String& file, std::function<void()> onLoaded) override {
        lines.push_back(u"open " + file);
        m_timer = m_loop.StartTimer(u"page", 1, host::TimerReentry::Skipped, [this, loaded = std::move(onLoaded)] {
            const auto run = loaded;
            m_timer.reset();
            run();
        });
    }
    void RunScript(const String& script) override { lines.push_back(script); }
    void ClosePage() override {
        m_timer.reset();
        lines.push_back(u"close");
    }
    std::vector<String> lines;

  private:
    host::IEventLoop& m_loop;
    std::unique_ptr<host::ITimer> m_timer;
};

class frmConfigSoundTest : public DevicesTest {
  protected:
    frmConfigSoundTest() {
        support.packagePath = u"/home/anna/waves.ktr";
        support.workFolder = kWork;
        support.projectFileName = u"project.ksp";
        world.fs.PutFolder(kWork);
        world.fs.Put(kWork + u"/project.ksp", test::InstallFile("default.ksp"));
        world.fs.Put(kMusic, "music");
        EXPECT_TRUE(project.g_Project.Load(kWork + u"/project.ksp"));
    }
    frmConfigSound& Dialog() { return forms.Get<frmConfigSound>(frmConfigSound::Context{c, page}); }
    frmConfigSound& Opened() {
        Dialog().Show();
        world.loop.Advance(1);
        return Dialog();
    }
    void Browse(const std::optional<String>& file) {
        world.fileDialog.answers = {file};
        EXPECT_TRUE(Dialog().Click(u"cmdBrowse"));
    }
    void HaveSound(const String& name) {
        project.g_Project.sound = name;
        world.fs.Put(kWork + u"/" + name, "old");
    }
    bool Has(const String& name) { return world.fs.FileExists(kWork + u"/" + name); }
    Page page{world.loop};
};

TEST_F(frmConfigSoundTest, OpensThePageOfTheLecture_AtItsVolume_InSilence) {
    project.g_Project.soundVolume = u"7";
    Opened();
    EXPECT_EQ(page.lines, (std::vector<String>{u"open " + kWork + u"/index.html", u"setBgsVolume(7)"}));
    EXPECT_EQ(Dialog().sldVolume.Value(), 7);
}

TEST_F(frmConfigSoundTest, SoundOfTheLecture_IsHeardWhenThePageHasLoaded) {
    HaveSound(u"bgsound.mp3");
    Opened();
    EXPECT_EQ(page.lines.at(1), u"setBgsFile(\"tmp_bgsound.mp3\")");
    EXPECT_TRUE(Has(u"tmp_bgsound.mp3"));
}

TEST_F(frmConfigSoundTest, Browse_AsksWhereTheLastOneWas_CopiesAndPlays) {
    modConfig::SaveHexSetting(c, u"configure", u"bgMusic", u"/home/anna/old/last.wma");
    Opened();
    Browse(kMusic);
    const host::FileQuestion& question = world.fileDialog.asked.at(0);
    EXPECT_EQ(question.title, u"Select a background music file");
    EXPECT_EQ(question.filter, u"sound (*.mid, *.mp3, *.wma)|*.mid;*.mp3;*.wma;");
    EXPECT_EQ(question.folder, u"/home/anna/old");
    EXPECT_EQ(modConfig::GetHexSetting(c, u"configure", u"bgMusic", u""), kMusic);
    EXPECT_EQ(world.fs.Bytes(kWork + u"/tmp_calm \"sea\".mp3"), "music");
    EXPECT_EQ(page.lines.back(), u"setBgsFile(\"tmp_calm \\\"sea\\\".mp3\")") << "a name cannot end the script";
    EXPECT_EQ(Dialog().txtSound.Text(), u"calm \"sea\".mp3");
}

TEST_F(frmConfigSoundTest, BrowseWithoutAChoice_ChangesNothing) {
    Opened();
    const auto lines = page.lines;
    Browse(std::nullopt);
    EXPECT_EQ(page.lines, lines);
    EXPECT_EQ(Dialog().txtSound.Text(), u"");
}

TEST_F(frmConfigSoundTest, FileThatCannotBeRead_IsTold) {
    Opened();
    Browse(u"/home/anna/gone.mp3");
    EXPECT_EQ(LastBox(), u"The sound \"/home/anna/gone.mp3\" cannot be read.");
}

TEST_F(frmConfigSoundTest, EachStepOfTheVolume_IsHeard) {
    Opened();
    Dialog().Slide(u"sldVolume", 8);
    Dialog().Slide(u"sldVolume", 9);
    EXPECT_EQ(page.lines.at(page.lines.size() - 2), u"setBgsVolume(8)");
    EXPECT_EQ(page.lines.back(), u"setBgsVolume(9)");
}

TEST_F(frmConfigSoundTest, Save_KeepsTheSoundAsTheLecturesOwn_AndTheFormerGoes) {
    HaveSound(u"bgsound.wma");
    Opened();
    Browse(kMusic);
    Dialog().Slide(u"sldVolume", 5);
    EXPECT_TRUE(Dialog().Click(u"cmdSave"));
    EXPECT_EQ(world.fs.Bytes(kWork + u"/bgsound.mp3"), "music");
    EXPECT_FALSE(Has(u"bgsound.wma"));
    EXPECT_FALSE(Has(u"tmp_calm \"sea\".mp3"));
    EXPECT_EQ(project.g_Project.sound, u"bgsound.mp3");
    EXPECT_EQ(project.g_Project.soundVolume, u"5");
    EXPECT_NE(world.ksLib.Get(support.packagePath)->stored.at("project").find("bgsound.mp3"), std::string::npos);
    EXPECT_FALSE(forms.IsFormLoaded(u"frmConfigSound"));
}

TEST_F(frmConfigSoundTest, SavedWithTheSameSound_ItStays) {
    HaveSound(u"bgsound.mp3");
    Opened().Click(u"cmdSave");
    EXPECT_EQ(world.fs.Bytes(kWork + u"/bgsound.mp3"), "old");
    EXPECT_EQ(project.g_Project.sound, u"bgsound.mp3");
}

TEST_F(frmConfigSoundTest, WithNoneChosen_TheFormerGoes) {
    HaveSound(u"bgsound.mp3");
    Opened();
    EXPECT_TRUE(Dialog().Click(u"cmdNoSound"));
    world.loop.Advance(1);
    EXPECT_EQ(page.lines.back().rfind(u"setBgsVolume", 0), 0u) << "the page is silent again";
    EXPECT_TRUE(Dialog().Click(u"cmdSave"));
    EXPECT_FALSE(Has(u"bgsound.mp3"));
    EXPECT_EQ(project.g_Project.sound, u"");
}

TEST_F(frmConfigSoundTest, SoundThatCannotBeKept_IsTold_AndTheFormerStays) {
    HaveSound(u"bgsound.wma");
    Opened();
    Browse(kMusic);
    world.faults.FailCall(u"fs.CopyFile", 1, sim::Once);
    Dialog().Click(u"cmdSave");
    EXPECT_EQ(LastBox(), u"The sound cannot be copied. The lecture keeps the one it has.");
    EXPECT_TRUE(Has(u"bgsound.wma"));
    EXPECT_EQ(project.g_Project.sound, u"bgsound.wma");
    EXPECT_TRUE(Dialog().IsLoaded());
}

TEST_F(frmConfigSoundTest, Cancelled_LeavesTheLectureAndNoCopy) {
    HaveSound(u"bgsound.mp3");
    Opened();
    Browse(kMusic);
    EXPECT_TRUE(Dialog().PressEscape());
    EXPECT_EQ(page.lines.back(), u"close");
    EXPECT_FALSE(Has(u"tmp_bgsound.mp3"));
    EXPECT_FALSE(Has(u"tmp_calm \"sea\".mp3"));
    EXPECT_TRUE(Has(u"bgsound.mp3"));
    EXPECT_EQ(project.g_Project.sound, u"bgsound.mp3");
}

TEST_F(frmConfigSoundTest, ClosedBeforeThePageHasLoaded_NothingIsPlayed) {
    HaveSound(u"bgsound.mp3");
    Dialog().Show();
    Dialog().PressEscape();
    world.loop.Advance(10);
    EXPECT_EQ(page.lines.back(), u"close");
}

}  // namespace
}  // namespace kestrum
