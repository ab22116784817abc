#include "support/modLanguage.h"

#include "SupportWorld.h"

namespace kestrum {
namespace {

using modLanguage::ApplyLanguage;
using modLanguage::GetResString;

class modLanguageTest : public SupportTest {};

TEST_F(modLanguageTest, Lookup_FindsByTheNamesOfSectionAndEntry_WhateverTheElements) {
    Language(
        "<section name=\"frmCommon\"><x name=\"a\">A</x><y name=\"b\">B</y></section>"
        "<other name=\"frmPPT\"><z name=\"c\">C</z></other>");
    EXPECT_EQ(GetResString(c, u"frmCommon", u"b", u""), u"B");
    EXPECT_EQ(GetResString(c, u"frmPPT", u"c", u""), u"C");
}

TEST_F(modLanguageTest, Lookup_InTheWrongSectionOrLetterCase_GivesTheDefault) {
    Language("<s name=\"frmCommon\"><e name=\"msgNoMedia\">x</e></s><s name=\"frmPPT\"/>");
    EXPECT_EQ(GetResString(c, u"frmPPT", u"msgNoMedia", u"No media"), u"No media");
    EXPECT_EQ(GetResString(c, u"frmCommon", u"MsgNoMedia", u"No media"), u"No media");
    EXPECT_EQ(GetResString(c, u"frmcommon", u"msgNoMedia", u""), u"");
}

TEST_F(modLanguageTest, Lookup_TakesTheFirstOfTwo) {
    Language("<s name=\"a\"><e name=\"k\">1</e><e name=\"k\">2</e></s><s name=\"a\"><e name=\"k2\">3</e></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u""), u"1");
    EXPECT_EQ(GetResString(c, u"a", u"k2", u"default"), u"default") << "only the first section of a name is searched";
}

TEST_F(modLanguageTest, AnEntryWithAnEmptyText_IsEmptyAndNotTheDefault) {
    Language("<s name=\"a\"><e name=\"k\"></e><e name=\"k2\"/></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u"default"), u"");
    EXPECT_EQ(GetResString(c, u"a", u"k2", u"default"), u"");
}

TEST_F(modLanguageTest, BackslashN_IsALineBreak_InTheFileOnly) {
    Language("<s name=\"a\"><e name=\"k\">one\\ntwo</e></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u""), u"one\r\ntwo");
    EXPECT_EQ(GetResString(c, u"a", u"missing", u"C:\\new"), u"C:\\new");
}

TEST_F(modLanguageTest, TheProductsName_ReplacesItsMark_InFileAndDefault) {
    Language("<s name=\"a\"><e name=\"k\">%p and %p</e></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u""), u"Kestrum and Kestrum");
    EXPECT_EQ(GetResString(c, u"a", u"missing", u"Upgrade %p!"), u"Upgrade Kestrum!");
}

TEST_F(modLanguageTest, WithoutAFile_DefaultsComeBack_AndItIsTriedOnce) {
    EXPECT_EQ(GetResString(c, u"frmCommon", u"k", u"%p!"), u"Kestrum!");
    EXPECT_EQ(GetResString(c, u"frmCommon", u"k", u""), u"");
    EXPECT_EQ(world.faults.CountOf(u"fs.ReadFile"), 1);
}

TEST_F(modLanguageTest, ABrokenFile_GivesDefaults) {
    world.fs.Put(u"/opt/kestrum/res.xml", "<res><s name=\"a\"><e name=\"k\">x</e></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u"default"), u"default");
}

TEST_F(modLanguageTest, TheFile_IsReadOnce) {
    Language("<s name=\"a\"><e name=\"k\">x</e></s>");
    GetResString(c, u"a", u"k", u"");
    Language("<s name=\"a\"><e name=\"k\">y</e></s>");
    EXPECT_EQ(GetResString(c, u"a", u"k", u""), u"x");
}

class frmCaptions : public ui::Form {
  public:
    explicit frmCaptions(const support::Context& context) : Form(context.forms, u"frmCaptions") {
        SetCaption(u"design");
        for (ui::CaptionedControl* control : std::initializer_list<ui::CaptionedControl*>{
                 &lText, &cmdGo, &chkBox, &optOne, &fraBox, &lLink, &mnuLine, &mnuOpen}) {
            control->SetCaption(u"design");
        }
        mnuLine.SetCaption(u"-");
        txtName.SetText(u"design");
        Toolbar1.AddButton(u"Play", u"design");
        Toolbar1.AddButton(u"Stop", u"design");
    }
    ui::Label lText{*this, u"lText"};
    ui::CommandButton cmdGo{*this, u"cmdGo"};
    ui::CheckBox chkBox{*this, u"chkBox"};
    ui::OptionButton optOne{*this, u"optOne"};
    ui::Frame fraBox{*this, u"fraBox"};
    ui::Link lLink{*this, u"lLink"};
    ui::Menu mnuLine{*this, u"mnuLine"};
    ui::Menu mnuOpen{*this, u"mnuOpen"};
    ui::TextBox txtName{*this, u"txtName"};
    ui::Toolbar Toolbar1{*this, u"Toolbar1"};
};

TEST_F(modLanguageTest, ApplyLanguage_CaptionsTheFormAndEachCaptionedControl) {
    Language(
        "<s name=\"frmCaptions\"><e name=\"frmCaptions\">Title</e><e name=\"lText\">Text</e>"
        "<e name=\"cmdGo\">Go</e><e name=\"chkBox\">Box</e><e name=\"optOne\">One</e><e name=\"fraBox\">Frame</e>"
        "<e name=\"mnuOpen\">Open</e><e name=\"mnuLine\">never</e><e name=\"lLink\">never</e>"
        "<e name=\"txtName\">never</e><e name=\"ToolbarPlay\">Play it</e></s>");
    auto& form = forms.Get<frmCaptions>(c);
    ApplyLanguage(c, form);
    EXPECT_EQ(form.Caption(), u"Title");
    EXPECT_EQ(form.lText.Caption(), u"Text");
    EXPECT_EQ(form.cmdGo.Caption(), u"Go");
    EXPECT_EQ(form.chkBox.Caption(), u"Box");
    EXPECT_EQ(form.optOne.Caption(), u"One");
    EXPECT_EQ(form.fraBox.Caption(), u"Frame");
    EXPECT_EQ(form.mnuOpen.Caption(), u"Open");
    EXPECT_EQ(form.mnuLine.Caption(), u"-");
    EXPECT_EQ(form.lLink.Caption(), u"design");
    EXPECT_EQ(form.txtName.Text(), u"design");
    EXPECT_EQ(form.Toolbar1.Buttons()[0].caption, u"Play it");
    EXPECT_EQ(form.Toolbar1.Buttons()[1].caption, u"");
}

TEST_F(modLanguageTest, ApplyLanguage_WithoutAnEntry_WipesTheCaption) {
    auto& form = forms.Get<frmCaptions>(c);
    ApplyLanguage(c, form);
    EXPECT_EQ(form.Caption(), u"");
    EXPECT_EQ(form.lText.Caption(), u"");
    EXPECT_EQ(form.mnuLine.Caption(), u"-");
}

}  // namespace
}  // namespace kestrum
