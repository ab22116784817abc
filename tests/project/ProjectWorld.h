// A scripted desk for the project store: a presentation, its package, a scratch folder, an install folder with the
// files that the product ships.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Places.h"
#include "adapters/sim/World.h"
#include "project/Context.h"
#include "support/modGlobal.h"

namespace kestrum::test {

/// A file of the source tree's install folder.
inline std::string InstallFile(const std::string& name) {
    std::ifstream file(std::string(places::kSource) + "/install/" + name, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

inline std::string ReplacedOnce(std::string text, const std::string& what, const std::string& with) {
    const std::size_t at = text.find(what);
    if (at == std::string::npos) throw std::logic_error("no such text: " + what);
    return text.replace(at, what.size(), with);
}

/// An <item> of a project file; an empty url makes no element.
inline std::string Item(const std::string& title, const std::string& pos, const std::string& url = "") {
    return "<item><title>" + title + "</title><recdate>2024/3/7 09:05:00</recdate><pos>" + pos + "</pos>" +
           (url.empty() ? "" : "<url>" + url + "</url>") + "</item>";
}

/// The template project file with these items and this duration.
inline std::string ProjectText(const std::string& items, const std::string& duration = "01:00") {
    return ReplacedOnce(InstallFile("default.ksp"), R"(<index duration="00:00" type="OL"></index>)",
                        "<index duration=\"" + duration + "\" type=\"OL\">" + items + "</index>");
}

struct ProjectWorld {
    ProjectWorld() {
        for (const char* name : {"default.ksp", "encfiles/photo.gif", "encfiles/ksc.js", "encfiles/index.html",
                                 "template/default/icons/cursor.gif"})
            world.fs.Put(InInstall(host::FromUtf8(name)), InstallFile(name));
        support.packagePath = kPackage;
        support.packageFolder = kFolder;
        support.workFolder = kWork;
        support.g_HostMode = u"PPT";
        support.g_OsVersion = 63;
        support.applicationTitle = u"Kestrum";
        world.fs.PutFolder(kWork);
        world.fs.PutFolder(kFolder);
    }

    static String InInstall(const String& name) { return String(sim::World::kInstallFolder) + u"/" + name; }
    static String InWork(const String& name) { return String(kWork) + u"/" + name; }

    /// The texts of the boxes shown so far.
    std::vector<String> Boxes() const {
        std::vector<String> texts;
        for (const sim::ShownBox& box : world.box.Shown()) texts.push_back(box.text);
        return texts;
    }

    std::vector<String> Titles() const {
        std::vector<String> titles;
        for (const CIndexItem& item : project.g_Project.index) titles.push_back(item.title);
        return titles;
    }

    /// What went wrong and what the user was told, for a failing sweep.
    std::string Story() const {
        std::string story;
        for (const String& call : world.faults.Injected()) story += "failed: " + host::ToUtf8(call) + "\n";
        for (const String& text : Boxes()) story += "told: " + host::ToUtf8(text) + "\n";
        return story;
    }

    /// Writes project.ksp into the scratch folder and loads it.
    bool Load(const std::string& text) {
        world.fs.Put(kProjectFile, text);
        return project.g_Project.Load(kProjectFile);
    }

    /// A sound package of the current generation with this project file.
    sim::Package PutPackage(const std::string& projectText, std::int32_t lengthMs,
                            const std::vector<std::int32_t>& keyFrames) {
        sim::Package package;
        package.formatVersion = 8 * 256;
        package.lengthMs = lengthMs;
        package.width = 1280;
        package.height = 720;
        package.keyFrames = keyFrames;
        package.stored = {{"project", projectText}, {"cursor", "own cursor"}, {"photo", "own photo"}};
        world.ksLib.Put(kPackage, package);
        return package;
    }

    std::string StoredProject() const { return world.ksLib.Get(kPackage)->stored.at("project"); }

    static constexpr char16_t kFolder[] = u"/home/anna/talks";
    static constexpr char16_t kPackage[] = u"/home/anna/talks/deck.ktr";
    static constexpr char16_t kWork[] = u"/tmp/user/scratch";
    static constexpr char16_t kProjectFile[] = u"/tmp/user/scratch/project.ksp";

    sim::World world;
    support::State support;
    ui::Forms forms{world.presenter, world.loop};
    support::Context base{world.host(), forms, support};
    project::State project{base};
    project::Context c{base, project};
};

}  // namespace kestrum::test
