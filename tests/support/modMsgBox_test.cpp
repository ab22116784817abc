#include "support/modMsgBox.h"

#include "SupportWorld.h"
#include "support/frmMsgBox.h"
#include "support/frmMsgLink.h"

namespace kestrum {
namespace {

using namespace modMsgBox;

class modMsgBoxTest : public SupportTest {
  protected:
    frmMsgBox& Box() { return forms.Get<frmMsgBox>(c); }
    std::int32_t Ask(const MsgBoxRequest& request) { return ShowMsgBox(c, request, checked); }
    static MsgBoxRequest Request(std::int32_t buttons) {
        MsgBoxRequest request;
        request.text = u"Really?";
        request.buttons = buttons;
        return request;
    }
    bool checked = false;
};

TEST_F(modMsgBoxTest, AMessageWithBackslashN_ShowsTwoLines) {
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) { EXPECT_EQ(Box().lMsg.Caption(), u"one\r\ntwo"); });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    MsgBoxRequest request;
    request.text = u"one\\ntwo";
    EXPECT_EQ(Ask(request), kOk);
}

TEST_F(modMsgBoxTest, OkBox_ShowsOneButton) {
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) {
        EXPECT_TRUE(Box().cmdOK.Visible());
        EXPECT_FALSE(Box().cmdCancel.Visible());
        EXPECT_FALSE(Box().chkPrompt.Visible());
        EXPECT_EQ(Box().cmdOK.Caption(), u"OK");
        EXPECT_EQ(Box().Caption(), u"Kestrum");
        EXPECT_TRUE(state.msgBox.active);
    });
    world.presenter.PressEnter(u"frmMsgBox");
    EXPECT_EQ(Ask(Request(kButtonsOk)), kOk);
    EXPECT_FALSE(state.msgBox.active);
}

TEST_F(modMsgBoxTest, OkCancelBox_AnswersOneOrTwo) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    EXPECT_EQ(Ask(Request(kButtonsOkCancel)), 1);
    world.presenter.PressEscape(u"frmMsgBox");
    EXPECT_EQ(Ask(Request(kButtonsOkCancel)), 2);
}

TEST_F(modMsgBoxTest, YesNoBox_AnswersSixOrSeven_WithCaptionsOfTheLanguage) {
    Language("<s name=\"frmMsgBox\"><e name=\"cmdNo\">Nein</e></s>");
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) {
        EXPECT_EQ(Box().cmdOK.Caption(), u"Yes");
        EXPECT_EQ(Box().cmdCancel.Caption(), u"Nein");
    });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    EXPECT_EQ(Ask(Request(kButtonsYesNo)), 6);
    world.presenter.Click(u"frmMsgBox", u"cmdCancel");
    EXPECT_EQ(Ask(Request(kButtonsYesNo)), 7);
}

TEST_F(modMsgBoxTest, AWidthOfZero_Gives400By120_WhateverTheHeight) {
    const auto place = [&](std::int32_t width, std::int32_t height) {
        ui::WindowPlace seen;
        world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form& form) { seen = form.Place(); });
        world.presenter.Click(u"frmMsgBox", u"cmdOK");
        MsgBoxRequest request = Request(kButtonsOk);
        request.width = width;
        request.height = height;
        Ask(request);
        EXPECT_EQ(seen.start, ui::StartPosition::CentreScreen);
        return std::pair(seen.width, seen.height);
    };
    EXPECT_EQ(place(0, 300), std::pair(400, 120));
    EXPECT_EQ(place(500, 300), std::pair(500, 300));
}

TEST_F(modMsgBoxTest, TheBox_EndsByAButtonOnly) {
    world.presenter.UserClosesInVain(u"frmMsgBox");
    world.presenter.Do(u"frmMsgBox", u"unload", [&](ui::Form& form) { EXPECT_FALSE(form.Unload()); });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    EXPECT_EQ(Ask(Request(kButtonsOk)), kOk);
}

