#include "apps/kestrum/PublishCommand.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "adapters/linux/EndSignals.h"
#include "addin/Session.h"
#include "apps/commandline/Texts.h"
#include "apps/commandline/Unattended.h"
#include "apps/kestrum/BatchProgram.h"
#include "apps/kestrum/DeadRecorder.h"
#include "apps/kestrum/PackageAtHand.h"
#include "project/modProject.h"
#include "publish/frmExportMp4.h"
#include "publish/modPublish.h"
#include "support/Dictionary.h"
#include "support/JSON.h"
#include "support/Numbers.h"

namespace kestrum::app {
namespace {

String FailureOf(const Session& session, const BatchProgram& program) {
    if (!session.publish.failure.empty()) return session.publish.failure;
    if (!program.LastMessage().empty()) return program.LastMessage();
    return Sentence(session.c, u"msgNotPublished", u"The lecture was not published.");
}

/// The entry of a list with this text; -1 if there is none.
std::int32_t EntryOf(const ui::ComboBox& list, const String& text) {
    const auto& items = list.Items();
    const auto found = std::find(items.begin(), items.end(), text);
    return found == items.end() ? -1 : static_cast<std::int32_t>(found - items.begin());
}

/// Chooses place and size of the webcam picture; a sentence if the package has none, or none of that size.
String ChooseWebcam(const support::Context& c, frmExportMp4& form, const PublishRequest& request) {
    static constexpr std::array<std::string_view, 5> kPlaces = {"top-right", "bottom-right", "top-left", "bottom-left",
                                                                "none"};
    if (request.webcamPosition.empty()) return {};
    const auto place = std::find(kPlaces.begin(), kPlaces.end(), request.webcamPosition) - kPlaces.begin();
    const bool none = place == static_cast<std::ptrdiff_t>(kPlaces.size()) - 1;
    if (!form.cmbWebcamPos.Enabled())
        return none ? String()
                    : Sentence(c, u"msgNoWebcam", u"There is no webcam picture in \"%s1\".", {c.support.packagePath});
    form.Select(form.cmbWebcamPos, static_cast<std::int32_t>(place));
    if (none || request.webcamSize.empty()) return {};
    const String size = host::FromUtf8(request.webcamSize);
    const std::int32_t entry = EntryOf(form.cmbWebcamSize, size);
    if (entry < 0)
        return Sentence(c, u"msgNoWebcamSize", u"The webcam picture in \"%s1\" is too small for %s2.",
                        {c.support.packagePath, size});
    form.Select(form.cmbWebcamSize, entry);
    return {};
}

/// Fills the dialog in as the user of the command line wants it; a sentence if it does not offer that.
String FillIn(const support::Context& c, frmExportMp4& form, const PublishRequest& request) {
    if (request.size) {
        form.Select(form.cmbResolution, 1);
        form.chkKeepRatio.SetValue(0);
        form.Type(form.txtWidth, ToText(request.size->width));
        form.MoveFocus(form.txtHeight);
        form.Type(form.txtHeight, ToText(request.size->height));
        form.MoveFocus(form.cmbResolution);
    }
    if (request.kbps) {
        form.Select(form.cmbQuality, 1);
        form.Type(form.TxtCustomBitrate, ToText(*request.kbps));
        form.MoveFocus(form.cmbQuality);
    }
    return ChooseWebcam(c, form, request);
}

/// What the dialog says of the publication beside its fields.
void TellNotes(Console& console, const frmExportMp4& form) {
    console.Notice(form.lCaptions.Caption());
    if (form.lSpace.Visible()) console.Notice(form.lSpace.Caption());
}

struct Outcome {
    String page;     ///< empty if nothing was published
    String failure;  ///< why not
    int signal = 0;  ///< the signal that ended it, 0 for none
};

Outcome PublishOne(Console& console, const PublishRequest& request, const String& package) {
    BatchProgram program(console);
    Session session(program.Host());
    RefuseUnlessPackage(session.c, program.Inspector(), package, u"publish");
    Outcome outcome;
    const platform::EndSignals endSignals(program.Loop(), [&](int number) {
        outcome.signal = number;
        program.Presenter().CancelWork();
    });
    program.Box().AnswerNo(modPublish::SuccessQuestion(session.c));
    program.Presenter().FillIn(u"frmExportMp4", [&](ui::Form& form) {
        auto& dialog = static_cast<frmExportMp4&>(form);
        const String sentence = FillIn(session.c, dialog, request);
        if (sentence.empty()) TellNotes(console, dialog);
        return sentence;
    });
    DisarmMarkerOfDeadRecorder(session.c);
    session.Connect();
    TakePackage(session.c, package);
    session.addIn.NotesButton(u"mnuMP4");
    modProject::DeleteWorkFolder(session.c);
    session.Disconnect();
    outcome.page = session.publish.publishedPage;
    if (outcome.page.empty()) outcome.failure = FailureOf(session, program);
    return outcome;
}

void Tell(Console& console, const String& package, const Outcome& outcome, bool json) {
    if (!json) {
        if (outcome.page.empty()) return console.Failure(outcome.failure);
        return console.Result("page: " + host::ToUtf8(outcome.page));
    }
    auto line = std::make_shared<Dictionary>();
    line->Add(u"package", package);
    line->Add(u"published", !outcome.page.empty());
    line->Add(outcome.page.empty() ? u"failure" : u"page", outcome.page.empty() ? outcome.failure : outcome.page);
    console.Result(host::ToUtf8(JSON::ToJsonText(line)));
}

}  // namespace

int RunPublish(Console& console, const PublishRequest& request) {
    if (request.json) console.ResultsOnly();
    bool failed = false;
    for (const std::string& source : request.sources) {
        const String package = PackageOf(FullPath(source));
        Outcome outcome;
        try {
            outcome = PublishOne(console, request, package);
        } catch (const host::Error& error) {
            outcome.failure = error.Description();
        }
        Tell(console, package, outcome, request.json);
        failed = failed || outcome.page.empty();
        const bool lastOne = &source == &request.sources.back();
        if (outcome.signal != 0 && (outcome.page.empty() || !lastOne)) return 128 + outcome.signal;
    }
    return failed ? 1 : 0;
}

}  // namespace kestrum::app
