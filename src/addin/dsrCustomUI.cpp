// The Record button on the Quick Access Toolbar: an entry in the user's own customisation file of Office. That file
// belongs to the user; nothing else in it is touched.
#include <algorithm>

#include "addin/OfficeVersions.h"
#include "addin/dsrImagePowerPoint.h"
#include "host/ResumeNext.h"
#include "support/modGlobal.h"
#include "support/modXml.h"

namespace kestrum {

namespace {

constexpr StringView kEntry = u"ksp:rec";
constexpr StringView kNameSpace = u"xmlns:ksp";
constexpr StringView kOldEntry = u"x1:rec";
constexpr StringView kOldNameSpace = u"xmlns:x1";

/// The list of shared controls of the Quick Access Toolbar; none in a file that customises something else only, whose
/// first branch leads elsewhere.
modXml::Node SharedControls(const modXml::Document& document) {
    const modXml::Node list = document.Root().Child(0).Child(0).Child(0);
    return list && list.Name().ends_with(u":sharedControls") ? list : modXml::Node();
}

modXml::Node EntryOf(const modXml::Node& list, StringView id) {
    for (const modXml::Node& control : list.Children()) {
        if (control.Attribute(u"idQ") == id) return control;
    }
    return {};
}

/// True if there was one.
bool RemoveOldEntry(modXml::Node root, modXml::Node list) {
    const modXml::Node old = EntryOf(list, kOldEntry);
    if (!old) return false;
    list.Remove(old);
    root.RemoveAttribute(kOldNameSpace);
    return true;
}

/// True unless it was there.
bool AddEntry(modXml::Node root, modXml::Node list, std::int16_t major) {
    if (EntryOf(list, kEntry)) return false;
    modXml::Node control = list.Append(u"mso:control");
    control.SetAttribute(u"idQ", kEntry);
    control.SetAttribute(u"visible", u"true");
    if (major == addin::kOffice2007) control.SetAttribute(u"imageMso", u"PersonaStatusBusy");
    if (major >= addin::kOffice2010) control.SetAttribute(u"getImage", u"GetImage");
    root.SetAttribute(kNameSpace, dsrImagePowerPoint::kProgId);
    return true;
}

/// A write that is cut short must not cost the user's other customisations.
void Store(const addin::Context& c, const String& path, const modXml::Document& document) {
    const String whole = path + u".ksp.tmp";
    const bool written = host::ResumeNext{c.host.trace}([&] { c.host.fs.WriteFile(whole, document.Bytes()); });
    if (written && modGlobal::SafeMoveFile(c, whole, path, true)) return;
    // Once the old file is gone, the new one is all there is.
    if (c.host.fs.FileExists(path)) modGlobal::SafeDeleteFile(c, whole);
}

}  // namespace

void dsrImagePowerPoint::PatchCustomUI(const String& path, std::int16_t major) {
    host::ResumeNext{m_c.host.trace}([&] {
        const modXml::Document document = modXml::Document::ParseBytes(m_c.host.fs.ReadFile(path));
        const modXml::Node list = SharedControls(document);
        if (!list) return;
        const bool removed = RemoveOldEntry(document.Root(), list);
        const bool added = AddEntry(document.Root(), list, major);
        if (removed || added) Store(m_c, path, document);
    });
}

void dsrImagePowerPoint::UnpatchCustomUI(const String& path) {
    host::ResumeNext{m_c.host.trace}([&] {
        const modXml::Document document = modXml::Document::ParseBytes(m_c.host.fs.ReadFile(path));
        modXml::Node list = SharedControls(document);
        if (!list) return;
        if (const modXml::Node entry = EntryOf(list, kEntry)) list.Remove(entry);
        document.Root().RemoveAttribute(kNameSpace);
        Store(m_c, path, document);
    });
}

}  // namespace kestrum
