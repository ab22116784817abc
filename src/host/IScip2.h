// The network control: all HTTP work of uploads.
#pragma once

namespace kestrum::host {

/// Its calls come with the upload that makes them.
class IScip2 {
  public:
    virtual ~IScip2() = default;
};

}  // namespace kestrum::host
