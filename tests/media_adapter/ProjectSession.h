// One run of the program over the real worker, the real file system and real child processes; the rest is scripted.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Places.h"
#include "adapters/linux/EventLoop.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/LinuxProcesses.h"
#include "adapters/linux/LinuxShellFolders.h"
#include "adapters/linux/TraceLog.h"
#include "adapters/media/MediaKsLib.h"
#include "adapters/sim/World.h"
#include "project/modProject.h"
#include "support/modGlobal.h"

namespace kestrum::adapters {

/// One run of the program: a worker of its own, its own scratch folder, boxes that are taken as read.
struct Session {
    using Titles = std::vector<String>;

    /// Of a project beside no presentation, "week 1 課程.ktr" in `folder`.
    explicit Session(const std::filesystem::path& folder) {
        support.applicationTitle = u"Kestrum";
        support.projectSource = u"KTR";
        support.packagePath = host::FromUtf8((folder / "week 1 課程.ktr").string());
        support.packageFolder = host::FromUtf8(folder.string());
        static int number = 0;
        support.workFolder = host::FromUtf8((folder / ("work" + std::to_string(++number))).string());
    }

    /// Makes it the session of the presentation `deck`, which exists.
    void UsePresentation(const std::filesystem::path& deck) {
        support.projectSource = u"PPT";
        support.workFolder.clear();
        world.app.Open(sim::Deck::Titled(host::FromUtf8(deck.string()), {u"one"}));
        world.fs.Put(host::FromUtf8(deck.string()), "deck");
    }

    bool Open(bool isNew) {
        bool continued = false;
        return modProject::OpenProject(c, isNew, continued);
    }

    Titles IndexTitles() const {
        Titles titles;
        for (const CIndexItem& item : project.g_Project.index) titles.push_back(item.title);
        return titles;
    }

    bool WasTold(StringView part) const {
        for (const sim::ShownBox& box : world.box.Shown())
            if (box.text.find(part) != String::npos) return true;
        return false;
    }

    sim::World world;
    platform::TraceLog trace;
    platform::EventLoop loop{trace};
    platform::LinuxFileSystem fs;
    platform::LinuxProcesses processes;
    platform::LinuxShellFolders shell;
    WorkerLink worker{std::string(places::kInstall) + "/ksmedia", loop};
    MediaKsLib lib{worker};
    ui::HeadlessPresenter presenter{loop};
    host::Host host = world.HostWith({.loop = &loop,
                                      .fs = &fs,
                                      .processes = &processes,
                                      .shell = &shell,
                                      .presenter = &presenter,
                                      .ksLib = &lib,
                                      .trace = &trace,
                                      .installFolder = host::FromUtf8(places::kInstall)});
    support::State support;
    ui::Forms forms{presenter, loop};
    support::Context base{host, forms, support};
    project::State project{base};
    project::Context c{base, project};
};

}  // namespace kestrum::adapters
