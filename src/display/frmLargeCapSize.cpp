#include "display/frmLargeCapSize.h"

#include "host/ResumeNext.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {
namespace {

/// First word of help/lang.txt: the language of the help and of the pictures.
String HelpLanguage(const support::Context& c) {
    String text;
    const String file = modGlobal::Join(c, modGlobal::Join(c, c.host.installFolder, u"help"), u"lang.txt");
    host::ResumeNext{c.host.trace}.Set(text, [&] { return host::FromUtf8(c.host.fs.ReadFile(file)); });
    text = modGlobal::Trim(text);
    text = text.substr(0, text.find_first_of(u" \t\r\n"));
    return text.empty() ? u"en" : text;
}

String PictureSet(StringView language) {
    if (language == u"cht") return u"TW";
    return language == u"chs" ? u"CN" : u"EN";
}

}  // namespace

frmLargeCapSize::frmLargeCapSize(const display::Context& c)
    : Form(c.forms, u"frmLargeCapSize"), m_c(c), m_choice(m_c, *this) {
    cmdContinue.SetDefault(true);
    cmdCancel.SetCancel(true);
    optCurrRes.SetValue(true);
    SetLayout(
        ui::Column({lNote, ui::Row({picHigh, picLow}), optCurrRes, optRcmdRes, ui::Buttons({cmdContinue, cmdCancel})}));
    optCurrRes.onClick = [this] { m_choice.Pick(m_choice.EntrySize()); };
    optRcmdRes.onClick = [this] { m_choice.Pick(m_choice.RecommendedSize()); };
    cmdContinue.onClick = [this] { cmdContinue_Click(); };
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
}

void frmLargeCapSize::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_c.display.g_ResDialogResult = 0;
    m_choice.Enter(m_c.display.g_Monitor);
    display::Offer(optRcmdRes, m_choice.RecommendedSize());
    ShowPictures();
}

void frmLargeCapSize::ShowPictures() {
    const String set = PictureSet(HelpLanguage(m_c));
    const String folder = modGlobal::Join(m_c, m_c.host.installFolder, u"pictures");
    picHigh.SetFile(modGlobal::Join(m_c, folder, u"HI_" + set + u".png"));
    picHigh.SetAccessibleName(optCurrRes.Caption());
    picLow.SetFile(modGlobal::Join(m_c, folder, u"LO_" + set + u".png"));
    picLow.SetAccessibleName(optRcmdRes.Caption());
}

void frmLargeCapSize::cmdContinue_Click() {
    m_c.display.g_ResDialogResult = 1;
    Unload();
}

void frmLargeCapSize::cmdCancel_Click() {
    GiveUp();
    Unload();
}

void frmLargeCapSize::GiveUp() {
    m_choice.Restore();
    m_c.display.g_ResDialogResult = 0;
}

/// Closing the window is a Cancel.
bool frmLargeCapSize::OnQueryUnload(ui::CloseReason reason) {
    if (reason == ui::CloseReason::User) GiveUp();
    return true;
}

}  // namespace kestrum
