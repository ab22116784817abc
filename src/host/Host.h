// The bundle of ports that travels through the program. Plain references: the owner (an executable or a test) keeps
// every port alive for as long as the session.
#pragma once

#include "host/IApplication.h"
#include "host/IEventLoop.h"
#include "host/IFileDialog.h"
#include "host/IFileSystem.h"
#include "host/IFmtConvert.h"
#include "host/IFormPresenter.h"
#include "host/IInputHooks.h"
#include "host/IKsEditorControl.h"
#include "host/IKsHook.h"
#include "host/IKsLib.h"
#include "host/IKsOptimize.h"
#include "host/IMessageBox.h"
#include "host/IMonitors.h"
#include "host/IPower.h"
#include "host/IProcesses.h"
#include "host/IRecSystemAudio.h"
#include "host/IScip2.h"
#include "host/ISettingsStore.h"
#include "host/IShellFolders.h"
#include "host/ITrace.h"
#include "host/IWindows.h"

namespace kestrum::host {

struct Host {
    IApplication& app;
    IEventLoop& loop;
    IFileSystem& fs;
    IMonitors& monitors;
    IInputHooks& hooks;
    IWindows& windows;
    IProcesses& processes;
    IShellFolders& shell;
    ISettingsStore& settings;
    IPower& power;
    IMessageBox& box;
    IFileDialog& fileDialog;
    IFormPresenter& presenter;
    IKsLib& ksLib;
    IKsOptimize& ksOptimize;
    IKsHook& ksHook;
    IFmtConvert& fmtConvert;
    IRecSystemAudio& recSystemAudio;
    IKsEditorControl& ksEditorControl;
    IScip2& scip2;
    ITrace& trace;
    /// The install folder: default.ksp, res.xml, encfiles, template, mp4 and the helper programs.
    String installFolder;
};

}  // namespace kestrum::host
