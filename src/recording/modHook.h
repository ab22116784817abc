// Between the system's low-level hooks and the objects that want them: the hook calls a free routine, which finds the
// object through a property of the window that was hooked.
#pragma once

#include <cstdint>
#include <memory>

#include "recording/Context.h"

namespace kestrum::modHook {

inline const String kMouseProperty = u"MouseHook";
inline const String kKeyProperty = u"KeyHook";

/// The bare reference that a window property holds; it does not keep the object alive.
template <class Object>
std::uint64_t ReferenceTo(Object* object) {
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(object));
}

/// Installs the hook for the remembered window (State); null if the system refuses.
std::unique_ptr<host::IHook> InstallMouse(const recording::Context& c);
std::unique_ptr<host::IHook> InstallKeys(const recording::Context& c);

}  // namespace kestrum::modHook
