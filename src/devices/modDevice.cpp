#include "devices/modDevice.h"

#include <algorithm>

#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modMsgBox.h"

namespace kestrum::modDevice {
namespace {

bool HasDevices(const DeviceList& list) {
    return !list.empty() && !list.front().name.empty();
}

bool IsDv(const DeviceRecord& device) {
    return device.kind == u"DV";
}

/// The entry called `name`; none if there is none.
std::optional<DeviceRecord> FindByName(const DeviceList& list, const String& name) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const DeviceRecord& d) { return d.name == name; });
    if (found == list.end()) return std::nullopt;
    return *found;
}

DeviceRecord ChooseVideo(bool keepCurrent, bool quiet, const String& wanted, const DeviceList& list) {
    const auto dv = std::find_if(list.begin(), list.end(), IsDv);
    if (HasDevices(list) && dv != list.end()) return *dv;
    if (keepCurrent) return {};
    if (const auto saved = FindByName(list, wanted)) return *saved;
    return quiet || list.empty() ? DeviceRecord{} : list.front();
}

}  // namespace

DeviceList ParseDeviceText(StringView text) {
    DeviceList list;
    for (const String& entry : modGlobal::Split(text.substr(0, text.find(u'\0')), u"_&&_")) {
        const std::vector<String> fields = modGlobal::Split(entry, u"##");
        list.push_back({fields[0], fields.size() > 1 ? fields[1] : String()});
    }
    return list;
}

bool QueryDevices(const devices::Context& c, DeviceList& list, StringView what) {
    String text;
    const std::int32_t result =
        what == u"video" ? c.host.ksLib.ksQueryVideoDevice(text) : c.host.ksLib.ksQueryAudioDevice(text);
    if (result != 1) {
        list = {DeviceRecord{}};
        return false;
    }
    list = ParseDeviceText(text);
    return true;
}

void SelectDevices(const devices::Context& c, bool keepCurrent, bool quiet, DeviceRecord& video, DeviceRecord& audio,
                   const DeviceList& videoList, const DeviceList& audioList) {
    const DeviceRecord chosenVideo = ChooseVideo(keepCurrent, quiet, video.name, videoList);
    if (!chosenVideo.name.empty() && c.host.ksLib.ksSetVideoDevice(chosenVideo.name) == 0) {
        modMsgBox::MsgBox(c, u"SetVideoDevice Error!");
        return;
    }
    DeviceRecord chosenAudio;
    if (!IsDv(chosenVideo) && HasDevices(audioList)) {
        chosenAudio = FindByName(audioList, audio.name).value_or(audioList.front());
        if (c.host.ksLib.ksSetAudioDevice(chosenAudio.name) == 0) {
            modMsgBox::MsgBox(c, u"SetAudioDevice Error!");
            return;
        }
    }
    video = chosenVideo;
    audio = chosenAudio;
}

std::int32_t InitDevices(const devices::Context& c, bool keepCurrent) {
    DeviceRecord audio{modConfig::GetSetting(c, u"configure", u"audioDevice", u""), u""};
    DeviceRecord video{modConfig::GetSetting(c, u"configure", u"videoDevice", u""), u""};
    DeviceList videoList;
    DeviceList audioList;
    QueryDevices(c, videoList, u"video");
    QueryDevices(c, audioList, u"audio");
    SelectDevices(c, keepCurrent, false, video, audio, videoList, audioList);
    if (IsDv(video)) return kDvCamera;
    if (audio.name.empty()) return kNoAudio;
    return video.name.empty() ? kAudioOnly : kAudioAndVideo;
}

}  // namespace kestrum::modDevice
