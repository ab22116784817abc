// How the commands get in front of the user where the host is Office: the ribbon's file, the entry of the Quick Access
// Toolbar, the toolbar button and the menu tree of an old office.
#include <set>

#include "recording/LectureDesk.h"
#include "support/modXml.h"

namespace kestrum {
namespace {

using Texts = std::vector<std::string>;
using host::CommandBarControlType;
using test::InstallFile;

struct OfficeDesk : ::testing::Test {
    static constexpr char16_t kCustomUI[] = u"C:\\Users\\Anna\\AppData\\Local\\Microsoft\\Office\\PowerPoint.officeUI";
    static constexpr char16_t kOlderCustomUI[] = u"C:\\Users\\Anna\\AppData\\Local\\Microsoft\\Office\\PowerPoint.qat";

    OfficeDesk() {
        for (const char* name :
             {"default.ksp", "Ribbon.xml", "Ribbon2010.xml", "PowerPoint.officeUI", "PowerPoint.qat"}) {
            world.fs.Put(world.places.installFolder + u"\\" + host::FromUtf8(name), InstallFile(name));
        }
        world.fs.PutFolder(u"C:\\Users\\Anna\\AppData\\Local\\Microsoft\\Office");
    }
    /// An office of this version connects the program.
    void Connect(const String& version) {
        world.app.version = version;
        session.Connect();
    }
    std::string File(const String& path) { return world.fs.ReadFile(path); }
    modXml::Document Xml(const String& path) { return modXml::Document::ParseBytes(File(path)); }
    /// "idQ attribute=value ..." of each entry of the toolbar.
    Texts Toolbar(const String& path) {
        const modXml::Document document = Xml(path);
        Texts lines;
        for (const modXml::Node& control : document.Root().Child(0).Child(0).Child(0).Children()) {
            std::string line = host::ToUtf8(control.Name());
            for (const char16_t* name : {u"idQ", u"visible", u"imageMso", u"getImage"}) {
                if (const auto value = control.Attribute(name)) {
                    line += " " + host::ToUtf8(name) + "=" + host::ToUtf8(*value);
                }
            }
            lines.push_back(line);
        }
        return lines;
    }
    static std::string Customised(const std::string& names, const std::string& controls) {
        return "<mso:customUI " + names + "xmlns:mso=\"http://schemas.microsoft.com/office/2009/07/customui\">" +
               "<mso:ribbon><mso:qat><mso:sharedControls>" + controls +
               "</mso:sharedControls></mso:qat></mso:ribbon></mso:customUI>";
    }
    static constexpr char kOwn[] = "<mso:control idQ=\"mso:FileSave\" visible=\"true\"/>";

