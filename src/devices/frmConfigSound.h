// The background sound of a published lecture: which file, how loud, heard in the lecture's own page. Decides under
// which names the sound lies in the scratch folder and when the former one goes.
#pragma once

#include "devices/Context.h"
#include "host/IPageView.h"

namespace kestrum {

class frmConfigSound : public ui::Form {
  public:
    /// The device room with a page to listen in.
    struct Context : devices::Context {
        host::IPageView& page;
    };
    explicit frmConfigSound(const Context& c);

    ui::Label lSound{*this, u"lSound"};
    ui::TextBox txtSound{*this, u"txtSound"};
    ui::CommandButton cmdBrowse{*this, u"cmdBrowse"};
    ui::CommandButton cmdNoSound{*this, u"cmdNoSound"};
    ui::Label lVolume{*this, u"lVolume"};
    ui::Slider sldVolume{*this, u"sldVolume"};
    ui::CommandButton cmdSave{*this, u"cmdSave"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    void cmdBrowse_Click();
    void cmdNoSound_Click();
    void cmdSave_Click();
    bool Choose(const String& file);
    void DropChoice();
    bool TakeSound();
    void PageLoaded();
    void PlayChoice();
    void SetPageVolume();
    String Former() const;
    String Text(StringView key, StringView text) const;

    Context m_c;
    /// Name of the chosen sound without its folder; empty for none. A copy that can be heard lies in the scratch
    /// folder as "tmp_" + name.
    String m_name;
    bool m_hasPage = false;
};

}  // namespace kestrum
