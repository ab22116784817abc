#include "addin/frmAbout.h"

#include "project/modProject.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {

frmAbout::frmAbout(const project::Context& c) : Form(c.forms, u"frmAbout"), m_c(c) {
    ui::WindowPlace place;
    place.width = 460;
    SetPlace(place);
    cmdOK.SetDefault(true);
    cmdOK.SetCancel(true);
    cmdOK.onClick = [this] { Unload(); };
    SetLayout(ui::Column({lProduct, lVersion, lLicence, lPlaces, ui::Stretch(), ui::Buttons({cmdOK})}));
}

void frmAbout::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    lVersion.SetCaption(modGlobal::Replace(lVersion.Caption(), u"%s", modProject::GetProgramVersion(m_c)));
    lPlaces.SetCaption(modGlobal::Replace(lPlaces.Caption(), u"%s", m_c.host.installFolder));
}

}  // namespace kestrum