    sim::World world{sim::PathStyle::Windows};
    Session session{world.host(), &world.commandBars};
};

// --- the ribbon's file ---------------------------------------------------------------------------------------------

TEST_F(OfficeDesk, Ribbon_OfOffice2010AndLater_CarriesTheProductsNameOnTabAndGroup) {
    for (const char16_t* version : {u"14.0", u"15.0", u"16.0.1"}) {
        Connect(version);
        const auto document = modXml::Document::Parse(session.addIn.IRibbonExtensibility_GetCustomUI(u"any"));
        const modXml::Node tab = document.Root().Child(0).Child(0).Child(0);
        EXPECT_EQ(tab.Name(), u"tab");
        EXPECT_EQ(tab.Attribute(u"label"), u"Kestrum");
        EXPECT_EQ(tab.Child(0).Name(), u"group");
        EXPECT_EQ(tab.Child(0).Attribute(u"label"), u"Kestrum");
        EXPECT_EQ(document.Root().Attribute(u"xmlns"), u"http://schemas.microsoft.com/office/2009/07/customui");
    }
}

TEST_F(OfficeDesk, Ribbon_OfOffice2007_IsTheOlderFile) {
    Connect(u"12.0");
    const auto document = modXml::Document::Parse(session.addIn.IRibbonExtensibility_GetCustomUI(u""));
    EXPECT_EQ(document.Root().Attribute(u"xmlns"), u"http://schemas.microsoft.com/office/2006/01/customui");
}

TEST_F(OfficeDesk, Version13_GetsNoRibbon_AndTheOlderCustomisationFile) {
    Connect(u"13.0");
    EXPECT_TRUE(session.addIn.UseRibbon);
    EXPECT_EQ(session.addIn.IRibbonExtensibility_GetCustomUI(u"any"), u"");
    EXPECT_EQ(session.addIn.CustomUIPath, kOlderCustomUI);
    world.fs.Put(u"C:\\x.qat", Customised("", kOwn));
    session.addIn.PatchCustomUI(u"C:\\x.qat", 13);
    EXPECT_EQ(Toolbar(u"C:\\x.qat").back(), "mso:control idQ=ksp:rec visible=true") << "without any picture";
}

TEST_F(OfficeDesk, Version11_GetsNoRibbon) {
    Connect(u"11.0");
    EXPECT_EQ(session.addIn.IRibbonExtensibility_GetCustomUI(u"any"), u"");
}

TEST_F(OfficeDesk, Ribbon_WhoseFileIsMissingOrBroken_IsEmpty) {
    Connect(u"16.0");
    EXPECT_EQ(session.addIn.GetRibbonXML(u"C:\\none.xml"), u"");
    world.fs.Put(u"C:\\broken.xml", "<customUI><ribbon>");
    EXPECT_EQ(session.addIn.GetRibbonXML(u"C:\\broken.xml"), u"");
}

TEST_F(OfficeDesk, Ribbon_ThatLacksItsGroup_ComesWithWhatItHas) {
    world.fs.Put(u"C:\\poor.xml", "<customUI><ribbon><tabs><tab/></tabs></ribbon></customUI>");
    const String text = session.addIn.GetRibbonXML(u"C:\\poor.xml");
    EXPECT_NE(text.find(u"<tab label=\"Kestrum\""), String::npos);
}

struct RibbonFile : OfficeDesk, ::testing::WithParamInterface<const char*> {
    /// All elements below `node`.
    static void Collect(const modXml::Node& node, std::vector<modXml::Node>& all) {
        for (const modXml::Node& child : node.Children()) {
            all.push_back(child);
            Collect(child, all);
        }
    }
};

TEST_P(RibbonFile, HasOneGroup_WithAButtonForEveryCommand_AndNamesOnlyOurCallbacks) {
    const auto document = modXml::Document::ParseBytes(InstallFile(GetParam()));
    std::vector<modXml::Node> all;
    Collect(document.Root(), all);
    const std::set<String> elements{u"ribbon", u"tabs", u"tab", u"group", u"button", u"menu", u"separator"};
    std::set<String> buttons, ids;
    int groups = 0;
    for (const modXml::Node& node : all) {
        EXPECT_TRUE(elements.count(node.Name())) << host::ToUtf8(node.Name());
        groups += node.Name() == u"group";
        if (const auto id = node.Attribute(u"id")) {
            EXPECT_TRUE(ids.insert(*id).second) << host::ToUtf8(*id);
        }
        if (node.Name() != u"button") continue;
        buttons.insert(node.Attribute(u"id").value());
        EXPECT_EQ(node.Attribute(u"onAction"), u"NotesButton");
        EXPECT_FALSE(node.Attribute(u"label").value_or(u"").empty());
        EXPECT_EQ(node.Attribute(u"label").value().find(u"Kestrum"), String::npos) << "the program gives the name";
        const auto picture = node.Attribute(u"getImage");
        EXPECT_EQ(picture.has_value(), session.addIn.GetImage(*node.Attribute(u"id")).has_value());
        EXPECT_EQ(picture.value_or(u"GetImage"), u"GetImage");
        const bool comesAndGoes = node.Attribute(u"id") == u"mnuChangeRes";
        EXPECT_EQ(node.Attribute(u"getVisible"),
                  comesAndGoes ? std::optional<String>(u"GetChangeResVisible") : std::nullopt);
    }
    EXPECT_EQ(groups, 1);
    EXPECT_EQ(document.Root().Attribute(u"onLoad"), u"Ribbon_onLoad");
    EXPECT_EQ(buttons,
              (std::set<String>{u"rec", u"mnuEdit", u"mnuUpload", u"mnuCompress", u"mnuPreview", u"mnuConfigure",
                                u"mnuAudio", u"mnuKestrum7", u"mnuflash", u"mnuWMV", u"mnuMP4", u"mnuAdvEdit",
                                u"mnuChangeRes", u"mnuDevice", u"mnuYtUpload", u"mnuHelp", u"mnuAbout"}));
}

INSTANTIATE_TEST_SUITE_P(Files, RibbonFile, ::testing::Values("Ribbon.xml", "Ribbon2010.xml"));

TEST_F(OfficeDesk, RibbonsHandle_IsKept) {
    struct Ribbon : host::IRibbonUI {};
    const auto ribbon = std::make_shared<Ribbon>();
    session.addIn.Ribbon_onLoad(ribbon);
    EXPECT_EQ(session.addIn.RibbonUI, ribbon);
}

TEST_F(OfficeDesk, Pictures_ComeFromTheProgramsResources) {
    using addin::PictureKind;
    using addin::PictureResource;
    const std::vector<std::pair<String, PictureResource>> pictures{
        {u"rec", {101, PictureKind::Icon}},   {u"wbk", {101, PictureKind::Bitmap}},
        {u"wst", {102, PictureKind::Bitmap}}, {u"hlp", {103, PictureKind::Bitmap}},
        {u"abt", {104, PictureKind::Bitmap}}, {u"xld", {105, PictureKind::Bitmap}}};
    for (const auto& [id, picture] : pictures) EXPECT_EQ(session.addIn.GetImage(id), picture) << host::ToUtf8(id);
    EXPECT_EQ(session.addIn.GetImage(u"mnuHelp"), std::nullopt);
}

// --- the change of resolution --------------------------------------------------------------------------------------

TEST_F(OfficeDesk, ChangeOfResolution_IsOnOfferOnOneMonitor_InAnotherModeThanTheRecommendedOne) {
    world.monitors.SetSingle(1920, 1080);
    Connect(u"16.0");
    EXPECT_TRUE(session.addIn.GetChangeResVisible());
    ASSERT_GT(session.display.g_RcmdResWidth, 0);
    world.monitors.ChangeMode(0, session.display.g_RcmdResWidth, session.display.g_RcmdResHeight);
    EXPECT_FALSE(session.addIn.GetChangeResVisible());
}

TEST_F(OfficeDesk, ChangeOfResolution_IsNotOnOfferOnTwoMonitors_WhateverTheirModes) {
    world.monitors.SetSingle(1920, 1080);
    world.monitors.AddRight(1280, 720);
    Connect(u"16.0");
    EXPECT_FALSE(session.addIn.GetChangeResVisible());
    world.monitors.ChangeMode(0, 1280, 720);
    EXPECT_FALSE(session.addIn.GetChangeResVisible());
}

TEST_F(OfficeDesk, ChangeOfResolution_StaysOnOffer_WhereNothingIsRecommendedOrKnown) {
    world.monitors.SetSingle(1920, 1080);
    EXPECT_TRUE(session.addIn.GetChangeResVisible()) << "no survey yet";
    world.monitors.all.front().hidesMode = true;
    Connect(u"16.0");
    EXPECT_TRUE(session.addIn.GetChangeResVisible());
}

// --- the customisation file ----------------------------------------------------------------------------------------

TEST_F(OfficeDesk, FirstRun_CopiesTheShippedFile_WhichHoldsTheEntryAlready) {
    Connect(u"16.0");
    EXPECT_EQ(session.addIn.CustomUIPath, kCustomUI);
    EXPECT_EQ(File(kCustomUI), InstallFile("PowerPoint.officeUI")) << "copied, not patched";
    EXPECT_EQ(Toolbar(kCustomUI).back(), "mso:control idQ=ksp:rec visible=true getImage=GetImage");
    EXPECT_EQ(Xml(kCustomUI).Root().Attribute(u"xmlns:ksp"), u"Larkspin5.dsrImagePowerPoint");
}

TEST_F(OfficeDesk, FirstRunOnOffice2007_CopiesTheOlderFile) {
    Connect(u"12.0");
    EXPECT_EQ(File(kOlderCustomUI), InstallFile("PowerPoint.qat"));
    EXPECT_EQ(Toolbar(kOlderCustomUI).back(), "mso:control idQ=ksp:rec visible=true imageMso=PersonaStatusBusy");
    EXPECT_EQ(Xml(kOlderCustomUI).Root().Attribute(u"xmlns:ksp"), u"Larkspin5.dsrImagePowerPoint");
    EXPECT_FALSE(world.fs.FileExists(kCustomUI));
}

TEST_F(OfficeDesk, UsersOwnFile_GetsTheEntryAtItsEnd_AndKeepsEverythingElse) {
    world.fs.Put(kCustomUI, Customised("", kOwn));
    Connect(u"16.0");
    EXPECT_EQ(Toolbar(kCustomUI), (Texts{"mso:control idQ=mso:FileSave visible=true",
                                         "mso:control idQ=ksp:rec visible=true getImage=GetImage"}));
    EXPECT_EQ(Xml(kCustomUI).Root().Attribute(u"xmlns:ksp"), u"Larkspin5.dsrImagePowerPoint");
}

TEST_F(OfficeDesk, UsersOwnFileOfOffice2007_GetsAPictureOfOffice) {
    world.fs.Put(kOlderCustomUI, Customised("", kOwn));
    Connect(u"12.0");
    EXPECT_EQ(Toolbar(kOlderCustomUI).back(), "mso:control idQ=ksp:rec visible=true imageMso=PersonaStatusBusy");
}

TEST_F(OfficeDesk, SecondConnection_FindsTheEntry_AndDoesNotSave) {
    world.fs.Put(kCustomUI, Customised("", kOwn));
    Connect(u"16.0");
    const int writes = world.faults.CountOf(u"fs.WriteFile");
    session.addIn.PatchCustomUI(kCustomUI, 16);
    EXPECT_EQ(world.faults.CountOf(u"fs.WriteFile"), writes);
    EXPECT_EQ(Toolbar(kCustomUI).size(), 2U);
}

TEST_F(OfficeDesk, EntryOfAnOlderVersion_GoesAndTheNewOneComes_InOnePass) {
    const std::string old = "<mso:control idQ=\"x1:rec\" visible=\"true\"/>";
    world.fs.Put(kCustomUI, Customised("xmlns:x1=\"Old.Add-in\" ", old + kOwn));
    Connect(u"16.0");
    EXPECT_EQ(Toolbar(kCustomUI), (Texts{"mso:control idQ=mso:FileSave visible=true",
                                         "mso:control idQ=ksp:rec visible=true getImage=GetImage"}));
    EXPECT_EQ(Xml(kCustomUI).Root().Attribute(u"xmlns:x1"), std::nullopt);
}

TEST_F(OfficeDesk, EntryOfAnOlderVersionBesideTheNewOne_AloneIsRemoved) {
    const std::string both = "<mso:control idQ=\"ksp:rec\" visible=\"true\"/><mso:control idQ=\"x1:rec\"/>";
    world.fs.Put(kCustomUI, Customised("xmlns:x1=\"Old.Add-in\" xmlns:ksp=\"Larkspin5.dsrImagePowerPoint\" ", both));
    Connect(u"16.0");
    EXPECT_EQ(Toolbar(kCustomUI), Texts{"mso:control idQ=ksp:rec visible=true"});
}

TEST_F(OfficeDesk, FileThatCannotBeRead_IsLeftAsItIs) {
    world.fs.Put(kCustomUI, "<mso:customUI");
    Connect(u"16.0");
    session.Disconnect();
    EXPECT_EQ(File(kCustomUI), "<mso:customUI");
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(OfficeDesk, FileThatCustomisesSomethingElse_IsLeftAsItIs) {
    // Its first branch leads to the user's own tab, where an entry of the toolbar would spoil the file for Office.
    const std::string tabs =
        "<mso:customUI xmlns:mso=\"http://schemas.microsoft.com/office/2009/07/customui\"><mso:ribbon><mso:tabs>"
        "<mso:tab id=\"own\"/></mso:tabs></mso:ribbon></mso:customUI>";
    world.fs.Put(kCustomUI, tabs);
    Connect(u"16.0");
    session.Disconnect();
    EXPECT_EQ(File(kCustomUI), tabs);
}

TEST_F(OfficeDesk, LockedFile_CostsTheButtonAlone) {
    world.fs.Put(kCustomUI, Customised("", kOwn));
    world.faults.FailCall(u"fs.WriteFile", 1, sim::ForEver);
    Connect(u"16.0");
    EXPECT_EQ(Toolbar(kCustomUI).size(), 1U);
    EXPECT_FALSE(session.addIn.IRibbonExtensibility_GetCustomUI(u"").empty());
    EXPECT_EQ(world.power.states, std::vector<std::uint32_t>{0x80000003});
}

TEST_F(OfficeDesk, Disconnection_TakesTheEntryOut_SoThatNoDeadButtonStays) {
    world.fs.Put(kCustomUI, Customised("", kOwn));
    Connect(u"16.0");
    session.Disconnect();
    EXPECT_EQ(Toolbar(kCustomUI), Texts{"mso:control idQ=mso:FileSave visible=true"});
    EXPECT_EQ(Xml(kCustomUI).Root().Attribute(u"xmlns:ksp"), std::nullopt);
}

TEST_F(OfficeDesk, LocalDataFolder_EndsAtTheFirstNul) {
    world.shell.special[28] = u"C:\\Users\\Anna\\AppData\\Local" + String(1, u'\0') + u"rest";
    Connect(u"16.0");
    EXPECT_EQ(session.addIn.CustomUIPath, kCustomUI);
}

TEST_F(OfficeDesk, HostThatIsNotOffice_GetsNoCustomisationFile) {
    Session other(world.host());
    other.Connect();
    EXPECT_TRUE(other.addIn.UseRibbon);
    EXPECT_EQ(other.addIn.CustomUIPath, u"");
    other.Disconnect();
    EXPECT_FALSE(world.fs.FileExists(kCustomUI));
}

// --- toolbar button and menu tree ----------------------------------------------------------------------------------

TEST_F(OfficeDesk, OldOffice_GetsTheButtonAndTheMenuTree_AndNoCustomisationFile) {
    Connect(u"11.0");
    EXPECT_EQ(sim::CommandBars::Captions(world.commandBars.standard), Texts{"Kestrum Record"});
    EXPECT_EQ(sim::CommandBars::Captions(world.commandBars.menuBar),
              (Texts{"Kestrum", " Edit Presentation", " Upload", " Compress", " Preview", " Configure", " Publish",
                     "  MP4 format", "  MP3 Audio", "  Kestrum 7", " Advanced", "  Advanced Edit",
                     "  Change Resolution", "  Device", "  YouTube Upload", " Help", " About Kestrum"}));
    EXPECT_EQ(session.addIn.CustomUIPath, u"");
    EXPECT_FALSE(world.fs.FileExists(kOlderCustomUI));
}

TEST_F(OfficeDesk, MenuTree_SpeaksTheLanguageOfTheFile) {
    world.fs.Put(world.places.installFolder + u"\\res.xml",
                 "<resources><section name=\"frmMainBar\"><text name=\"mnuHelp\">Hilfe</text></section></resources>");
    Connect(u"11.0");
    EXPECT_TRUE(world.commandBars.Find(u"Hilfe"));
}

TEST_F(OfficeDesk, OldOffice_ButtonAndEntries_LoadTheAddInOnAClick) {
    Connect(u"11.0");
    const auto button = world.commandBars.Find(u"Kestrum Record");
    ASSERT_TRUE(button);
    EXPECT_EQ(button->tag, u"Kestrum Record");
    EXPECT_EQ(button->onAction, u"!<Larkspin5.dsrImagePowerPoint>");
    EXPECT_EQ(button->face, u"C:\\Program Files\\Kestrum\\pictures\\record_16.png");
    EXPECT_EQ(world.commandBars.Find(u"Kestrum")->tag, u"Kestrum");
    for (const char16_t* caption : {u"Edit Presentation", u"MP4 format", u"About Kestrum"}) {
        EXPECT_EQ(world.commandBars.Find(caption)->onAction, u"!<Larkspin5.dsrImagePowerPoint>");
    }
}

TEST_F(OfficeDesk, OldOffice_ButtonsAndMenusOfEarlierVersions_AreReplaced) {
    sim::CommandBars& bars = world.commandBars;
    for (const char16_t* caption :
         {u"Kestrum Record", u"larkspin6 Record", u"Larkspin Record", u"Open", u"Kestrum Record"}) {
        bars.Put(bars.standard, CommandBarControlType::Button, caption, u"");
    }
    bars.Put(bars.menuBar, CommandBarControlType::Popup, u"File", u"");
    for (const char16_t* tag : {u"Kestrum", u"Larkspin", u"Larkspin6", u"Larkspin3"}) {
        bars.Put(*bars.menuBar.controls.front(), CommandBarControlType::Popup, tag, tag);
    }
    Connect(u"11.0");
    EXPECT_EQ(bars.Captions(bars.standard), (Texts{"Open", "Kestrum Record"}));
    const Texts menu = bars.Captions(bars.menuBar);
    EXPECT_EQ((Texts{menu[0], menu[1], menu[2]}), (Texts{"File", "Kestrum", " Edit Presentation"}));
}

TEST_F(OfficeDesk, Disconnection_OfAnOldOffice_TakesButtonAndMenuAway) {
    sim::CommandBars& bars = world.commandBars;
    Connect(u"11.0");
    bars.Put(bars.standard, CommandBarControlType::Button, u"Larkspin6 Record", u"");
    bars.Put(bars.standard, CommandBarControlType::Button, u"larkspin6 Record", u"");
    bars.Put(bars.menuBar, CommandBarControlType::Popup, u"Six", u"Larkspin6");
    bars.Put(bars.menuBar, CommandBarControlType::Popup, u"Three", u"Larkspin3");
    session.Disconnect();
    EXPECT_EQ(bars.Captions(bars.standard), Texts{"larkspin6 Record"});
    EXPECT_EQ(bars.Captions(bars.menuBar), Texts{"Three"});
}

TEST_F(OfficeDesk, RecordButtonThatCannotBeAdded_IsTold_AndTheMenuComesAllTheSame) {
    world.faults.FailCall(u"bars.PasteFace", 1, sim::Once);
    Connect(u"11.0");
    ASSERT_EQ(world.box.Shown().size(), 1U);
    EXPECT_EQ(world.box.Shown()[0].text, u"Add Kestrum record button error! ");
    EXPECT_EQ(world.box.Shown()[0].title, u"Kestrum Error");
    EXPECT_EQ(sim::CommandBars::Captions(world.commandBars.menuBar).size(), 17U);
    EXPECT_EQ(world.power.states, std::vector<std::uint32_t>{0x80000003});
}

TEST_F(OfficeDesk, PopupThatCannotBeAdded_TakesItsEntriesAlong_AndNoOthers) {
    world.faults.FailCall(u"bars.AddPopup", 3, sim::Once);  // "Advanced"
    Connect(u"11.0");
    const Texts menu = sim::CommandBars::Captions(world.commandBars.menuBar);
    EXPECT_EQ(menu.size(), 12U);
    EXPECT_FALSE(world.commandBars.Find(u"Device"));
    EXPECT_EQ(menu.back(), " About Kestrum");
}

TEST_F(OfficeDesk, AnyFailingCallOfTheBars_LeavesTheProgramConnected) {
    sim::FaultSweep(u"bars.*", [](const auto& arm) {
        sim::World broken(sim::PathStyle::Windows);
        broken.app.version = u"11.0";
        Session ours(broken.host(), &broken.commandBars);
        arm(broken.faults);
        ours.Connect();
        EXPECT_LE(broken.box.Shown().size(), 1U);
        EXPECT_EQ(broken.power.states, std::vector<std::uint32_t>{0x80000003});
        ours.Disconnect();
        EXPECT_EQ(broken.power.states.back(), 0x80000000U);
    });
}

TEST_F(OfficeDesk, OldOffice_ClicksRunTheirCommands) {
    Connect(u"11.0");
    const std::vector<std::pair<String, String>> dialogs{{u"Change Resolution", u"frmChangeRes"},
                                                         {u"About Kestrum", u"frmAbout"}};
    for (const auto& [caption, form] : dialogs) {
        world.presenter.PressEscape(form);
        EXPECT_TRUE(world.commandBars.Click(caption));
    }
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    // Without a presentation every command on a lecture says so.
    for (const char16_t* caption :
         {u"Edit Presentation", u"Upload", u"Compress", u"Preview", u"Configure", u"MP4 format", u"MP3 Audio",
          u"Kestrum 7", u"Advanced Edit", u"Device", u"YouTube Upload"}) {
        const std::size_t before = world.box.Shown().size();
        EXPECT_TRUE(world.commandBars.Click(caption)) << host::ToUtf8(caption);
        EXPECT_EQ(world.box.Shown().size(), before + 1) << host::ToUtf8(caption);
    }
}

TEST_F(OfficeDesk, ClickAfterTheDisconnection_ReachesNobody) {
    Connect(u"11.0");
    const auto button = world.commandBars.Find(u"Kestrum Record");
    session.Disconnect();
    EXPECT_FALSE(button->click);
}

}  // namespace
}  // namespace kestrum
