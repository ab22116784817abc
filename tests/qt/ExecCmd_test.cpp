// The window of the process runner on a real display, with a real tool behind it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QScreen>
#include <filesystem>
#include <fstream>

#include "Places.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/LinuxProcesses.h"
#include "adapters/qt/QtMessageBox.h"
#include "adapters/qt/QtPresenter.h"
#include "adapters/sim/World.h"
#include "linux/RecordingTrace.h"
#include "qt/Screen.h"
#include "real/ChildProcess.h"
#include "support/frmExecCmd.h"

namespace kestrum::qt {
namespace {

class ExecCmdTest : public testing::Test {
  protected:
    String Tool(const std::string& body) {
        const std::filesystem::path path = folder.Path() / "a tool 工具";
        std::ofstream(path) << "#!/bin/bash\n" << body << "\n";
        chmod(path.c_str(), 0755);
        return host::FromUtf8(path.string());
    }
    /// The whole screen, for whoever wants to look.
    void KeepScreen() {
        const std::string pictures = std::string(places::kInstall) + "/../screenshots";
        std::filesystem::create_directories(pictures);
        EXPECT_TRUE(
            QGuiApplication::primaryScreen()->grabWindow(0).save(QString::fromStdString(pictures + "/frmExecCmd.png")));
    }

    Screen& screen = Screen::Get();
    real::TempFolder folder;
    sim::World world;
    platform::RecordingTrace trace;
    platform::LinuxFileSystem fs;
    platform::LinuxProcesses processes;
    QtEventLoop loop{trace};
    QtPresenter qtPresenter{loop};
    QtMessageBox box{loop, u"Kestrum"};
    host::Host realHost = world.HostWith({.loop = &loop,
                                          .fs = &fs,
                                          .processes = &processes,
                                          .box = &box,
                                          .presenter = &qtPresenter,
                                          .installFolder = host::FromUtf8(std::string(places::kSource) + "/install")});
    support::State state;
    ui::Forms forms{qtPresenter, loop};
    support::Context c{realHost, forms, state};
};

TEST_F(ExecCmdTest, Window_StandsWhileTheToolRuns_CannotBeClosed_AndGoesWithIt) {
    auto& form = forms.Get<frmExecCmd>(c);
    form.InitCmd(Tool("touch up; sleep 4"), {}, false);
    const auto start = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    bool looked = false;
    const auto look = loop.StartTimer(u"look", 50, host::TimerReentry::Skipped, [&] {
        FormWindow* window = qtPresenter.Find(form);
        if (looked || window == nullptr || !std::filesystem::exists(folder.Path() / "up")) return;
        looked = true;
        EXPECT_TRUE(window->isVisible());
        EXPECT_TRUE(window->isModal());
        window->close();
        EXPECT_TRUE(window->isVisible()) << "an editor would lose its work";
        EXPECT_TRUE(window->windowTitle().length() > 0);
        const QRect place = window->geometry();
        EXPECT_TRUE(QRect(0, 0, Screen::kWidth, Screen::kHeight).contains(place));
        KeepScreen();
    });
    form.ShowModal();
    std::filesystem::current_path(start);
    EXPECT_TRUE(looked);
    EXPECT_EQ(qtPresenter.Find(form), nullptr);
}

}  // namespace
}  // namespace kestrum::qt
