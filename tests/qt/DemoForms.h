// Forms made for the tests, with every kind of control.
#pragma once

#include "ui/Forms.h"

namespace kestrum::qt {

struct DemoContext {
    ui::Forms& forms;
};

/// A dialog like those that publish: fields, a group, a progress bar, a row of buttons.
class DemoDialog : public ui::Form {
  public:
    explicit DemoDialog(const DemoContext& c) : Form(c.forms, u"DemoDialog") {
        SetCaption(u"Publish as MP4 — 发布讲座");
        cmdPublish.SetCaption(u"Publish");
        cmdPublish.SetDefault(true);
        cmdCancel.SetCaption(u"Exit");
        cmdCancel.SetCancel(true);
        lQuality.SetCaption(u"Quality:");
        lTitle.SetCaption(u"Title:");
        lBitrate.SetCaption(u"Bitrate:");
        lUnit.SetCaption(u"kbps");
        lPath.SetCaption(
            u"Path: /home/lecturer/Documents/Lectures/2026/Introduction to Signal Processing/week 07/lecture 讲座 & "
            u"notes.ktr.mp4");
        Frame1.SetCaption(u"Webcam & sound");
        chkKeep.SetCaption(u"Keep the ratio & size");
        optA.SetCaption(u"top-right");
        optB.SetCaption(u"bottom-right");
        lVolume.SetCaption(u"Volume:");
        lNotes.SetCaption(u"Notes:");
        txtNotes.SetMultiLine(true);
        meter.SetLevel(60);
        txtBitrate.SetMaxLength(5);
        txtBitrate.SetText(u"1200");
        for (const char16_t* item : {u"Default", u"High", u"Custom"}) cmbQuality.AddItem(item);
        cmbQuality.SetListIndex(0);
        optA.SetValue(true);
        progress.SetValue(40);
        lLink.SetCaption(u"http://localhost/help");
        cmdPublish.onClick = [this] { log += u"publish "; };
        cmdCancel.onClick = [this] {
            log += u"exit ";
            Unload();
        };
        lLink.onClick = [this] { log += u"link "; };
        txtBitrate.onLostFocus = [this] {
            log += u"left ";
            if (txtBitrate.Text().empty()) txtBitrate.SetText(u"300");
        };
        txtTitle.onEnter = [this] { log += u"entered "; };
        slider.onChange = [this] { log += u"slid "; };
        chkKeep.onClick = [this] { log += u"keep "; };
        cmbQuality.onClick = [this] { log += u"quality "; };
        SetLayout(ui::Column(
            {ui::Field(lTitle, txtTitle), ui::Field(lQuality, cmbQuality), ui::Field(lBitrate, txtBitrate, {lUnit}),
             ui::Group(Frame1, {chkKeep, ui::Row({optA, optB}), ui::Field(lVolume, slider), meter}),
             ui::Field(lNotes, txtNotes), lPath, lLink, progress, ui::Buttons({cmdPublish, cmdCancel})}));
    }

    ui::Label lTitle{*this, u"lTitle"}, lQuality{*this, u"lQuality"}, lBitrate{*this, u"lBitrate"},
        lUnit{*this, u"lUnit"}, lPath{*this, u"lPath"}, lVolume{*this, u"lVolume"}, lNotes{*this, u"lNotes"};
    ui::TextBox txtTitle{*this, u"txtTitle"}, txtBitrate{*this, u"txtBitrate"}, txtNotes{*this, u"txtNotes"};
    ui::ComboBox cmbQuality{*this, u"cmbQuality"};
    ui::Frame Frame1{*this, u"Frame1"};
    ui::CheckBox chkKeep{*this, u"chkKeep"};
    ui::OptionButton optA{*this, u"optA"}, optB{*this, u"optB"};
    ui::Slider slider{*this, u"slider"};
    ui::LevelMeter meter{*this, u"meter"};
    ui::Link lLink{*this, u"lLink"};
    ui::ProgressBar progress{*this, u"progress"};
    ui::CommandButton cmdPublish{*this, u"cmdPublish"}, cmdCancel{*this, u"cmdCancel"};

    String log;
    bool refuses = false;

  protected:
    bool OnQueryUnload(ui::CloseReason reason) override { return reason == ui::CloseReason::Code || !refuses; }
};

/// A line of text above everything, like the recorder's notices.
class DemoNotice : public ui::Form {
  public:
    explicit DemoNotice(const DemoContext& c) : Form(c.forms, u"DemoNotice") {
        ui::WindowStyle style;
        style.topmost = style.borderless = style.layered = style.excludedFromCapture = true;
        style.activates = false;
        SetStyle(style);
        SetPlace({ui::StartPosition::CentreHorizontally, 0, 284, 0, 0});
        lStatus.SetCaption(u"Starting Slide Show ... 正在启动幻灯片放映");
        SetLayout(ui::Row({lStatus}));
    }

    ui::Label lStatus{*this, u"lStatus"};
};

/// A bare cover of a part of the screen.
class DemoMask : public ui::Form {
  public:
    explicit DemoMask(const DemoContext& c) : Form(c.forms, u"DemoMask") {
        ui::WindowStyle style;
        style.topmost = style.borderless = style.layered = style.excludedFromCapture = true;
        style.activates = false;
        style.opacity = 150;
        SetStyle(style);
        SetBounds(3, 5, 7, 400);
    }
};

}  // namespace kestrum::qt
