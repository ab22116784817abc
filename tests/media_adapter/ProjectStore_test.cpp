// The project store over the real worker and the real file system: what a lecture is worth after each kind of end.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "media_adapter/ProjectSession.h"
#include "project/modKspXml.h"
#include "real/Children.h"
#include "real/PulseServer.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"
#include "support/modGlobal.h"

namespace kestrum::adapters {
namespace {

using namespace kestrum::real;
using Titles = Session::Titles;

constexpr int kWidth = 640, kHeight = 480;
class ProjectStoreTest : public testing::Test {
  protected:
    /// The driver's calls from the start to the running recording, its first entry included.
    static void StartRecording(Session& s, std::int32_t lengthAtStart) {
        const String project = modGlobal::Join(s.c, s.support.workFolder, u"project.ksp");
        ASSERT_NE(s.lib.ksResetAVDevice(), 0);
        String devices;
        ASSERT_EQ(s.lib.ksQueryAudioDevice(devices), 1);
        ASSERT_NE(s.lib.ksSetAudioDevice(u"Microphone"), 0);
        if (s.lib.IsEmptyProject(s.support.packagePath) == 1) s.fs.DeleteFile(s.support.packagePath);
        s.lib.EncoderSetFilename(s.support.packagePath, project,
                                 modGlobal::Join(s.c, s.support.workFolder, u"inteIndex.txt"));
        s.lib.SetCaptureArea(0, 0, kWidth - 1, kHeight - 1);
        s.lib.SetCaptureFrameRate(10);
        s.lib.EncoderInitDevice();
        ASSERT_NE(s.lib.EncoderQueryDevice(), 0);
        ASSERT_NE(s.lib.EncoderStart(0), 0);
        s.project.g_Project.Save(s.support.packagePath + u"._tmp/media.rec.tmp");
        AddEntry(s, u"First 第一", lengthAtStart);
    }

    static void AddEntry(Session& s, const String& title, std::int32_t position) {
        s.project.g_Project.AddIndex(title, ToText(position), u"2026/1/5 9:00:00", u"", u"", u"", false, 0);
        EXPECT_TRUE(s.lib.WriteIndexJournal(modKspXml::JournalText(s.project.g_Project)));
    }

    static void ShowSlide(Session& s, const String& title) {
        s.loop.Sleep(300);
        const std::int32_t position = s.lib.AddKeyFrame();
        ASSERT_GT(position, 0);
        s.project.g_Project.SetDuration(position);
        s.project.g_Project.Save(u"");
        AddEntry(s, title, position);
        s.loop.Sleep(300);
    }

    static void EndRecording(Session& s) {
        s.lib.EncoderStop(1200);
        modGlobal::DeleteFolder(s.c, s.support.packagePath + u"._tmp");
        s.project.g_Project.SetDuration(s.lib.GetLength(s.support.packagePath));
        modProject::SaveProject(s.c);
        modProject::DeleteWorkFolder(s.c);
    }

    XvfbServer m_display{kWidth, kHeight};
    PulseServer m_sound;
    ScopedEnv m_displayEnv = m_display.Use();
    ScopedEnv m_soundEnv = m_sound.Use();
    TempFolder m_folder;
    TestWindow m_window{m_display.Name(), 0, 0, kWidth, kHeight};
};

TEST_F(ProjectStoreTest, TwoRecordings_AreOneIndexWithoutAQuestion) {
    {
        Session s(m_folder.Path());
        ASSERT_TRUE(s.Open(true));
        StartRecording(s, 0);
        ShowSlide(s, u"Second");
        EndRecording(s);
    }
    {
        Session s(m_folder.Path());
        ASSERT_TRUE(s.Open(false));
        EXPECT_EQ(s.IndexTitles(), (Titles{u"First 第一", u"Second"}));
        StartRecording(s, s.lib.GetLength(s.support.packagePath));
        ShowSlide(s, u"Third");
        EndRecording(s);
    }
    Session s(m_folder.Path());
    ASSERT_TRUE(s.Open(false));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"First 第一", u"Second", u"First 第一", u"Third"}));
    EXPECT_EQ(s.project.g_Project.duration(), s.lib.GetLength(s.support.packagePath));
    EXPECT_TRUE(s.world.box.Shown().empty());
}

TEST_F(ProjectStoreTest, KilledWorker_TheFirstOpeningFindsEveryEntryAndSaysSo) {
    {
        Session s(m_folder.Path());
        ASSERT_TRUE(s.Open(true));
        StartRecording(s, 0);
        ShowSlide(s, u"Second\rparagraph");
        ShowSlide(s, u"Third");
        s.loop.Sleep(2000);
        kill(FindChild("ksmedia"), SIGKILL);
        ASSERT_TRUE(WaitFor([&] { return s.lib.EncoderState() == host::encoder_state::kGone; }));
    }
    Session s(m_folder.Path());
    ASSERT_TRUE(s.Open(false));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"First 第一", u"Second\rparagraph", u"Third"}));
    EXPECT_TRUE(s.WasTold(u"The last recording was interrupted."));
    EXPECT_TRUE(s.WasTold(u"3 index entries"));
    EXPECT_FALSE(s.fs.FolderExists(s.support.packagePath + u"._tmp"));
    modProject::DeleteWorkFolder(s.c);

    Session again(m_folder.Path());
    ASSERT_TRUE(again.Open(false));
    EXPECT_EQ(again.IndexTitles(), s.IndexTitles());
    EXPECT_TRUE(again.world.box.Shown().empty()) << "told once";
}

TEST_F(ProjectStoreTest, KilledWorkerWithoutASnapshot_IsRecoveredAndToldToo) {
    {
        Session s(m_folder.Path());
        ASSERT_TRUE(s.Open(true));
        StartRecording(s, 0);
        ShowSlide(s, u"Second");
        modGlobal::DeleteFolder(s.c, s.support.packagePath + u"._tmp");
        s.loop.Sleep(2000);
        kill(FindChild("ksmedia"), SIGKILL);
        ASSERT_TRUE(WaitFor([&] { return s.lib.EncoderState() == host::encoder_state::kGone; }));
    }
    Session s(m_folder.Path());
    ASSERT_TRUE(s.Open(false));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"First 第一", u"Second"}));
    EXPECT_TRUE(s.WasTold(u"The last recording was interrupted."));
}

TEST_F(ProjectStoreTest, WorkerKilledDuringTheEnd_TheIndexOfTheSessionIsKept) {
    {
        Session s(m_folder.Path());
        ASSERT_TRUE(s.Open(true));
        StartRecording(s, 0);
        ShowSlide(s, u"Second");
        s.loop.Sleep(2000);
        kill(FindChild("ksmedia"), SIGKILL);
        EndRecording(s);
    }
    Session s(m_folder.Path());
    ASSERT_TRUE(s.Open(false));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"First 第一", u"Second"}));
}

}  // namespace
}  // namespace kestrum::adapters
