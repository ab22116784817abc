// Text and small values between the house and UNO, and the translation of a UNO exception into host::Error.
#pragma once

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/uno/Any.hxx>
#include <com/sun/star/uno/Exception.hpp>
#include <com/sun/star/uno/Sequence.hxx>
#include <initializer_list>
#include <rtl/ustring.hxx>

#include "host/Error.h"
#include "host/String.h"

namespace kestrum::impress {

namespace css = com::sun::star;

String FromUno(const rtl::OUString& text);
rtl::OUString ToUno(StringView text);

/// file:// address of a host path, and back (the address itself if it is none of a file).
rtl::OUString UrlOfPath(const String& path);
String PathOfUrl(const rtl::OUString& url);

css::beans::PropertyValue Property(const char* name, const css::uno::Any& value);
css::uno::Sequence<css::beans::PropertyValue> Properties(std::initializer_list<css::beans::PropertyValue> values);

/// The office failed or refused: number Automation, description `what`.
host::Error OfficeError(const String& source, const String& what);
host::Error OfficeError(const String& source, const css::uno::Exception& exception);

}  // namespace kestrum::impress
