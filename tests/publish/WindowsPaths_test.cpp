// A publication on a desk whose paths and programs are named as on Windows.
#include <gtest/gtest.h>

#include "project/ProjectWorld.h"
#include "publish/frmExportMp4.h"

namespace kestrum {
namespace {

struct WindowsPublication : ::testing::Test {
    WindowsPublication() {
        for (const char* name : {"default.ksp", "mp4/index.html", "mp4/author_120.png"}) {
            fs.Put(world.places.installFolder + u"/" + host::FromUtf8(name), test::InstallFile(name));
        }
        support.packagePath = u"C:\\Users\\Anna\\talks\\deck.ktr";
        support.packageFolder = u"C:\\Users\\Anna\\talks";
        support.workFolder = world.places.temp + u"\\work";
        support.applicationTitle = u"Kestrum";
        fs.Put(support.workFolder + u"\\photo.gif", "own photo");
        fs.Put(support.workFolder + u"\\project.ksp", test::ProjectText(test::Item("One", "0"), "00:10"));
        project.g_Project.Load(support.workFolder + u"\\project.ksp");
        sim::Package package;
        package.lengthMs = 10000;
        package.width = 1280;
        package.height = 720;
        world.ksLib.Put(support.packagePath, package);
        world.processes.programs[u"ffmpeg"].effect = [this](const std::vector<String>& arguments) {
            fs.WriteFile(arguments.back(), fs.FileExists(u"media.mp4") ? "a picture" : "");
            return std::nullopt;
        };
        world.processes.programs[u"mp4GetKeyFrame"].effect = [this](const std::vector<String>& arguments) {
            fs.WriteFile(arguments.at(1), "0.000000\n");
            return std::nullopt;
        };
    }

    void Publish() {
        world.presenter.Click(u"frmExportMp4", u"cmdPublish");
        world.box.Answer(host::BoxAnswer::No);
        forms.Get<frmExportMp4>(c).ShowModal();
    }

    sim::World world{sim::PathStyle::Windows};
    sim::FileSystem& fs = world.fs;
    support::State support;
    ui::Forms forms{world.presenter, world.loop};
    support::Context base{world.host(), forms, support};
    project::State project{base};
    project::Context projectContext{base, project};
    publish::State published;
    publish::Context c{projectContext, published};
};

TEST_F(WindowsPublication, Publish_LeavesAPageBesideThePackage) {
    Publish();
    EXPECT_EQ(fs.ListFolder(u"C:\\Users\\Anna\\talks\\deck.ktr.mp4"),
              (std::vector<String>{u"author.png", u"config.js", u"cover.jpg", u"index.html", u"media.mp4",
                                   u"ques_config.js"}));
    EXPECT_EQ(fs.Bytes(u"C:\\Users\\Anna\\talks\\deck.ktr.mp4\\cover.jpg"), "a picture");
    EXPECT_EQ(published.publishedPage, u"C:\\Users\\Anna\\talks\\deck.ktr.mp4\\index.html");
    EXPECT_EQ(published.failure, u"");
}

TEST_F(WindowsPublication, APhotoThatIsNamedWithAPath_ComesFromTheScratchFolderAllTheSame) {
    fs.Put(u"C:\\Users\\Anna\\photo.gif", "somebody's passport");
    project.g_Project.photo = u"../../../../photo.gif";
    Publish();
    EXPECT_EQ(fs.Bytes(u"C:\\Users\\Anna\\talks\\deck.ktr.mp4\\author.png"), "own photo");
}

}  // namespace
}  // namespace kestrum
