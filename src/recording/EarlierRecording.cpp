#include "recording/EarlierRecording.h"

#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modXml.h"

namespace kestrum::recording {

namespace {

/// The date that the last entry of the project was recorded at.
std::optional<host::DateTime> LastDateOf(const modXml::Document& document) {
    const modXml::Node project = document.Root().Child(u"project");
    const modXml::Node index = project ? project.Child(u"index") : modXml::Node();
    if (!index) return std::nullopt;
    std::optional<host::DateTime> last;
    for (const modXml::Node& item : index.Children()) {
        const modXml::Node date = item.Child(u"recdate");
        const auto time = date ? ParseDateTime(date.Text()) : std::nullopt;
        if (time && (!last || SecondsBetween(*last, *time) > 0)) last = time;
    }
    return last;
}

/// A temporary copy of a package's project file, for as long as it lives.
class ProjectCopy {
  public:
    ProjectCopy(const support::Context& c, const String& package)
        : m_c(c), m_file(modGlobal::Join(c, c.host.shell.Environment(u"temp"), c.host.fs.TemporaryName())) {
        host::StoredFiles targets;
        targets.projectFile = m_file;
        c.host.ksLib.GetExtendDataFromProject(package, targets);
    }
    ~ProjectCopy() { modGlobal::SafeDeleteFile(m_c, m_file); }
    ProjectCopy(const ProjectCopy&) = delete;
    ProjectCopy& operator=(const ProjectCopy&) = delete;

    bool Exists() const { return m_c.host.fs.FileExists(m_file); }
    modXml::Document Read() const { return modXml::Document::ParseBytes(m_c.host.fs.ReadFile(m_file)); }

  private:
    const support::Context& m_c;
    String m_file;
};

/// Days from 5 January 1970, a Monday, to that day.
std::int64_t DayNumber(const host::DateTime& time) {
    constexpr std::int64_t kSecondsPerDay = 86400;
    const host::DateTime monday{1970, 1, 5};
    return SecondsBetween(monday, {time.year, time.month, time.day}) / kSecondsPerDay;
}

String TwoDigits(int number) {
    return FormatPattern(number, u"00");
}

}  // namespace

bool HasEarlierRecording(const support::Context& c, const String& package) {
    return c.host.fs.FileExists(package) && c.host.ksLib.IsEmptyProject(package) == 0;
}

std::optional<EarlierRecording> ReadEarlierRecording(const support::Context& c, const String& package) {
    if (!HasEarlierRecording(c, package)) return std::nullopt;
    EarlierRecording earlier;
    earlier.lengthMs = c.host.ksLib.GetLength(package);
    if (earlier.lengthMs <= 0) return std::nullopt;
    const ProjectCopy project(c, package);
    if (project.Exists()) earlier.last = LastDateOf(project.Read());
    return earlier;
}

String LengthText(std::int32_t ms) {
    constexpr std::int32_t kMsPerSecond = 1000, kPerMinute = 60;
    const std::int32_t seconds = ms / kMsPerSecond, minutes = seconds / kPerMinute;
    if (minutes == 0) return ToText(seconds) + u" s";
    return ToText(minutes / kPerMinute) + u":" + TwoDigits(minutes % kPerMinute);
}

String DayText(const support::Context& c, const host::DateTime& day) {
    constexpr std::int64_t kDaysPerWeek = 7;
    const std::int64_t ago = DayNumber(c.host.loop.Now()) - DayNumber(day);
    if (ago == 0) return modLanguage::GetResString(c, u"frmAdvice", u"msgToday", u"today");
    if (ago > 0 && ago < kDaysPerWeek) {
        static constexpr StringView kNames[] = {u"Monday", u"Tuesday",  u"Wednesday", u"Thursday",
                                                u"Friday", u"Saturday", u"Sunday"};
        const std::int64_t weekday = (DayNumber(day) % kDaysPerWeek + kDaysPerWeek) % kDaysPerWeek;
        const String key = u"day_" + ToText(weekday + 1);
        return modLanguage::GetResString(c, u"frmAdvice", key, String(kNames[weekday]));
    }
    return ToText(day.year) + u"-" + TwoDigits(day.month) + u"-" + TwoDigits(day.day);
}

}  // namespace kestrum::recording
