#include "adapters/impress/UnoText.h"

#include <osl/file.hxx>

namespace kestrum::impress {

String FromUno(const rtl::OUString& text) {
    return String(text.getStr(), text.getStr() + text.getLength());
}

rtl::OUString ToUno(StringView text) {
    static_assert(sizeof(sal_Unicode) == sizeof(char16_t));
    return rtl::OUString(reinterpret_cast<const sal_Unicode*>(text.data()), static_cast<sal_Int32>(text.size()));
}

rtl::OUString UrlOfPath(const String& path) {
    rtl::OUString url;
    if (osl::FileBase::getFileURLFromSystemPath(ToUno(path), url) != osl::FileBase::E_None)
        throw host::Error(host::ErrorNumber::PathNotFound, u"Open", u"This is not a full path: " + path);
    return url;
}

String PathOfUrl(const rtl::OUString& url) {
    rtl::OUString path;
    if (osl::FileBase::getSystemPathFromFileURL(url, path) != osl::FileBase::E_None) return FromUno(url);
    return FromUno(path);
}

css::beans::PropertyValue Property(const char* name, const css::uno::Any& value) {
    css::beans::PropertyValue property;
    property.Name = rtl::OUString::createFromAscii(name);
    property.Value = value;
    return property;
}

css::uno::Sequence<css::beans::PropertyValue> Properties(std::initializer_list<css::beans::PropertyValue> values) {
    return css::uno::Sequence<css::beans::PropertyValue>(values.begin(), static_cast<sal_Int32>(values.size()));
}

host::Error OfficeError(const String& source, const String& what) {
    return host::Error(host::ErrorNumber::Automation, source, what);
}

host::Error OfficeError(const String& source, const css::uno::Exception& exception) {
    const String message = FromUno(exception.Message);
    return OfficeError(source, message.empty() ? u"Impress refused the call." : u"Impress refused: " + message);
}

}  // namespace kestrum::impress
