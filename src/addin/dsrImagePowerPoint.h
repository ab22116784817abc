// The entry object: connects the program to its host, puts the commands in front of the user where the host is Office,
// and holds the commands. Connection and disconnection skip what fails and show nothing; the host sees success in every
// case. Commands pass the guard sequence and report themselves.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "addin/CommandScope.h"
#include "addin/Context.h"
#include "addin/PictureResource.h"
#include "host/ICommandBars.h"
#include "recording/frmViewer.h"

namespace kestrum {

class dsrImagePowerPoint {
  public:
    /// Under which Office knows the program, and the name space of its entry in the customisation file.
    static constexpr StringView kProgId = u"Larkspin5.dsrImagePowerPoint";

    /// `commandBars` is null where the host is not Office: it has neither command bars nor a customisation file, and
    /// its adapter brings the menu.
    dsrImagePowerPoint(const addin::Context& c, host::ICommandBars* commandBars);

    /// `progId` is the add-in's program id, as the host knows it.
    void IDTExtensibility2_OnConnection(host::IApplication& application, const String& progId);
    void IDTExtensibility2_OnDisconnection();
    // Empty for good: a recording in progress ends through the host's own show and close events.
    void IDTExtensibility2_OnStartupComplete() {}
    void IDTExtensibility2_OnAddInsUpdate() {}
    void IDTExtensibility2_OnBeginShutdown() {}

    // --- the ribbon ------------------------------------------------------------------------------------------------

    /// The ribbon's XML for the connected host; empty for one without a file of ours. The id is not looked at.
    String IRibbonExtensibility_GetCustomUI(StringView ribbonId);
    /// The file with the product's name on its tab and group; empty if it cannot be read.
    String GetRibbonXML(const String& path);
    void Ribbon_onLoad(std::shared_ptr<host::IRibbonUI> ribbon) { RibbonUI = std::move(ribbon); }
    std::optional<addin::PictureResource> GetImage(StringView controlId) { return addin::PictureOf(controlId); }
    /// The change of resolution is on offer: one monitor, and another mode than the recommended one.
    bool GetChangeResVisible();
    /// The single entrance of ribbon, menu and command line: refuses a command while a recording is alive or the
    /// sibling program has the project, else runs it. An unknown id does nothing. Re-enters.
    void NotesButton(StringView id);
    /// The ids that NotesButton knows.
    static std::vector<StringView> CommandIds();

    /// Puts the Record button into the user's customisation file unless it is there, and takes an older version's out.
    /// A file that cannot be read or has no Quick Access Toolbar is left as it is.
    void PatchCustomUI(const String& path, std::int16_t major);
    /// Takes the button out again.
    void UnpatchCustomUI(const String& path);

    // --- toolbar button and menu tree, for a host without a ribbon -------------------------------------------------

    void BuildCommandBarSurface();
    void RemoveCommandBarSurface();

    // The events of the menu tree: each runs its command, whatever button it came from.
    void p_ctlBtnRec_Click(host::ICommandBarButton&, bool&) { DoRecord(); }
    void p_menuEdit_Click(host::ICommandBarButton&, bool&) { Edit(); }
    void p_menuExport_Click(host::ICommandBarButton&, bool&) { Upload(); }
    void p_menuCompress_Click(host::ICommandBarButton&, bool&) { Compress(); }
    void p_menuPreview_Click(host::ICommandBarButton&, bool&) { Preview(); }
    void p_menuConfigure_Click(host::ICommandBarButton&, bool&) { Configure(); }
    void p_menuPublish2Flash_Click(host::ICommandBarButton&, bool&) { PublishToFlash(); }
    void p_menuPublish2WMV_Click(host::ICommandBarButton&, bool&) { PublishToWmv(); }
    void p_menuPublish2MP4_Click(host::ICommandBarButton&, bool&) { PublishToMp4(); }
    void p_menuPublish2Mp3_Click(host::ICommandBarButton&, bool&) { PublishToMp3(); }
    void p_menuPublish2Kestrum7_Click(host::ICommandBarButton&, bool&) { PublishToKestrum7(); }
    void p_menuAdvEdit_Click(host::ICommandBarButton&, bool&) { AdvancedEdit(); }
    void p_menuChangeRes_Click(host::ICommandBarButton&, bool&) { ChangeResolution(); }
    void p_menuCfgDevice_Click(host::ICommandBarButton&, bool&) { ConfigureDevices(); }
    void p_menuYtUpload_Click(host::ICommandBarButton&, bool&) { UploadToYouTube(); }
    void p_menuHelp_Click(host::ICommandBarButton&, bool&) { Help(); }
    void p_menuAbout_Click(host::ICommandBarButton&, bool&) { About(); }

