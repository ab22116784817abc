// Toolbar button and menu tree for an Office without a ribbon.
#include <array>

#include "addin/MenuTree.h"
#include "addin/dsrImagePowerPoint.h"
#include "addin/frmResource.h"
#include "host/ResumeNext.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

constexpr StringView kToolbar = u"Standard";

String Product() {
    return String(modLanguage::kProductName);
}

/// Deletes the buttons of the toolbar that have one of these captions.
template <std::size_t Count>
void DeleteButtons(const addin::Context& c, host::ICommandBars& bars, const std::array<StringView, Count>& captions) {
    const host::ResumeNext Try(c.host.trace);
    std::unique_ptr<host::ICommandBarControls> controls;
    if (!Try.Set(controls, [&] { return bars.Item(String(kToolbar))->Controls(); })) return;
    std::int32_t count = 0;
    Try.Set(count, [&] { return controls->Count(); });
    for (std::int32_t i = count; i >= 1; --i) {
        Try([&] {
            const auto control = controls->Item(i);
            const String caption = control->Caption();
            for (const StringView one : captions) {
                if (caption == one) return control->Delete();
            }
        });
    }
}

/// Deletes the popups of the menu bar that have one of these tags.
template <std::size_t Count>
void DeletePopups(const addin::Context& c, host::ICommandBars& bars, const std::array<StringView, Count>& tags) {
    const host::ResumeNext Try(c.host.trace);
    for (const StringView tag : tags) {
        Try([&] {
            const auto popup = bars.ActiveMenuBar()->FindControl(host::CommandBarControlType::Popup, String(tag), true);
            if (popup) popup->Delete();
        });
    }
}

}  // namespace

void dsrImagePowerPoint::BuildCommandBarSurface() {
    if (!m_commandBars) return;
    constexpr std::array<StringView, 3> kOldButtons{u"Kestrum Record", u"larkspin6 Record", u"Larkspin Record"};
    constexpr std::array<StringView, 4> kOldPopups{u"Kestrum", u"Larkspin", u"Larkspin6", u"Larkspin3"};
    const host::ResumeNext Try(m_c.host.trace);
    m_clicks.clear();
    DeleteButtons(m_c, *m_commandBars, kOldButtons);
    const bool added = Try([&] { AddRecordButton(); });
    if (!added) {
        modMsgBox::MsgBox(m_c, u"Add " + Product() + u" record button error! ", host::BoxButtons::Ok,
                          Product() + u" Error");
    }
    DeletePopups(m_c, *m_commandBars, kOldPopups);
    Try([&] { AddMenuTree(); });
}

String dsrImagePowerPoint::OnActionText() const {
    return u"!<" + m_progId + u">";
}

void dsrImagePowerPoint::AddRecordButton() {
    const auto button = m_commandBars->Item(String(kToolbar))->Controls()->AddButton();
    const String name = Product() + u" Record";
    button->SetCaption(name);
    button->SetTag(name);
    m_commandBars->CopyPicture(m_c.forms.Get<frmResource>(m_c).picRecord.File());
    button->PasteFace();
    button->SetOnAction(OnActionText());
    m_clicks.push_back(
        button->OnClick([this](host::ICommandBarButton& source, bool& cancel) { p_ctlBtnRec_Click(source, cancel); }));
}

// A popup's entries follow it in the table. An entry that fails is left out.
void dsrImagePowerPoint::AddMenuTree() {
    const host::ResumeNext Try(m_c.host.trace);
    const auto top = m_commandBars->ActiveMenuBar()->Controls()->AddPopup();
    Try([&] { top->SetCaption(Product()); });
    Try([&] { top->SetTag(Product()); });
    const auto entries = top->Controls();
    std::unique_ptr<host::ICommandBarControls> inner;
    for (std::size_t i = 0; i < MenuTree::kEntries.size(); ++i) {
        Try([&] {
            const MenuTree::Entry& entry = MenuTree::kEntries[i];
            if (entry.click && entry.level == 1) return AddMenuButton(*entries, i);
            if (entry.click) return inner ? AddMenuButton(*inner, i) : void();
            inner.reset();
            const auto popup = entries->AddPopup();
            popup->SetCaption(MenuTree::CaptionOf(m_c, entry.key));
            inner = popup->Controls();
        });
    }
}

void dsrImagePowerPoint::AddMenuButton(host::ICommandBarControls& controls, std::size_t index) {
    const MenuTree::Entry& entry = MenuTree::kEntries[index];
    const auto button = controls.AddButton();
    button->SetCaption(MenuTree::CaptionOf(m_c, entry.key));
    button->SetOnAction(OnActionText());
    m_clicks.push_back(button->OnClick([this, click = entry.click](host::ICommandBarButton& source, bool& cancel) {
        (this->*click)(source, cancel);
    }));
}

void dsrImagePowerPoint::RemoveCommandBarSurface() {
    if (!m_commandBars) return;
    constexpr std::array<StringView, 3> kButtons{u"Kestrum Record", u"Larkspin6 Record", u"Larkspin Record"};
    constexpr std::array<StringView, 3> kPopups{u"Kestrum", u"Larkspin6", u"Larkspin"};
    m_clicks.clear();
    DeleteButtons(m_c, *m_commandBars, kButtons);
    DeletePopups(m_c, *m_commandBars, kPopups);
}

}  // namespace kestrum
