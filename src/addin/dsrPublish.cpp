// The publishing commands, each with what would make its dialog pointless.
#include <algorithm>

#include "addin/dsrImagePowerPoint.h"
#include "project/CIndex.h"
#include "publish/frmExportMp4.h"
#include "recording/modCapture.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

void dsrImagePowerPoint::Compress() {
    RunGuarded({.question = u"Continue compressing?"}, [this] {
        if (m_c.host.ksLib.GetOptimizeLevel(m_c.support.packagePath) != 0) {
            return modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmCompress", u"msgCompressed",
                                                                    u"This lecture has been compressed already!"));
        }
        SayNotYet(u"mnuCompress");
    });
}

void dsrImagePowerPoint::PublishToMp4() {
    RunGuarded({.question = u"Continue publishing to MP4 format?"}, [this] {
        if (Mp4IsTooBig()) {
            return modMsgBox::MsgBox(
                m_c, modLanguage::GetResString(m_c, u"frmExportMp4", u"msgMp4TooBig",
                                               u"The recording is too long for an MP4 file of this size!"));
        }
        m_c.forms.Get<frmExportMp4>(m_c).ShowModal();
    });
}

// Rates in kbit/s, each to the nearest whole and of any size. The output is never taken for more than five times the
// source's rate.
bool dsrImagePowerPoint::Mp4IsTooBig() {
    constexpr double kBitsPerByte = 8, kKilobitsPerPixel = 0.00153, kMostTimesSource = 5;
    const String& package = m_c.support.packagePath;
    std::int32_t length = m_c.host.ksLib.GetLength(package), width = 0, height = 0;
    m_c.host.ksLib.GetFileHeaderDim(package, width, height);
    const auto size = static_cast<double>(m_c.host.fs.FileSize(package));
    const auto largest = static_cast<double>(modCapture::kLargestPackage);
    const double limit = RoundHalfEven(Div(largest, length) * kBitsPerByte);
    const double estimate = RoundHalfEven(width * kKilobitsPerPixel * height);
    const double rate = RoundHalfEven(Div(size, length) * kBitsPerByte);
    return std::min(estimate, kMostTimesSource * rate) > limit;
}

void dsrImagePowerPoint::PublishToFlash() {
    RunGuarded({.question = u"Continue publishing to Flash format?"}, [this] {
        if (const std::int32_t number = FirstTooLongForFlash()) {
            return modMsgBox::MsgBox(m_c, u"index " + ToText(number) + u" is too long to convert!");
        }
        SayNotYet(u"mnuflash");
    });
}

// Number of the first entry that lasts longer than a Flash movie may; 0 if there is none. Links last no time.
std::int32_t dsrImagePowerPoint::FirstTooLongForFlash() {
    constexpr double kLongestMs = 13 * 60 * 1000;
    CIndex index;
    index.items = m_c.project.g_Project.index;
    index.UpdateLen(m_c.host.ksLib, m_c.support.packagePath);
    for (std::int32_t i = 1; i <= index.count(); ++i) {
        const CIndexItem& item = index.items.Item(i);
        if (ToDouble(item.pos) >= 0 && ToDouble(item.PosEnd) - ToDouble(item.pos) > kLongestMs) return i;
    }
    return 0;
}

void dsrImagePowerPoint::PublishToWmv() {
    RunGuarded({.question = u"Continue publishing to WMV format?"}, [this] { SayNotYet(u"mnuWMV"); });
}

void dsrImagePowerPoint::PublishToMp3() {
    RunGuarded({.question = u"Continue publishing to MP3 format?"}, [this] { SayNotYet(u"mnuAudio"); });
}

void dsrImagePowerPoint::PublishToKestrum7() {
    RunGuarded({.question = u"Continue publishing to Kestrum7 format?"}, [this] { SayNotYet(u"mnuKestrum7"); });
}

}  // namespace kestrum
