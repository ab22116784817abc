#include "apps/commandline/DeviceList.h"

#include "apps/commandline/Texts.h"
#include "host/ResumeNext.h"
#include "support/Collection.h"
#include "support/Dictionary.h"
#include "support/JSON.h"

namespace kestrum::app {
namespace {

using modDevice::DeviceList;

DeviceList Parse(std::int32_t result, const String& text) {
    DeviceList list = modDevice::ParseDeviceText(result == 1 ? text : String());
    std::erase_if(list, [](const modDevice::DeviceRecord& device) { return device.name.empty(); });
    return list;
}

Value ToJson(const DeviceList& devices) {
    auto list = std::make_shared<Collection>();
    for (const modDevice::DeviceRecord& device : devices) {
        auto object = std::make_shared<Dictionary>();
        object->Add(u"name", device.name);
        object->Add(u"kind", device.kind);
        list->Add(object);
    }
    return list;
}

void PrintList(const support::Context& c, Console& console, const String& title, const DeviceList& devices) {
    console.Result(host::ToUtf8(title));
    for (const modDevice::DeviceRecord& device : devices) console.Result("  " + host::ToUtf8(device.name));
    if (devices.empty()) console.Result("  " + host::ToUtf8(Sentence(c, u"msgDevNone", u"none")));
}

}  // namespace

DeviceOverview LookAtDevices(const support::Context& c) {
    DeviceOverview overview;
    String audio, video;
    const std::int32_t audioResult = c.host.ksLib.ksQueryAudioDevice(audio);
    const std::int32_t videoResult = c.host.ksLib.ksQueryVideoDevice(video);
    overview.microphones = Parse(audioResult, audio);
    overview.cameras = Parse(videoResult, video);
    overview.hearsComputer =
        host::ResumeNext{c.host.trace}.If([&] { return c.host.recSystemAudio.CanRecordSystemAudio() > 0; });
    return overview;
}

int RunDeviceList(const support::Context& c, Console& console, bool json) {
    const DeviceOverview overview = LookAtDevices(c);
    if (json) {
        auto object = std::make_shared<Dictionary>();
        object->Add(u"microphones", ToJson(overview.microphones));
        object->Add(u"cameras", ToJson(overview.cameras));
        object->Add(u"system_sound", overview.hearsComputer);
        console.Result(host::ToUtf8(JSON::ToJsonText(Value(object))));
        return 0;
    }
    PrintList(c, console, Sentence(c, u"msgDevMicrophones", u"Microphones:"), overview.microphones);
    PrintList(c, console, Sentence(c, u"msgDevCameras", u"Cameras:"), overview.cameras);
    console.Result(host::ToUtf8(overview.hearsComputer
                                    ? Sentence(c, u"msgDevSound", u"The computer's own sound can be recorded.")
                                    : Sentence(c, u"msgDevNoSound", u"The computer's own sound cannot be recorded.")));
    return 0;
}

}  // namespace kestrum::app
