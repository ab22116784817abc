// A publication from end to end on real files: the dialog without a screen, the real package, worker and helper
// programs of the build's install folder.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "Places.h"
#include "adapters/linux/EventLoop.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/LinuxProcesses.h"
#include "adapters/linux/TraceLog.h"
#include "adapters/media/MediaKsLib.h"
#include "adapters/media/MediaOptimize.h"
#include "adapters/sim/World.h"
#include "media/PackageSamples.h"
#include "media/convert/KeyFrameTimes.h"
#include "project/ProjectWorld.h"
#include "publish/frmExportMp4.h"
#include "real/ChildProcess.h"
#include "ui/HeadlessPresenter.h"

namespace kestrum::adapters {

namespace fs = std::filesystem;
using host::FromUtf8;
using host::ToUtf8;

const std::string kInstall = places::kInstall;

/// A lecture of 4 s with a key frame each second, open as a project, in a folder with blanks and Chinese.
class PublicationTest : public testing::Test {
  protected:
    PublicationTest() : m_origin(fs::current_path()) {
        fs::create_directory(Talks());
        fs::create_directory(m_folder / "work");
        media::test::RecordFile(Package());
        real::WriteText(m_folder / "work/project.ksp",
                        test::ProjectText(
                            test::Item("一", "0") + test::Item("Two", "1000") + test::Item("Three", "2500"), "00:04"));
        fs::copy_file(kInstall + "/encfiles/photo.gif", m_folder / "work/photo.gif");
        m_support.packagePath = FromUtf8(Package());
        m_support.workFolder = FromUtf8(m_folder / "work");
        EXPECT_TRUE(m_project.g_Project.Load(m_support.workFolder + u"/project.ksp"));
    }
    /// The dialog leaves the process in the install folder.
    ~PublicationTest() override { fs::current_path(m_origin); }

    std::string Talks() const { return m_folder / "课件 week 1"; }
    std::string Package() const { return Talks() + "/关键帧.ktr"; }
    std::string Output(const std::string& name) const { return Package() + ".mp4/" + name; }

    void Publish() {
        m_presenter.Click(u"frmExportMp4", u"cmdPublish");
        m_world.box.Answer(host::BoxAnswer::No);
        m_forms.Get<frmExportMp4>(m_context).ShowModal();
        EXPECT_EQ(ToUtf8(m_published.failure), "");
    }

    real::TempFolder m_folder;
    fs::path m_origin;
    sim::World m_world;
    platform::TraceLog m_trace;
    platform::EventLoop m_loop{m_trace};
    platform::LinuxFileSystem m_files;
    platform::LinuxProcesses m_processes;
    WorkerLink m_worker{kInstall + "/ksmedia", m_loop};
    MediaKsLib m_library{m_worker};
    MediaOptimize m_optimize{FromUtf8(kInstall + "/ksmedia"), m_library};
    host::Host m_host = m_world.HostWith({.loop = &m_loop,
                                          .fs = &m_files,
                                          .processes = &m_processes,
                                          .ksLib = &m_library,
                                          .ksOptimize = &m_optimize,
                                          .trace = &m_trace,
                                          .installFolder = FromUtf8(kInstall)});
    ui::HeadlessPresenter m_presenter{m_loop};
    ui::Forms m_forms{m_presenter, m_loop};
    support::State m_support;
    support::Context m_base{m_host, m_forms, m_support};
    project::State m_project{m_base};
    publish::State m_published;
    publish::Context m_context{project::Context{m_base, m_project}, m_published};
};

}  // namespace kestrum::adapters
