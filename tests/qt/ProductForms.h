// The product's own forms on a real display, over the scripted world with the installed language file.
#pragma once

#include <gtest/gtest.h>

#include <QScreen>
#include <filesystem>

#include "Places.h"
#include "adapters/qt/QtMessageBox.h"
#include "adapters/qt/QtPresenter.h"
#include "adapters/qt/QtText.h"
#include "publish/PublishWorld.h"
#include "qt/Screen.h"
#include "recording/Context.h"

namespace kestrum::qt {

class ProductFormsTest : public testing::Test, protected test::PublishWorld {
  protected:
    ProductFormsTest() {
        world.fs.Put(InInstall(u"res.xml"), test::InstallFile("res.xml"));
        world.monitors.SetSingle(Screen::kWidth, Screen::kHeight);
    }
    ~ProductFormsTest() override { EXPECT_TRUE(trace.lines.empty()); }

    FormWindow& WindowOf(const ui::Form& form) { return *qtPresenter.Find(form); }
    bool PumpUntil(const std::function<bool()>& done) { return Screen::PumpUntil(loop, done); }
    void Settle() {
        for (int i = 0; i < 5; ++i) loop.DoEvents();
    }
    template <class F>
    F& Shown(F& form) {
        form.Show();
        form.Refresh();
        Settle();
        return form;
    }
    /// A picture of the window as it is on the screen.
    void Keep(const ui::Form& form, const std::string& variant = {}) {
        const std::string folder = std::string(places::kInstall) + "/../screenshots";
        std::filesystem::create_directories(folder);
        const QString name = QString::fromStdString(folder + "/") + ToQt(form.Name()) +
                             QString::fromStdString(variant) + QStringLiteral(".png");
        EXPECT_TRUE(WindowOf(form).grab().save(name));
    }
    /// What a person sees at a place of the screen.
    static QColor OnScreen(const QPoint& place) {
        return QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1).toImage().pixelColor(0, 0);
    }
    QRect DisplayRect() const { return {0, 0, Screen::kWidth, Screen::kHeight}; }

    template <class WidgetType>
    WidgetType* WidgetWithText(const ui::Form& form, const QString& text) {
        for (auto* widget : WindowOf(form).findChildren<WidgetType*>()) {
            if (widget->text() == text) return widget;
        }
        return nullptr;
    }

    Screen& screen = Screen::Get();
    platform::RecordingTrace trace;
    QtEventLoop loop{trace};
    QtPresenter qtPresenter{loop};
    QtMessageBox box{loop, u"Kestrum for PowerPoint"};
    host::Host realHost = world.HostWith({.loop = &loop, .box = &box, .presenter = &qtPresenter});
    ui::Forms forms{qtPresenter, loop};
    devices::State devices;
    display::State display;
    recording::State recordingState;
    project::Context projectHere{support::Context{realHost, forms, support}, project};
    publish::Context publishHere{projectHere, published};
    recording::Context recordHere{projectHere, devices, display, recordingState};
};

}  // namespace kestrum::qt
