#include "ui/AccessKeys.h"

#include <algorithm>
#include <map>
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

using Letters = std::set<char16_t>;

/// The first letter that is one of `letters`; npos if there is none.
std::size_t OneOf(StringView caption, const Letters& letters) {
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (letters.count(Key(caption[i])) > 0) return i;
    }
    return StringView::npos;
}

/// A letter that no control has yet, the first of a word if possible; npos if there is none.
std::size_t FreeLetter(StringView caption, const Letters& taken) {
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

/// The place that `control` shares with others in the layout; null if it has one of its own.
const LayoutNode* OverlayOf(const LayoutNode& node, const Control& control) {
    for (const LayoutNode& child : node.children) {
        if (node.kind == LayoutKind::Overlay && child.control == &control) return &node;
        if (const LayoutNode* found = OverlayOf(child, control)) return found;
    }
    return nullptr;
}

/// Frees a letter of `caption` by giving a key that holds it another one; false if none can do without.
bool MakeWayFor(StringView caption, std::vector<AccessKey>& keys, Letters& taken) {
    for (AccessKey& key : keys) {
        const String& held = key.caption->Caption();
        const char16_t letter = Key(held[key.at]);
        if (OneOf(caption, {letter}) == StringView::npos) continue;
        const std::size_t other = FreeLetter(held, taken);
        if (other == StringView::npos) continue;
        taken.erase(letter);
        taken.insert(Key(held[other]));
        key.at = other;
        return true;
    }
    return false;
}

}  // namespace

std::vector<AccessKey> AccessKeysOf(const Form& form) {
    std::vector<Control*> controls = form.TabOrder();
    // Buttons are few and wanted most: they choose first.
    std::stable_partition(controls.begin(), controls.end(),
                          [](const Control* control) { return control->Kind() == ControlKind::CommandButton; });
    std::vector<AccessKey> keys;
    Letters taken;
    std::map<const LayoutNode*, Letters> ofPlace;
    for (const Control* control : controls) {
        const CaptionedControl* caption = CaptionOf(form, *control);
        if (caption == nullptr) continue;
        const LayoutNode* place = OverlayOf(form.Layout(), *control);
        std::size_t at = place ? OneOf(caption->Caption(), ofPlace[place]) : StringView::npos;
        if (at == StringView::npos) at = FreeLetter(caption->Caption(), taken);
        if (at == StringView::npos && MakeWayFor(caption->Caption(), keys, taken)) {
            at = FreeLetter(caption->Caption(), taken);
        }
        if (at == StringView::npos) continue;
        taken.insert(Key(caption->Caption()[at]));
        if (place) ofPlace[place].insert(Key(caption->Caption()[at]));
        keys.push_back({caption, at, control});
    }
    return keys;
}

}  // namespace kestrum::ui
