// Every form of the product, each made with the context that it needs. A new form is added here, and nowhere else, to
// be looked at by the tests of all forms.
#pragma once

#include <functional>

#include "addin/frmAbout.h"
#include "addin/frmRecorded.h"
#include "devices/frmConfig.h"
#include "devices/frmConfigSound.h"
#include "devices/frmDevice.h"
#include "devices/frmFirstRun.h"
#include "devices/frmVolMsg.h"
#include "devices/frmVolSetting.h"
#include "display/frmChangeRes.h"
#include "display/frmDiffCapSize.h"
#include "display/frmLargeCapSize.h"
#include "publish/frmExportMp4.h"
#include "recording/frmAdvice.h"
#include "recording/frmLecturer.h"
#include "recording/frmNotice.h"
#include "recording/frmRecDot.h"
#include "recording/frmRecStatus.h"
#include "recording/frmTopmost.h"
#include "support/frmExecCmd.h"
#include "support/frmMsgBox.h"
#include "support/frmMsgLink.h"
#include "support/frmStatus.h"

namespace kestrum::test {

struct NoPage final : host::IPageView {
    void OpenPage(const String&, std::function<void()>) override {}
    void RunScript(const String&) override {}
    void ClosePage() override {}
};

/// Calls `look` with each form, in the order of their names' rooms; made, not loaded.
inline void ForEachForm(const addin::Context& c, NoPage& page, const std::function<void(ui::Form&)>& look) {
    ui::Forms& forms = c.forms;
    const devices::Context sound = c;
    const display::Context picture = c;
    const publish::Context publishing = c;
    look(forms.Get<frmMsgBox>(c));
    look(forms.Get<frmMsgLink>(c));
    look(forms.Get<frmStatus>(c));
    look(forms.Get<frmExecCmd>(c));
    look(forms.Get<frmConfig>(sound));
    look(forms.Get<frmConfigSound>(frmConfigSound::Context{sound, page}));
    look(forms.Get<frmDevice>(sound));
    look(forms.Get<frmFirstRun>(sound));
    look(forms.Get<frmVolMsg>(sound));
    look(forms.Get<frmVolSetting>(sound));
    look(forms.Get<frmChangeRes>(picture));
    look(forms.Get<frmDiffCapSize>(picture));
    look(forms.Get<frmLargeCapSize>(picture));
    look(forms.Get<frmAdvice>(c));
    look(forms.Get<frmLecturer>(c));
    look(forms.Get<frmNotice>(c));
    look(forms.Get<frmRecDot>(c));
    look(forms.Get<frmRecStatus>(c));
    look(forms.Get<frmTopmost>(c));
    look(forms.Get<frmExportMp4>(publishing));
    look(forms.Get<frmRecorded>(c));
    look(forms.Get<frmAbout>(c));
}

}  // namespace kestrum::test
