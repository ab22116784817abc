#include "support/modMsgBox.h"

#include "support/frmMsgBox.h"
#include "support/frmMsgLink.h"
#include "support/modLanguage.h"

namespace kestrum::modMsgBox {
namespace {

constexpr std::int32_t kDefaultWidth = 400;
constexpr std::int32_t kDefaultHeight = 120;

String TitleOrProduct(const String& title) {
    return title.empty() ? String(modLanguage::kProductName) : title;
}

support::MsgBoxState StateOf(const MsgBoxRequest& request, bool active) {
    support::MsgBoxState state;
    state.text = request.text;
    state.title = TitleOrProduct(request.title);
    state.buttons = request.buttons;
    state.result = kOk;
    state.width = request.width == 0 ? kDefaultWidth : request.width;
    state.height = request.width == 0 ? kDefaultHeight : request.height;
    state.showCheck = request.showCheck;
    state.checkCaption = request.checkCaption;
    state.topmost = request.topmost;
    state.active = active;
    return state;
}

}  // namespace

std::int32_t ShowMsgBox(const support::Context& c, const MsgBoxRequest& request, bool& checked) {
    support::MsgBoxState& state = c.support.msgBox;
    state = StateOf(request, state.active);
    auto& box = c.forms.Get<frmMsgBox>(c);
    if (box.IsLoaded()) box.TakeMessage();
    if (request.modal) {
        box.ShowModal();
    } else {
        box.Show();
    }
    checked = state.checked;
    return state.result;
}

void ShowMsgLink(const support::Context& c, const String& text, const String& link, const String& title,
                 std::int32_t width, std::int32_t height) {
    c.support.msgLink = {text, link, TitleOrProduct(title), width, height};
    c.forms.Get<frmMsgLink>(c).ShowModal();
}

host::BoxAnswer MsgBox(const support::Context& c, const String& text, host::BoxButtons buttons, const String& title) {
    return c.host.box.Show(text, buttons, title.empty() ? c.support.applicationTitle : title);
}

void MsgBox(const support::Context& c, const String& text) {
    MsgBox(c, text, host::BoxButtons::Ok, {});
}

}  // namespace kestrum::modMsgBox
