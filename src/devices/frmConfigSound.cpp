#include "devices/frmConfigSound.h"

#include "project/Paths.h"
#include "project/modProject.h"
#include "support/Numbers.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

constexpr StringView kSection = u"configure";
constexpr StringView kLastChosen = u"bgMusic";
/// A step of the player's list of volumes.
constexpr std::int32_t kLoudest = 10;

String HeardName(const String& name) {
    return u"tmp_" + name;
}

/// What follows the last point; empty without one.
String ExtensionOf(const String& name) {
    const std::size_t point = name.rfind(u'.');
    return point == String::npos ? String() : name.substr(point + 1);
}

/// As the inside of a string of a script.
String Quoted(const String& text) {
    return modGlobal::Replace(modGlobal::Replace(text, u"\\", u"\\\\"), u"\"", u"\\\"");
}

}  // namespace

frmConfigSound::frmConfigSound(const Context& c) : Form(c.forms, u"frmConfigSound"), m_c(c) {
    cmdSave.SetDefault(true);
    cmdCancel.SetCancel(true);
    txtSound.SetReadOnly(true);
    sldVolume.SetRange(0, kLoudest);
    cmdBrowse.onClick = [this] { cmdBrowse_Click(); };
    cmdNoSound.onClick = [this] { cmdNoSound_Click(); };
    sldVolume.onChange = [this] { SetPageVolume(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdCancel.onClick = [this] { Unload(); };
    SetLayout(ui::Column({ui::Field(lSound, txtSound, {cmdBrowse, cmdNoSound}), ui::Field(lVolume, sldVolume),
                          ui::Buttons({cmdSave, cmdCancel})}));
}

String frmConfigSound::Text(StringView key, StringView text) const {
    return modLanguage::GetResString(m_c, u"frmConfigSound", key, text);
}

/// The lecture's sound in the scratch folder, empty if it has none.
String frmConfigSound::Former() const {
    const String name = project::OwnName(m_c, m_c.project.g_Project.sound, u"");
    return name.empty() ? String() : project::InWorkFolder(m_c, name);
}

void frmConfigSound::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_name.clear();
    m_hasPage = false;
    sldVolume.SetValue(static_cast<std::int32_t>(Val(m_c.project.g_Project.soundVolume)));
    if (!Former().empty()) Choose(Former());
    m_c.page.OpenPage(project::InWorkFolder(m_c, u"index.html"), [this] { PageLoaded(); });
}

void frmConfigSound::PageLoaded() {
    if (!IsLoaded()) return;
    m_hasPage = true;
    PlayChoice();
    SetPageVolume();
}

void frmConfigSound::PlayChoice() {
    if (m_hasPage && !m_name.empty()) m_c.page.RunScript(u"setBgsFile(\"" + Quoted(HeardName(m_name)) + u"\")");
}

void frmConfigSound::SetPageVolume() {
    if (m_hasPage) m_c.page.RunScript(u"setBgsVolume(" + ToText(sldVolume.Value()) + u")");
}

void frmConfigSound::cmdBrowse_Click() {
    const String last = modConfig::GetHexSetting(m_c, kSection, kLastChosen, u"");
    const std::optional<String> picked =
        m_c.host.fileDialog.OpenFile({Text(u"msgSelectSound", u"Select a background music file"),
                                      Text(u"msgSoundFilter", u"sound") + u" (*.mid, *.mp3, *.wma)|*.mid;*.mp3;*.wma;",
                                      modGlobal::FolderOf(m_c, last)});
    if (!IsLoaded() || !picked) return;
    modConfig::SaveHexSetting(m_c, kSection, kLastChosen, *picked);
    if (Choose(*picked)) {
        PlayChoice();
    } else {
        modMsgBox::MsgBox(
            m_c, modGlobal::Replace(Text(u"msgSoundError", u"The sound \"%s\" cannot be read."), u"%s", *picked));
    }
}

/// Lays a copy that can be heard into the scratch folder. False, and the choice stays, if the file cannot be read.
bool frmConfigSound::Choose(const String& file) {
    const String name = modGlobal::FileNameOf(m_c, file);
    const String heard = project::InWorkFolder(m_c, HeardName(name));
    if (!modGlobal::SafeCopyFile(m_c, file, heard)) return false;
    if (name != m_name) DropChoice();
    m_name = name;
    txtSound.SetText(name);
    return true;
}

void frmConfigSound::DropChoice() {
    if (!m_name.empty()) modGlobal::SafeDeleteFile(m_c, project::InWorkFolder(m_c, HeardName(m_name)));
    m_name.clear();
    txtSound.SetText({});
}

// The page is opened anew: it has no call for silence.
void frmConfigSound::cmdNoSound_Click() {
    DropChoice();
    m_hasPage = false;
    m_c.page.OpenPage(project::InWorkFolder(m_c, u"index.html"), [this] { PageLoaded(); });
}

void frmConfigSound::cmdSave_Click() {
    if (!TakeSound()) {
        modMsgBox::MsgBox(m_c,
                          Text(u"msgSoundNotKept", u"The sound cannot be copied. The lecture keeps the one it has."));
        return;
    }
    modProject::SaveProject(m_c);
    Unload();
}

/// The former sound goes when the new one is there. False, and nothing has changed, if it cannot be copied.
bool frmConfigSound::TakeSound() {
    CProjectFile& lecture = m_c.project.g_Project;
    const String former = Former();
    const String stored = m_name.empty() ? String() : u"bgsound." + ExtensionOf(m_name);
    const String target = stored.empty() ? String() : project::InWorkFolder(m_c, stored);
    if (!stored.empty() && !modGlobal::SafeCopyFile(m_c, project::InWorkFolder(m_c, HeardName(m_name)), target)) {
        return false;
    }
    if (!former.empty() && former != target) modGlobal::SafeDeleteFile(m_c, former);
    lecture.sound = stored;
    if (!stored.empty()) lecture.soundVolume = ToText(sldVolume.Value());
    return true;
}

void frmConfigSound::OnUnload() {
    m_c.page.ClosePage();
    DropChoice();
}

}  // namespace kestrum
