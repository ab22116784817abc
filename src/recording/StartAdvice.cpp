#include "recording/StartAdvice.h"

#include <algorithm>
#include <array>
#include <optional>

#include "devices/modDevice.h"
#include "host/ResumeNext.h"
#include "recording/EarlierRecording.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum::recording {

namespace {

using Line = std::optional<Advice>;

/// The sentence `key`; "%s1", "%s2" become the values.
String Text(const Context& c, StringView key, StringView fallback, const std::vector<String>& values = {}) {
    String text = modLanguage::GetResString(c, u"frmAdvice", key, fallback);
    for (std::size_t i = 0; i < values.size(); ++i) {
        text = modGlobal::Replace(text, u"%s" + ToText(static_cast<std::int32_t>(i + 1)), values[i]);
    }
    return text;
}

// --- microphone ----------------------------------------------------------------------------------------------------

/// The microphone that a recording would take; an empty name for none.
modDevice::DeviceRecord MicrophoneToBe(const Context& c, const String& wanted) {
    modDevice::DeviceList list;
    if (!modDevice::QueryDevices(c, list, u"audio") || list.empty()) return {};
    const auto chosen =
        std::find_if(list.begin(), list.end(), [&](const auto& device) { return device.name == wanted; });
    return chosen == list.end() ? list.front() : *chosen;
}

bool IsOff(const Context& c, const String& microphone) {
    host::IKsLib& library = c.host.ksLib;
    if (library.ksSetAudioDevice(microphone) == 0) return false;
    const bool hasSwitch = !library.CreateAudioMixer().empty();
    const bool off = (hasSwitch && library.MixerGet(0) == 0) || library.GetVolumeScale() == 0;
    library.DeleteAudioMixer();
    return off;
}

Line AboutMicrophone(const Context& c, const String&) {
    const String wanted = modConfig::GetSetting(c, u"configure", u"audioDevice", u"");
    const String taken = MicrophoneToBe(c, wanted).name;
    if (taken.empty()) {
        return Advice{AdviceKind::NoMicrophone,
                      Text(c, u"msgNoMicrophone", u"No microphone is connected: nothing can be recorded without one.")};
    }
    if (IsOff(c, taken)) {
        return Advice{AdviceKind::MicrophoneOff,
                      Text(c, u"msgMicrophoneOff",
                           u"The microphone \"%s1\" is switched off: the recording would be silent.", {taken})};
    }
    if (wanted.empty() || wanted == taken) return std::nullopt;
    return Advice{AdviceKind::MicrophoneReplaced,
                  Text(c, u"msgMicrophoneReplaced", u"\"%s1\" is not connected; \"%s2\" is recorded in its place.",
                       {wanted, taken})};
}

// --- disk ----------------------------------------------------------------------------------------------------------

constexpr std::int64_t kReserveMegabytes = 100;  // a recording ends when no more are free
constexpr double kBytesPerMegabyte = 1048576, kMsPerMinute = 60000;

/// Megabytes a minute: those of the recording so far, or what slides with moving pictures take.
double MegabytesPerMinute(const Context& c, const String& package) {
    constexpr double kUsual = 10, kLeast = 1, kEnoughToTell = 60000;
    if (!c.host.fs.FileExists(package)) return kUsual;
    const double length = c.host.ksLib.GetLength(package);
    if (length < kEnoughToTell) return kUsual;
    const double size = static_cast<double>(c.host.fs.FileSize(package)) / kBytesPerMegabyte;
    return std::max(kLeast, size / (length / kMsPerMinute));
}

Line AboutSpace(const Context& c, const String& deck) {
    constexpr double kEnoughMinutes = 120;  // for the longest of usual lectures
    const String folder = modGlobal::FolderOf(c, deck);
    if (c.host.fs.IsNetworkPath(folder)) return std::nullopt;  // what is free there cannot be told
    const std::int64_t free = std::max<std::int64_t>(0, modGlobal::GetFreeSpaceMB(c, folder) - kReserveMegabytes);
    const double minutes = static_cast<double>(free) / MegabytesPerMinute(c, modGlobal::PackagePathOf(deck));
    if (minutes >= kEnoughMinutes) return std::nullopt;
    return Advice{AdviceKind::LittleSpace,
                  Text(c, u"msgLittleSpace", u"The disk has room for about %s1 more minutes of recording.",
                       {ToText(static_cast<std::int32_t>(minutes))})};
}

// --- folder --------------------------------------------------------------------------------------------------------

bool IsBelow(const Context& c, const String& path, String folder) {
    if (folder.empty()) return false;
    if (folder.back() != c.host.fs.Separator()) folder += c.host.fs.Separator();
    return path.starts_with(folder);
}

Line AboutTemporaryFolder(const Context& c, const String& deck) {
    const String temp = c.host.shell.Environment(u"temp");
    if (!IsBelow(c, deck, temp) && !IsBelow(c, deck, u"/tmp") && !IsBelow(c, deck, u"/var/tmp")) return std::nullopt;
    return Advice{
        AdviceKind::TemporaryFolder,
        Text(c, u"msgTemporaryFolder",
             u"The presentation lies in a temporary folder, which the system clears up: copy it to another, the "
             u"recording is kept beside it.")};
}

/// Folders of programs that copy files to another place are called so, or begin with the name and a blank.
constexpr std::array<StringView, 10> kSynchronised{u"Dropbox",     u"OneDrive",    u"Google Drive", u"GoogleDrive",
                                                   u"Nextcloud",   u"ownCloud",    u"Seafile",      u"MEGAsync",
                                                   u"pCloudDrive", u"iCloud Drive"};
/// Some leave a mark in theirs.
constexpr std::array<StringView, 3> kMarks{u".stfolder", u".dropbox", u".owncloudsync.log"};

bool IsSynchronised(const Context& c, const String& folder) {
    const String name = modGlobal::FileNameOf(c, folder);
    const bool named = std::any_of(kSynchronised.begin(), kSynchronised.end(), [&](StringView known) {
        return name == known || name.starts_with(String(known) + u" ");
    });
    return named || std::any_of(kMarks.begin(), kMarks.end(), [&](StringView mark) {
               const String path = modGlobal::Join(c, folder, mark);
               return c.host.fs.FileExists(path) || c.host.fs.FolderExists(path);
           });
}

Line AboutSynchronisedFolder(const Context& c, const String& deck) {
    String folder = modGlobal::FolderOf(c, deck);
    for (String inner; folder != inner && !folder.empty(); folder = modGlobal::FolderOf(c, folder)) {
        inner = folder;
        if (!IsSynchronised(c, folder)) continue;
        return Advice{
            AdviceKind::SynchronisedFolder,
            Text(c, u"msgSynchronisedFolder",
                 u"The presentation lies in \"%s1\", which is synchronised: pause that until the recording has "
                 u"ended, or it is copied again and again.",
                 {modGlobal::FileNameOf(c, folder)})};
    }
    return std::nullopt;
}

// --- screen --------------------------------------------------------------------------------------------------------

Line AboutSleep(const Context& c, const String&) {
    if (c.host.power.KeepsDisplayAwake()) return std::nullopt;
    return Advice{AdviceKind::ScreenSleeps,
                  Text(c, u"msgScreenSleeps",
                       u"The screen may go dark during the recording: this desktop could not be asked to keep it on.")};
}

Line AboutScreenSize(const Context& c, const String& deck) {
    const display::State& d = c.display;
    if (HasEarlierRecording(c, modGlobal::PackagePathOf(deck))) return std::nullopt;
    const auto mode = c.host.monitors.CurrentMode(d.g_Monitor);
    if (!mode || d.g_RcmdResWidth <= 0 || mode->width <= d.g_RcmdResWidth) return std::nullopt;
    return Advice{
        AdviceKind::LargeScreen,
        Text(c, u"msgLargeScreen", u"The screen has %s1 pixels; at %s2 lectures are smaller and easier to read.",
             {ToText(mode->width) + u"x" + ToText(mode->height),
              ToText(d.g_RcmdResWidth) + u"x" + ToText(d.g_RcmdResHeight)})};
}

// --- what is continued ---------------------------------------------------------------------------------------------

Line AboutEarlierRecording(const Context& c, const String& deck) {
    const auto earlier = ReadEarlierRecording(c, modGlobal::PackagePathOf(deck));
    if (!earlier) return std::nullopt;
    const String length = LengthText(earlier->lengthMs);
    if (!earlier->last) return Advice{AdviceKind::Continues, Text(c, u"msgContinues", u"Continues %s1.", {length})};
    return Advice{AdviceKind::Continues,
                  Text(c, u"msgContinuesDay", u"Continues %s1 of %s2.", {length, DayText(c, *earlier->last)})};
}

}  // namespace

std::vector<Advice> StartAdvice(const Context& c, const String& deck) {
    host::ResumeNext Try(c.host.trace);
    std::vector<Advice> all;
    for (const auto look : {AboutMicrophone, AboutSpace, AboutTemporaryFolder, AboutSynchronisedFolder, AboutSleep,
                            AboutScreenSize, AboutEarlierRecording}) {
        Try([&] {
            if (Line line = look(c, deck)) all.push_back(std::move(*line));
        });
    }
    return all;
}

}  // namespace kestrum::recording
