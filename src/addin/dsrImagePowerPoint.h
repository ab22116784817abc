// The entry object: connects the program to its host, and holds the commands. Connection and disconnection skip what
// fails and show nothing; the host sees success in every case. Commands pass the guard sequence and report themselves.
#pragma once

#include <functional>
#include <memory>

#include "addin/Context.h"
#include "addin/ICommandSurface.h"
#include "recording/frmViewer.h"

namespace kestrum {

class dsrImagePowerPoint {
  public:
    /// `surface` may be null: a host whose adapter brings its own menu.
    dsrImagePowerPoint(const addin::Context& c, addin::ICommandSurface* surface);

    void IDTExtensibility2_OnConnection(host::IApplication& application);
    void IDTExtensibility2_OnDisconnection();
    // Empty for good: a recording in progress ends through the host's own show and close events.
    void IDTExtensibility2_OnStartupComplete() {}
    void IDTExtensibility2_OnAddInsUpdate() {}
    void IDTExtensibility2_OnBeginShutdown() {}

    /// The single entrance of ribbon, menu and command line: refuses a command while a recording is alive or the
    /// sibling program has the project, else runs it. An unknown id does nothing. Re-enters.
    void NotesButton(StringView id);

    void p_ctlBtnRec_Click() { DoRecord(); }
    void p_menuPublish2MP4_Click() { PublishToMp4(); }
    void p_menuConfigure_Click() { Configure(); }
    void p_menuCfgDevice_Click() { ConfigureDevices(); }
    void p_menuChangeRes_Click() { ChangeResolution(); }

    /// The Record command: checks the presentation and asks the host for the show; the show's events do the rest.
    /// Re-enters.
    void DoRecord();
    /// At least one slide is selected; any failure counts as none.
    bool HasSelectedSlide();

    /// Major version of the host.
    std::int16_t OfficeMajor = 0;
    /// OfficeMajor is 12 or above.
    bool UseRibbon = false;
    /// A command is running: a second click returns at once.
    bool CommandBusy = false;

    /// A recording is asked for and may start; false calls it off. Empty, or must keep its failures to itself.
    std::function<bool()> onRecordPressed;
    /// The show of a recording is about to be run. The same holds.
    std::function<void()> onShowStarts;

    /// The driver form; null before the connection.
    frmViewer* Viewer() const { return m_viewer.get(); }

  private:
    void ReadOfficeMajor(host::IApplication& application);
    void DisarmStaleMarker(host::IApplication& application);
    bool MayRun(StringView id);
    void Record();
    bool MayRecord();
    bool SetVolumeBefore();
    void StartShow();
    using Opening = bool (dsrImagePowerPoint::*)(const String& question);
    void RunGuarded(Opening opening, const String& question, const std::function<void()>& work);
    bool OpenForCommand(const String& question);
    bool OpenForSettings(const String& question);
    bool OpenForDevices(const String& question);
    bool OpenOrMake(bool isNew, const String& question);
    bool Confirm(bool continued, const String& question);
    void Configure();
    void ConfigureDevices();
    void ChangeResolution();
    void PublishToMp4();
    bool Mp4IsTooBig();

    addin::Context m_c;
    addin::ICommandSurface* m_surface;
    std::unique_ptr<frmViewer> m_viewer;
    bool m_recordBusy = false;
};

}  // namespace kestrum
