// Conversion of media to an older format generation.
#pragma once

namespace kestrum::host {

/// Its calls come with the export that makes them.
class IFmtConvert {
  public:
    virtual ~IFmtConvert() = default;
};

}  // namespace kestrum::host