    // --- commands --------------------------------------------------------------------------------------------------

    /// The Record command: checks the presentation and asks the host for the show; the show's events do the rest.
    /// Re-enters.
    void DoRecord();
    /// At least one slide is selected; any failure counts as none.
    bool HasSelectedSlide();
    /// The settings of the lecture's template. No surface has an entry for it. Re-enters.
    void ConfigureTemplate();

    /// The user's Office customisation file; empty for a host that has none.
    String CustomUIPath;
    /// Major version of the host.
    std::int16_t OfficeMajor = 0;
    /// OfficeMajor is 12 or above.
    bool UseRibbon = false;
    std::shared_ptr<host::IRibbonUI> RibbonUI;
    /// A command is running: a second click returns at once.
    bool CommandBusy = false;

    /// A recording is asked for and may start; false calls it off. Empty, or must keep its failures to itself.
    std::function<bool()> onRecordPressed;
    /// The show of a recording is about to be run. The same holds.
    std::function<void()> onShowStarts;

    /// The driver form; null before the connection.
    frmViewer* Viewer() const { return m_viewer.get(); }

  private:
    // Connection.
    void ReadOfficeMajor(host::IApplication& application);
    void PutSurfaceUp();
    void TakeSurfaceDown();
    void DisarmStaleMarker(host::IApplication& application);
    bool MayRun(StringView id);

    // The command bars.
    void AddRecordButton();
    void AddMenuTree();
    void AddMenuButton(host::ICommandBarControls& controls, std::size_t entry);
    String OnActionText() const;

    // Record.
    void Record();
    bool IsCommandOpen();
    bool MayRecord();
    bool SetVolumeBefore();
    void StartShow();

    // The guard sequence.
    struct Guard;
    using Opening = bool (dsrImagePowerPoint::*)(addin::CommandScope& scope, const Guard& guard);
    struct Guard {
        /// Asked if an interrupted work goes on.
        String question;
        Opening opening = &dsrImagePowerPoint::OpenForCommand;
        bool refusesNetwork = false;
        bool countsAsBusy = true;
    };
    void RunGuarded(const Guard& guard, const std::function<void()>& work);
    bool Locate(addin::CommandScope& scope, const Guard& guard);
    bool OpenForCommand(addin::CommandScope& scope, const Guard& guard);
    bool OpenForSettings(addin::CommandScope& scope, const Guard& guard);
    bool OpenForDevices(addin::CommandScope& scope, const Guard& guard);
    bool OpenOrMake(bool isNew, const Guard& guard);
    bool IsWithoutMedia();
    bool Confirm(bool continued, const Guard& guard);
    /// True after telling so: a dialog or a tool of the program is up, and there is one of each.
    bool IsToolRunning();

    // The commands.
    struct Command {
        StringView id;
        void (dsrImagePowerPoint::*run)();
    };
    static const std::array<Command, 17> kCommands;
    void Edit();
    void AdvancedEdit();
    void Upload();
    void UploadToYouTube();
    void Compress();
    void Preview();
    void Configure();
    void ConfigureDevices();
    void ChangeResolution();
    void PublishToFlash();
    void PublishToWmv();
    void PublishToMp4();
    void PublishToMp3();
    void PublishToKestrum7();
    void Help();
    void About();
    bool Mp4IsTooBig();
    std::int32_t FirstTooLongForFlash();
    String Tool(const String& baseName);
    void RunTool(const String& baseName, const std::vector<String>& arguments, const String& title);
    void RunUploadTool(const String& verb, const String& title, StringView command);
    void SayNotYet(StringView command);

    addin::Context m_c;
    host::ICommandBars* m_commandBars;
    String m_progId;
    std::unique_ptr<frmViewer> m_viewer;
    /// The clicks of the command bars; they end before the driver form.
    std::vector<std::unique_ptr<host::ISubscription>> m_clicks;
    bool m_recordBusy = false;
};

}  // namespace kestrum
