// The guard sequence in front of the commands, and the commands themselves.
#include <algorithm>

#include "addin/dsrImagePowerPoint.h"
#include "devices/frmConfig.h"
#include "devices/frmDevice.h"
#include "display/modResolution.h"
#include "project/modProject.h"
#include "publish/frmExportMp4.h"
#include "recording/modCapture.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

/// What holds for the time of a command: it is busy, and its work folder is gone afterwards.
class CommandScope {
  public:
    CommandScope(const addin::Context& c, bool& busy) : m_c(c), m_busy(busy) { m_busy = true; }
    ~CommandScope() {
        if (!m_c.support.workFolder.empty()) modProject::DeleteWorkFolder(m_c);
        m_busy = false;
    }
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

  private:
    const addin::Context& m_c;
    bool& m_busy;
};

}  // namespace

void dsrImagePowerPoint::RunGuarded(Opening opening, const String& question, const std::function<void()>& work) {
    if (CommandBusy) return;
    CommandScope scope(m_c, CommandBusy);
    try {
        if ((this->*opening)(question)) work();
    } catch (const host::Error& error) {
        modMsgBox::MsgBox(m_c, error.Description());
    }
}

bool dsrImagePowerPoint::OpenForCommand(const String& question) {
    if (!modProject::LocateProject(m_c)) return false;
    const String& package = m_c.support.packagePath;
    if (!m_c.host.fs.FileExists(package) || m_c.host.ksLib.IsEmptyProject(package) != 0) {
        if (!m_c.support.workFolder.empty()) modProject::DeleteWorkFolder(m_c);
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgNoMedia",
                                                         u"Nothing has been recorded for this presentation yet!"));
        return false;
    }
    bool continued = false;
    if (!modProject::OpenProject(m_c, false, continued)) return false;
    return Confirm(continued, question);
}

// Settings need no media: a presentation that was never recorded gets its project now.
bool dsrImagePowerPoint::OpenForSettings(const String& question) {
    if (!modProject::LocateProject(m_c)) return false;
    return OpenOrMake(!m_c.host.fs.FileExists(m_c.support.packagePath), question);
}

// Without media the preferences of the moment count, so an empty project is made anew.
bool dsrImagePowerPoint::OpenForDevices(const String& question) {
    if (!modProject::LocateProject(m_c)) return false;
    const String& package = m_c.support.packagePath;
    return OpenOrMake(!m_c.host.fs.FileExists(package) || m_c.host.ksLib.IsEmptyProject(package) != 0, question);
}

bool dsrImagePowerPoint::OpenOrMake(bool isNew, const String& question) {
    if (m_c.support.packagePath.empty()) return true;  // no lecture at hand: the preferences alone
    bool continued = false;
    return modProject::OpenProject(m_c, isNew, continued) && Confirm(continued, question);
}

bool dsrImagePowerPoint::Confirm(bool continued, const String& question) {
    return !continued || modMsgBox::MsgBox(m_c, question, host::BoxButtons::OkCancel, u"") == host::BoxAnswer::Ok;
}

void dsrImagePowerPoint::Configure() {
    RunGuarded(&dsrImagePowerPoint::OpenForSettings, u"Continue opening configure?",
               [this] { m_c.forms.Get<frmConfig>(m_c).ShowModal(); });
}

void dsrImagePowerPoint::ConfigureDevices() {
    RunGuarded(&dsrImagePowerPoint::OpenForDevices, u"Continue opening device settings?",
               [this] { m_c.forms.Get<frmDevice>(m_c).ShowModal(); });
}

// The display belongs to no lecture: nothing is opened for it.
void dsrImagePowerPoint::ChangeResolution() {
    modResolution::ChangeResolution(m_c);
}

void dsrImagePowerPoint::PublishToMp4() {
    RunGuarded(&dsrImagePowerPoint::OpenForCommand, u"Continue publishing to MP4 format?", [this] {
        if (Mp4IsTooBig()) {
            modMsgBox::MsgBox(m_c,
                              modLanguage::GetResString(m_c, u"frmExportMp4", u"msgMp4TooBig",
                                                        u"The recording is too long for an MP4 file of this size!"));
            return;
        }
        m_c.forms.Get<frmExportMp4>(m_c).ShowModal();
    });
}

// Rates in kbit/s, each to the nearest whole. The output is never taken for more than five times the source's rate.
bool dsrImagePowerPoint::Mp4IsTooBig() {
    constexpr double kBitsPerByte = 8, kKilobitsPerPixel = 0.00153;
    constexpr std::int32_t kMostTimesSource = 5;
    const String& package = m_c.support.packagePath;
    std::int32_t length = m_c.host.ksLib.GetLength(package), width = 0, height = 0;
    m_c.host.ksLib.GetFileHeaderDim(package, width, height);
    auto size = static_cast<double>(m_c.host.fs.FileSize(package));
    std::int32_t limit = ToInt32(Div(static_cast<double>(modCapture::kLargestPackage), length) * kBitsPerByte);
    std::int32_t estimate = ToInt32(width * kKilobitsPerPixel * height);
    std::int32_t rate = ToInt32(Div(size, length) * kBitsPerByte);
    std::int32_t most = ToInt32(std::int64_t{kMostTimesSource} * rate);
    return std::min(estimate, most) > limit;
}

}  // namespace kestrum
