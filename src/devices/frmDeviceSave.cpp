// What frmDevice keeps of a choice.
#include "devices/AudioQuality.h"
#include "devices/PictureSize.h"
#include "devices/frmDevice.h"
#include "project/modProject.h"
#include "support/Numbers.h"
#include "support/modConfig.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

constexpr StringView kNoVideoBitrate = u"96";

/// The order of the list, best first.
StringView BitrateOf(std::int32_t entry) {
    return entry == 0 ? u"96" : entry == 1 ? u"64" : u"32";
}

}  // namespace

void frmDevice::cmdSave_Click() {
    try {
        Store();
    } catch (const host::Error&) {
        modMsgBox::MsgBox(m_c, u"Device Save Error!");
        return;
    }
    Unload();
}

// The order counts: what the lecture takes of the preferences is set before it is stored.
void frmDevice::Store() {
    const bool hasLecture = devices::HasLecture(m_c), isFixed = devices::AudioQualityIsFixed(m_c);
    const String bitrate(BitrateOf(cmbAudioQuality.ListIndex()));
    if (hasLecture && !isFixed) m_c.project.g_Project.audioBitrate = bitrate;
    Save(u"audioDevice", cmbAudioDevice.Text());
    Save(u"videoDevice", cmbVideoDevice.Text());
    Save(chkLowVolDetect.Name(), ToText(chkLowVolDetect.Value()));
    Save(chkRecSystemAudio.Name(), ToText(chkRecSystemAudio.Value()));
    StoreVideo();
    if (!isFixed) Save(u"audioBitrate", bitrate);
    if (hasLecture) modProject::SaveProject(m_c);
}

void frmDevice::StoreVideo() {
    const bool takesVideo = chkVideo.Checked() && m_hasCamera;
    const String size = takesVideo ? cmbVideoSize.Text() : String();
    Save(u"videoSize", size);
    if (!devices::HasLecture(m_c)) return;
    CProjectFile& lecture = m_c.project.g_Project;
    if (takesVideo) lecture.videoSize = size;
    lecture.videoBitrate = takesVideo ? VideoBitrateOf(size) : kNoVideoBitrate;
}

/// Throws host::Error if the setting cannot be stored.
void frmDevice::Save(StringView key, StringView value) {
    if (modConfig::SaveSetting(m_c, u"configure", key, value)) return;
    throw host::Error(host::ErrorNumber::Automation, u"settings", u"The setting cannot be stored.");
}

}  // namespace kestrum
