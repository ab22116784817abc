#include "Text.h"

#include <osl/module.h>
#include <rtl/bootstrap.hxx>

namespace kestrum::extension {
namespace {

/// The file lies in the extension's folder, this library in its folder `lib`.
rtl::OUString IniFile() {
    rtl::OUString library;
    osl_getModuleURLFromFunctionAddress(reinterpret_cast<oslGenericFunction>(&IniFile), &library.pData);
    const auto folder = library.copy(0, library.lastIndexOf('/'));
    return folder.copy(0, folder.lastIndexOf('/')) + "/kestrum.ini";
}

}  // namespace

rtl::OUString Text(const char* key) {
    rtl::OUString text;
    rtl::Bootstrap(IniFile()).getFrom(rtl::OUString::createFromAscii(key), text);
    return text;
}

rtl::OUString Text(const char* key, const rtl::OUString& value) {
    return Text(key).replaceFirst("%s1", value);
}

}  // namespace kestrum::extension
