// The guard sequence in front of the commands: nothing runs twice, nothing runs without what it works on, and no
// scratch folder stays behind.
#include "addin/dsrImagePowerPoint.h"
#include "project/modProject.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

// A command that got past the entrance while a recording runs (from a menu tree, or with markers that cannot be read)
// would take the recording's project from under it.
void dsrImagePowerPoint::RunGuarded(const Guard& guard, const std::function<void()>& work) {
    if ((guard.countsAsBusy && CommandBusy) || m_c.recording.g_Recording) return;
    addin::CommandScope scope(m_c, guard.countsAsBusy ? &CommandBusy : nullptr);
    try {
        if ((this->*guard.opening)(scope, guard)) work();
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(m_c, error.Description());
    }
}

bool dsrImagePowerPoint::Locate(addin::CommandScope& scope, const Guard& guard) {
    if (!modProject::LocateProject(m_c)) return false;
    scope.OwnFolder();
    if (!guard.refusesNetwork || !m_c.host.fs.IsNetworkPath(m_c.support.packagePath)) return true;
    scope.DeleteFolder();
    modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmCommon", u"msgNetZip",
                                                     u"This lecture lies on a network share. Please copy the "
                                                     u"presentation and its recording to this computer first!"));
    return false;
}

bool dsrImagePowerPoint::IsWithoutMedia() {
    const String& package = m_c.support.packagePath;
    return !m_c.host.fs.FileExists(package) || m_c.host.ksLib.IsEmptyProject(package) != 0;
}

bool dsrImagePowerPoint::OpenForCommand(addin::CommandScope& scope, const Guard& guard) {
    if (!Locate(scope, guard)) return false;
    if (IsWithoutMedia()) {
        scope.DeleteFolder();
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgNoMedia",
                                                         u"Nothing has been recorded for this presentation yet!"));
        return false;
    }
    bool continued = false;
    return modProject::OpenProject(m_c, false, continued) && Confirm(continued, guard);
}

// Settings need no media: a presentation that was never recorded gets its project now.
bool dsrImagePowerPoint::OpenForSettings(addin::CommandScope& scope, const Guard& guard) {
    return Locate(scope, guard) && OpenOrMake(!m_c.host.fs.FileExists(m_c.support.packagePath), guard);
}

// Without media the preferences of the moment count, so an empty project is made anew.
bool dsrImagePowerPoint::OpenForDevices(addin::CommandScope& scope, const Guard& guard) {
    return Locate(scope, guard) && OpenOrMake(IsWithoutMedia(), guard);
}

bool dsrImagePowerPoint::OpenOrMake(bool isNew, const Guard& guard) {
    if (m_c.support.packagePath.empty()) return true;  // no lecture at hand: the preferences alone
    bool continued = false;
    return modProject::OpenProject(m_c, isNew, continued) && Confirm(continued, guard);
}

bool dsrImagePowerPoint::Confirm(bool continued, const Guard& guard) {
    return !continued || modMsgBox::MsgBox(m_c, guard.question, host::BoxButtons::OkCancel, u"") == host::BoxAnswer::Ok;
}

}  // namespace kestrum
