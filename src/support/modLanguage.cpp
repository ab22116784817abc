#include "support/modLanguage.h"

#include "support/modGlobal.h"
#include "support/modXml.h"

namespace kestrum::modLanguage {
namespace {

/// The file's document; an empty one, kept as such, if it cannot be read.
const modXml::Document& Language(const support::Context& c) {
    if (!c.support.language) {
        auto document = std::make_shared<modXml::Document>();
        try {
            const String path = modGlobal::Join(c, c.host.installFolder, u"res.xml");
            *document = modXml::Document::ParseBytes(c.host.fs.ReadFile(path));
        } catch (const host::Error& error) {
            c.host.trace.Skipped(error);
        }
        c.support.language = std::move(document);
    }
    return *c.support.language;
}

modXml::Node ChildCalled(const modXml::Node& parent, StringView name) {
    for (const modXml::Node& child : parent.Children()) {
        if (child.Attribute(u"name") == name) return child;
    }
    return {};
}

std::optional<String> Lookup(const support::Context& c, StringView section, StringView key) {
    const modXml::Node root = Language(c).Root();
    if (!root) return std::nullopt;
    const modXml::Node sectionNode = ChildCalled(root, section);
    if (!sectionNode) return std::nullopt;
    const modXml::Node entry = ChildCalled(sectionNode, key);
    if (!entry) return std::nullopt;
    return modGlobal::Replace(entry.Text(), u"\\n", u"\r\n");
}

/// Type names whose caption comes from the file.
bool TakesCaption(StringView typeName) {
    static constexpr StringView kTypes[] = {u"KsLabel",   u"OptionButton", u"CheckBox",     u"Frame",
                                            u"Label",     u"UniLabel",     u"UniCheck",     u"UniFrame",
                                            u"UniOption", u"UniButton",    u"CommandButton"};
    for (const StringView type : kTypes) {
        if (type == typeName) return true;
    }
    return false;
}

void CaptionToolbar(const support::Context& c, StringView section, ui::Toolbar& bar) {
    const std::vector<ui::ToolbarButton> buttons = bar.Buttons();
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        bar.SetButtonCaption(static_cast<std::int32_t>(i + 1),
                             GetResString(c, section, u"Toolbar" + buttons[i].name, u""));
    }
}

}  // namespace

String GetResString(const support::Context& c, StringView section, StringView key, StringView fallback) {
    return modGlobal::Replace(Lookup(c, section, key).value_or(String(fallback)), u"%p", kProductName);
}

void ApplyLanguage(const support::Context& c, ui::Form& form) {
    const String& section = form.Name();
    form.SetCaption(GetResString(c, section, section, u""));
    for (ui::Control* control : form.Controls()) {
        if (control->Kind() == ui::ControlKind::Toolbar) {
            CaptionToolbar(c, section, static_cast<ui::Toolbar&>(*control));
        } else if (control->Kind() == ui::ControlKind::Menu) {
            auto& entry = static_cast<ui::Menu&>(*control);
            if (!entry.IsSeparator()) entry.SetCaption(GetResString(c, section, entry.Name(), u""));
        } else if (TakesCaption(control->TypeName())) {
            static_cast<ui::CaptionedControl&>(*control).SetCaption(GetResString(c, section, control->Name(), u""));
        }
    }
}

}  // namespace kestrum::modLanguage
