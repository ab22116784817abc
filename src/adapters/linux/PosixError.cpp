#include "adapters/linux/PosixError.h"

#include <cerrno>
#include <system_error>

namespace kestrum::platform {
namespace {

host::ErrorNumber NumberOf(int code) {
    switch (code) {
        case ENOENT:
            return host::ErrorNumber::FileNotFound;
        case ENOTDIR:
            return host::ErrorNumber::PathNotFound;
        case ENOSPC:
        case EDQUOT:
            return host::ErrorNumber::DiskFull;
        case EACCES:
        case EPERM:
        case EROFS:
            return host::ErrorNumber::PermissionDenied;
        case EEXIST:
            return host::ErrorNumber::FileAlreadyOpen;
        default:
            return host::ErrorNumber::Automation;
    }
}

}  // namespace

void ThrowSystemError(int code, const String& source, const String& subject) {
    const std::string reason = std::generic_category().message(code);
    throw host::Error(NumberOf(code), source, u"\"" + subject + u"\": " + host::FromUtf8(reason) + u".");
}

}  // namespace kestrum::platform
