#include "publish/modPublish.h"

#include "support/Numbers.h"
#include "support/modExec.h"
#include "support/modLanguage.h"

namespace kestrum::modPublish {

String FreeFolder(const support::Context& c, const String& base) {
    String folder = base;
    for (std::int32_t n = 1; c.host.fs.FolderExists(folder); ++n) folder = base + u"(" + ToText(n) + u")";
    return folder;
}

String PercentText(const String& stage, float percent) {
    return StageText(stage, FormatPattern(static_cast<double>(percent), u"00.00") + u"%");
}

String StageText(const String& stage, const String& text) {
    return stage + u" ... " + text;
}

std::int32_t DownToFour(std::int32_t value) {
    return value / 4 * 4;
}

String SuccessQuestion(const support::Context& c) {
    return modLanguage::GetResString(c, u"frmExportMp4", u"msgExportMp4Success",
                                     u"The lecture has been published. Do you want to watch it now?");
}

bool OpenPage(const support::Context& c, const String& page) {
    return modExec::ShellExecuteWait(c, page, {}, false);
}

}  // namespace kestrum::modPublish