TEST_F(modMsgBoxTest, TheCheckBox_GivesItsState) {
    MsgBoxRequest request = Request(kButtonsOk);
    request.showCheck = true;
    request.checkCaption = u"Not again";
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) { EXPECT_EQ(Box().chkPrompt.Caption(), u"Not again"); });
    world.presenter.Click(u"frmMsgBox", u"chkPrompt").Click(u"frmMsgBox", u"cmdOK");
    Ask(request);
    EXPECT_TRUE(checked);
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Ask(request);
    EXPECT_FALSE(checked) << "the next box starts with an empty check box";
}

TEST_F(modMsgBoxTest, ATopmostBox_IsLayeredAtFullOpacity) {
    MsgBoxRequest request = Request(kButtonsOk);
    request.topmost = true;
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form& form) {
        EXPECT_TRUE(form.Style().topmost);
        EXPECT_TRUE(form.Style().layered);
        EXPECT_EQ(form.Style().opacity, 255);
    });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Ask(request);
}

TEST_F(modMsgBoxTest, ASecondBoxWhileOneIsUp_ReusesIt_AndBothCallsReturnItsAnswer) {
    std::int32_t inner = 0;
    bool innerChecked = false;
    world.presenter.Do(u"frmMsgBox", u"second", [&](ui::Form& form) {
        world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form& again) {
            EXPECT_EQ(&again, &form);
            EXPECT_EQ(Box().lMsg.Caption(), u"Second");
        });
        world.presenter.Click(u"frmMsgBox", u"cmdCancel");
        MsgBoxRequest second = Request(kButtonsYesNo);
        second.text = u"Second";
        inner = ShowMsgBox(c, second, innerChecked);
    });
    EXPECT_EQ(Ask(Request(kButtonsYesNo)), kNo);
    EXPECT_EQ(inner, kNo);
    EXPECT_FALSE(forms.IsFormLoaded(u"frmMsgBox"));
}

TEST_F(modMsgBoxTest, ABoxThatIsNotModal_ReturnsAtOnce) {
    MsgBoxRequest request = Request(kButtonsYesNo);
    request.modal = false;
    EXPECT_EQ(Ask(request), kOk);
    EXPECT_TRUE(Box().IsVisible());
    Box().Click(u"cmdOK");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmMsgBox"));
}

TEST_F(modMsgBoxTest, LinkBox_OpensItsLinkAndStaysUp) {
    world.presenter.Do(u"frmMsgLink", u"look", [&](ui::Form& form) {
        auto& box = static_cast<frmMsgLink&>(form);
        EXPECT_EQ(box.Caption(), u"Kestrum");
        EXPECT_EQ(box.lMsg.Caption(), u"Your video is here:");
        EXPECT_EQ(box.lLink.Caption(), u"https://video.example.org/1");
        EXPECT_EQ(box.cmdOK.Caption(), u"OK");
        EXPECT_EQ(box.Place().width, 320);
        EXPECT_FALSE(box.lLink.Hot());
        box.PointAt(&box.lLink);
        EXPECT_TRUE(box.lLink.Hot());
        box.PointAt(nullptr);
        EXPECT_FALSE(box.lLink.Hot());
        box.PointAt(&box.lLink);
        box.PointAt(&box.lMsg);
        EXPECT_FALSE(box.lLink.Hot());
        box.PointAt(&box.lLink);
        box.PointAt(&box.Picture1);
        EXPECT_FALSE(box.lLink.Hot());
    });
    world.presenter.Click(u"frmMsgLink", u"lLink").Click(u"frmMsgLink", u"cmdOK");
    ShowMsgLink(c, u"Your video is here:", u"https://video.example.org/1", u"", 320, 140);
    EXPECT_EQ(world.processes.opened, std::vector<String>{u"https://video.example.org/1"});
}

TEST_F(modMsgBoxTest, PlatformBox_WithoutATitle_HasTheApplicationsTitle) {
    world.box.Answer(host::BoxAnswer::Retry);
    EXPECT_EQ(MsgBox(c, u"Again?", host::BoxButtons::RetryCancel, u""), host::BoxAnswer::Retry);
    EXPECT_EQ(world.box.Shown().back().title, u"Kestrum for PowerPoint");
    MsgBox(c, u"Note", host::BoxButtons::Ok, u"Title");
    EXPECT_EQ(world.box.Shown().back().title, u"Title");
}

}  // namespace
}  // namespace kestrum
