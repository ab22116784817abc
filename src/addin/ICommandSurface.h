// How the commands get in front of the user where the program itself puts them there (ribbon, toolbar, menu tree).
// Hosts whose adapter brings its own menu have none.
#pragma once

#include <cstdint>

namespace kestrum::addin {

class ICommandSurface {
  public:
    virtual ~ICommandSurface() = default;
    /// Puts the commands up for a host of this major version: a ribbon from 12 on, below it toolbar and menu tree.
    virtual void Install(std::int16_t officeMajor) = 0;
    /// Takes them away again.
    virtual void Remove() = 0;
};

}  // namespace kestrum::addin
