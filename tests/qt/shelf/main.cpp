// Shows one form of the product on the display that is set, over the scripted world, until it is ended: for a look at
// it with the eyes of an assistive program, or of a person: form_shelf NAME [dark]. "form_shelf" alone lists the names.
#include <iostream>

#include "adapters/qt/Look.h"
#include "adapters/qt/QtApplication.h"
#include "adapters/qt/QtMessageBox.h"
#include "adapters/qt/QtPresenter.h"
#include "adapters/sim/World.h"
#include "addin/Session.h"
#include "linux/RecordingTrace.h"
#include "qt/FormShelf.h"
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

/// What the forms look at: devices, a recording of two minutes, the language file.
void Furnish(sim::World& world) {
    for (const char* name : {"res.xml", "default.ksp"}) {
        world.fs.Put(world.places.installFolder + u"/" + host::FromUtf8(name), test::InstallFile(name));
    }
    world.ksLib.videoDevices = u"Camera##0";
    world.ksLib.audioDevices = u"Built-in##0_&&_Desk microphone##0";
    world.ksLib.audioVolume = 60;
    world.ksLib.MixerSet(0, 1);
    world.processes.programs[u"editor"].durationMs = 60000;
    sim::Package package;
    package.lengthMs = 2 * 60000;
    package.width = 1280;
    package.height = 720;
    world.ksLib.Put(u"/home/anna/waves.ktr", package);
}

void FillLabel(ui::Form& form, StringView name, const String& text) {
    if (auto* label = dynamic_cast<ui::Label*>(form.FindControl(name))) label->SetCaption(text);
}

/// What the program fills in before it shows the form.
void Fill(ui::Form& form) {
    if (auto* card = dynamic_cast<frmRecorded*>(&form)) {
        RecordedLecture lecture{u"/home/anna/waves.ktr", 2 * 60000, 60000, 7, {}};
        for (int i = 0; i < 300; ++i) lecture.sound.Add(75);
        return card->ShowLecture(lecture);
    }
    if (auto* line = dynamic_cast<frmAdvice*>(&form)) return line->ShowLine(u"Continues 0:20 of Monday.");
    if (auto* notice = dynamic_cast<frmNotice*>(&form)) return notice->ShowNotice({false, false, u"Desk microphone"});
    if (auto* status = dynamic_cast<frmStatus*>(&form)) return status->ShowText(u"Preparing the recording ...");
    if (auto* tool = dynamic_cast<frmExecCmd*>(&form)) tool->InitCmd(u"editor", {}, false);
    form.Load();
    if (form.Caption().empty()) form.SetCaption(u"Kestrum");
    FillLabel(form, u"lMsg", u"The recording has no sound.");
    for (ui::Control* control : form.Controls()) {
        if (auto* link = dynamic_cast<ui::Link*>(control)) link->SetCaption(u"https://example.org/help");
    }
    form.SetPlace({ui::StartPosition::CentreScreen, 0, 0, form.Place().width, form.Place().height});
    form.Show();
}

/// As on a desktop that is dark.
void DarkenDesktop() {
    QApplication::setPalette(QPalette(QColor(0x20, 0x20, 0x20)));
    qt::ApplyLook(*qApp);
}

int Run(int argc, char** argv) {
    qt::QtApplication application(argc, argv);
    if (argc > 2) DarkenDesktop();
    platform::RecordingTrace trace;
    qt::QtEventLoop loop{trace};
    qt::QtPresenter presenter{loop};
    qt::QtMessageBox box{loop, u"Kestrum for PowerPoint"};
    sim::World world;
    Furnish(world);
    host::Host host = world.HostWith({.loop = &loop, .box = &box, .presenter = &presenter});
    Session session(host);
    session.devices.g_AudioLevel = 60;
    session.support.packagePath = u"/home/anna/waves.ktr";
    session.recording.g_EncoderPollTimer = loop.StartTimer(u"recording", 3000, host::TimerReentry::Skipped, [] {});
    session.recording.g_RecordStartTick = loop.TickCount();
    test::NoPage page;
    test::ForEachForm(session.c, page, [&](ui::Form& form) {
        const std::string name = host::ToUtf8(form.Name());
        if (argc < 2) std::cout << name << std::endl;
        if (argc >= 2 && name == argv[1]) Fill(form);
    });
    if (argc >= 2) loop.RunUntil([] { return false; });
    return 0;
}

}  // namespace
}  // namespace kestrum

int main(int argc, char** argv) {
    return kestrum::Run(argc, argv);
}
