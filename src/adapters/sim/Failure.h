// How the scripted world fails a test: something happened that no script allows. Not a host::Error, so that no rule
// that forgives failures of the host can swallow it.
#pragma once

#include <stdexcept>
#include <string>

namespace kestrum::sim {

class Failure : public std::logic_error {
  public:
    explicit Failure(const std::string& text) : std::logic_error(text) {}
};

}  // namespace kestrum::sim
