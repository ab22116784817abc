// Texts and places of the extension, from the file kestrum.ini in its folder.
#pragma once

#include <rtl/ustring.hxx>

namespace kestrum::extension {

/// Entry `key` of kestrum.ini; empty if there is none. What a place is, the office's own -env: and the environment can
/// say otherwise.
rtl::OUString Text(const char* key);

/// The same with "%s1" replaced.
rtl::OUString Text(const char* key, const rtl::OUString& value);

}  // namespace kestrum::extension
