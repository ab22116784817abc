// What this program is: product, version, licence, and where its things are.
#pragma once

#include "project/Context.h"

namespace kestrum {

class frmAbout : public ui::Form {
  public:
    explicit frmAbout(const project::Context& c);

    ui::Label lProduct{*this, u"lProduct"};
    ui::Label lVersion{*this, u"lVersion"};
    ui::Label lLicence{*this, u"lLicence"};
    ui::Label lPlaces{*this, u"lPlaces"};
    ui::CommandButton cmdOK{*this, u"cmdOK"};

  protected:
    void OnLoad() override;

  private:
    project::Context m_c;
};

}  // namespace kestrum
