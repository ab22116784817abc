#include "apps/commandline/VerifyReport.h"

#include "apps/commandline/Texts.h"
#include "support/Collection.h"
#include "support/Dictionary.h"

namespace kestrum::app {
namespace {

Value NumberValue(std::int64_t number) {
    return static_cast<double>(number);
}

Value ToJson(const support::Context& c, const Finding& finding) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"kind", host::FromUtf8(TextOf(finding.kind).word));
    object->Add(u"entry", NumberValue(finding.entry));
    object->Add(u"pos_ms", NumberValue(finding.pos));
    object->Add(u"title", finding.title);
    object->Add(u"what", WhatOf(c, finding));
    object->Add(u"means", MeansOf(c, finding));
    object->Add(u"repair", RepairOf(c, finding));
    object->Add(u"mendable", TextOf(finding.kind).mendable);
    object->Add(u"mended", finding.mended);
    return object;
}

String Outcome(const support::Context& c, const Finding& finding, bool repairing) {
    if (!repairing) return Sentence(c, u"msgVfyWithRepair", u"--repair: %s1", {RepairOf(c, finding)});
    if (finding.mended) return Sentence(c, u"msgVfyMended", u"Mended.");
    return Sentence(c, u"msgVfyLeft", u"Not mended.");
}

}  // namespace

Value ToJson(const support::Context& c, const VerifyReport& report) {
    auto findings = std::make_shared<Collection>();
    for (const Finding& finding : report.findings) findings->Add(ToJson(c, finding));
    auto object = std::make_shared<Dictionary>();
    object->Add(u"package", report.package);
    object->Add(u"state", report.state);
    object->Add(u"text", report.text);
    object->Add(u"duration_ms", NumberValue(report.lengthMs));
    object->Add(u"entries", NumberValue(report.entries));
    object->Add(u"findings", findings);
    object->Add(u"kept", report.kept);
    return object;
}

String ToText(const support::Context& c, const VerifyReport& report, bool repairing) {
    String text;
    int number = 0;
    for (const Finding& finding : report.findings) {
        const String indent = u"\n     ";
        const String count = host::FromUtf8(std::to_string(++number));
        text += String(count.size() < 2 ? 1 : 0, u' ') + count + u". " + WhatOf(c, finding) + indent +
                MeansOf(c, finding) + indent + Outcome(c, finding, repairing) + u"\n";
    }
    if (!report.kept.empty())
        text += Sentence(c, u"msgVfyKept", u"The package as it was is kept as \"%s1\".", {report.kept}) + u"\n";
    return text + report.text;
}

}  // namespace kestrum::app
