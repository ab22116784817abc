// A scripted desk for publishing: an open project of 1366 by 769 pixels and 10 s, the player's folder, and the two
// helper programs as scripts.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "project/ProjectWorld.h"
#include "publish/frmExportMp4.h"
#include "ui/HeadlessPresenter.h"

namespace kestrum {

namespace test {

struct PublishWorld : ProjectWorld {
    PublishWorld() {
        for (const char* name : {"index.html", "author_120.png"})
            world.fs.Put(InInstall(u"mp4/" + host::FromUtf8(name)), InstallFile(std::string("mp4/") + name));
        world.fs.Put(InWork(u"photo.gif"), "own photo");
        OpenProject(Item("One", "0") + Item("Two", "3000") + Item("Three", "6000"));
        ScriptPrograms("0.000000\n3.000000\n6.000000\n");
    }

    /// Makes this the open project.
    void OpenProject(const std::string& items) {
        EXPECT_TRUE(Load(ProjectText(items, "00:10")));
        package.lengthMs = 10000;
        package.width = 1366;
        package.height = 769;
        PutMedia();
    }

    void PutMedia() { world.ksLib.Put(kPackage, package); }

    void ScriptPrograms(const std::string& keyFrames) {
        world.processes.programs[u"ffmpeg"].effect = [this](const std::vector<String>& arguments) {
            // The movie is named without a folder: it is found only in the current one.
            if (world.fs.FileExists(world.fs.CurrentFolder() + u"/media.mp4"))
                world.fs.Put(world.fs.CurrentFolder() + u"/" + arguments.back(), "a picture");
            return std::nullopt;
        };
        world.processes.programs[u"mp4GetKeyFrame"].effect = [this, keyFrames](const std::vector<String>& arguments) {
            world.fs.Put(arguments.at(1), keyFrames);
            return std::nullopt;
        };
    }

    /// Shows the dialog; the script must close it.
    void ShowDialog() { windows.Get<frmExportMp4>(publishing).ShowModal(); }

    frmExportMp4& Form() { return windows.Get<frmExportMp4>(publishing); }

    /// Presses Publish and answers the question at the end with No.
    void Publish() {
        presenter.Click(u"frmExportMp4", u"cmdPublish");
        world.box.Answer(host::BoxAnswer::No);
        ShowDialog();
    }

    /// Waits until the dialog has ended its work, looks at it, then leaves it.
    void LookAndLeave(std::function<void(frmExportMp4&)> look) {
        presenter.Do(u"frmExportMp4", u"look", [look](ui::Form& form) { look(static_cast<frmExportMp4&>(form)); })
            .When([](ui::Form& form) {
                auto& dialog = static_cast<frmExportMp4&>(form);
                return !dialog.cmdPublish.Enabled() && dialog.cmdCancel.Caption() == u"Exit";
            })
            .Click(u"frmExportMp4", u"cmdCancel");
    }

    bool HasOutput(const String& name) { return world.fs.FileExists(OutputFile(name)); }
    String Output(const String& name) { return host::FromUtf8(world.fs.Bytes(OutputFile(name))); }
    static String OutputFile(const String& name) { return String(kOutput) + u"/" + name; }

    static constexpr char16_t kOutput[] = u"/home/anna/talks/deck.ktr.mp4";

    sim::Package package;
    ui::HeadlessPresenter presenter{world.loop};
    ui::Forms windows{presenter, world.loop};
    publish::State published;
    project::Context projectContext{support::Context{world.host(), windows, support}, project};
    publish::Context publishing{projectContext, published};
};

}  // namespace test
}  // namespace kestrum
