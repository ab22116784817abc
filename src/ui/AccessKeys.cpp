#include "ui/AccessKeys.h"

#include <algorithm>
#include <set>

namespace kestrum::ui {
namespace {

/// Behind these come scripts whose letters are not typed with one key.
constexpr char16_t kFirstLatin1Letter = 0xC0, kFirstOfLargeScripts = 0x2E80;

bool IsLetter(char16_t unit) {
    const bool ascii =
        (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
    return ascii || (unit >= kFirstLatin1Letter && unit < 0x2000) || (unit >= 0x2C00 && unit < kFirstOfLargeScripts);
}

char16_t Key(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

bool StartsWord(StringView caption, std::size_t at) {
    return at == 0 || !IsLetter(caption[at - 1]);
}

/// A letter that no control has yet, the first of a word if possible; npos if there is none.
std::size_t FreeLetter(StringView caption, const std::set<char16_t>& taken) {
    std::size_t any = StringView::npos;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (!IsLetter(caption[i]) || taken.count(Key(caption[i])) > 0) continue;
        if (StartsWord(caption, i)) return i;
        if (any == StringView::npos) any = i;
    }
    return any;
}

/// What bears the control's name on screen; null if nothing does.
const CaptionedControl* CaptionOf(const Form& form, const Control& control) {
    switch (control.Kind()) {
        case ControlKind::CommandButton: {
            const auto& button = static_cast<const CommandButton&>(control);
            return button.IsDefault() || button.IsCancel() ? nullptr : &button;  // they have Enter and Escape
        }
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return static_cast<const CaptionedControl*>(&control);
        default:
            return form.LabelOf(control);
    }
}

}  // namespace

std::vector<AccessKey> AccessKeysOf(const Form& form) {
    std::vector<Control*> controls = form.TabOrder();
    // Buttons are few and wanted most: they choose first.
    std::stable_partition(controls.begin(), controls.end(),
                          [](const Control* control) { return control->Kind() == ControlKind::CommandButton; });
    std::vector<AccessKey> keys;
    std::set<char16_t> taken;
    for (const Control* control : controls) {
        const CaptionedControl* caption = CaptionOf(form, *control);
        if (caption == nullptr) continue;
        const std::size_t at = FreeLetter(caption->Caption(), taken);
        if (at == StringView::npos) continue;
        taken.insert(Key(caption->Caption()[at]));
        keys.push_back({caption, at, control});
    }
    return keys;
}

}  // namespace kestrum::ui
