#include "apps/commandline/VerifyCommand.h"

#include <algorithm>

#include "apps/commandline/Repair.h"
#include "apps/commandline/Texts.h"
#include "apps/commandline/VerifyReport.h"
#include "support/JSON.h"

namespace kestrum::app {
namespace {

class Verification {
  public:
    Verification(const support::Context& c, host::IPackageInspector& inspector, Console& console,
                 const VerifyRequest& request, const std::function<bool()>& isCancelled)
        : m_c(c),
          m_inspector(inspector),
          m_console(console),
          m_request(request),
          m_isCancelled(isCancelled),
          m_package(host::FromUtf8(request.package)) {
        m_report.package = m_package;
    }

    int Run() {
        m_diagnosis = Look();
        m_report.findings = m_diagnosis.findings;
        if (m_diagnosis.refusal) return End(u"refused", *m_diagnosis.refusal, verify_exit::kNotLookedAt);
        if (IsCancelled()) return Cancelled();
        if (m_request.repair && CanMend(m_diagnosis)) return Repair();
        return Tell();
    }

  private:
    Diagnosis Look() {
        const auto onPercent = [this](std::int32_t percent) {
            m_console.Percent(Sentence(m_c, u"msgVfyLooking", u"Checking the recording"), percent);
        };
        return Diagnose(m_c, m_inspector, m_package, true, onPercent);
    }

    /// What came meanwhile from outside is heard first.
    bool IsCancelled() {
        m_c.host.loop.DoEvents();
        return m_diagnosis.file.cancelled || m_isCancelled();
    }

    int Cancelled() {
        return End(u"cancelled", Sentence(m_c, u"msgVfyCancelled", u"Cancelled; nothing was changed."), -1);
    }

    int Tell() {
        if (m_report.findings.empty()) return End(u"whole", WholeText(), verify_exit::kWhole);
        const auto mendable = std::count_if(m_report.findings.begin(), m_report.findings.end(),
                                            [](const Finding& finding) { return TextOf(finding.kind).mendable; });
        const std::vector<String> numbers = {NumberText(m_report.findings.size()),
                                             NumberText(static_cast<std::size_t>(mendable))};
        const String text =
            m_request.repair
                ? Sentence(m_c, u"msgVfyNothingMended", u"Damaged: %s1 found, none of which can be mended.", numbers)
                : Sentence(m_c, u"msgVfyDamaged", u"Damaged: %s1 found, %s2 of which --repair mends.", numbers);
        return End(u"damaged", text, verify_exit::kDamaged);
    }

    int Repair() {
        m_console.Notice(Sentence(m_c, u"msgVfyKeeping", u"Keeping a copy of the package ..."));
        m_report.kept = KeepOriginal(m_c, m_package);
        if (IsCancelled()) {
            m_c.host.fs.DeleteFile(std::exchange(m_report.kept, String()));
            return Cancelled();
        }
        project::State state(m_c);
        Mend({m_c, state}, m_inspector, m_package, m_report.findings);
        m_diagnosis = Look();
        MarkMended();
        const auto left = std::count_if(m_report.findings.begin(), m_report.findings.end(),
                                        [](const Finding& finding) { return !finding.mended; });
        if (left == 0)
            return End(u"repaired", Sentence(m_c, u"msgVfyRepaired", u"Repaired: the package is whole."),
                       verify_exit::kRepaired);
        return End(u"damaged",
                   Sentence(m_c, u"msgVfyStillDamaged", u"Damaged: %s1 could not be mended.",
                            {NumberText(static_cast<std::size_t>(left))}),
                   verify_exit::kDamaged);
    }

    /// What the second look does not find again is mended; what it finds for the first time belongs to the report.
    void MarkMended() {
        const std::vector<Finding>& after = m_diagnosis.findings;
        const auto isIn = [](const Finding& finding, const std::vector<Finding>& list) {
            return std::any_of(list.begin(), list.end(), [&](const Finding& other) { return other.IsSame(finding); });
        };
        for (Finding& finding : m_report.findings) finding.mended = !isIn(finding, after);
        for (const Finding& finding : after)
            if (!isIn(finding, m_report.findings)) m_report.findings.push_back(finding);
    }

    String WholeText() {
        if (!m_diagnosis.file.holdsMedia)
            return Sentence(m_c, u"msgVfyWholeEmpty", u"Whole: the package holds no recording yet.");
        return Sentence(m_c, u"msgVfyWhole", u"Whole: %s1 of recording, %s2 entries, each at a key frame.",
                        {PositionText(m_diagnosis.file.lengthMs), NumberText(m_diagnosis.entries)});
    }

    int End(StringView state, const String& text, int exitCode) {
        m_report.state = state;
        m_report.text = text;
        m_report.lengthMs = m_diagnosis.file.lengthMs;
        m_report.entries = m_diagnosis.entries;
        const bool failed = exitCode == verify_exit::kNotLookedAt || exitCode < 0;
        if (m_request.json)
            m_console.Result(host::ToUtf8(JSON::ToJsonText(ToJson(m_c, m_report))));
        else if (!failed)
            m_console.Result(host::ToUtf8(ToText(m_c, m_report, !m_report.kept.empty())));
        if (failed) m_console.Failure(text);
        return exitCode;
    }

    template <class Number>
    static String NumberText(Number number) {
        return host::FromUtf8(std::to_string(number));
    }

    const support::Context& m_c;
    host::IPackageInspector& m_inspector;
    Console& m_console;
    const VerifyRequest& m_request;
    const std::function<bool()>& m_isCancelled;
    const String m_package;
    Diagnosis m_diagnosis;
    VerifyReport m_report;
};

}  // namespace

int RunVerify(const support::Context& c, host::IPackageInspector& inspector, Console& console,
              const VerifyRequest& request, const std::function<bool()>& isCancelled) {
    return Verification(c, inspector, console, request, isCancelled).Run();
}

}  // namespace kestrum::app
