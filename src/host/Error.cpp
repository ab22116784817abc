#include "host/Error.h"

#include <utility>

namespace kestrum::host {

Error::Error(ErrorNumber number, String source, String description)
    : m_number(number),
      m_source(std::move(source)),
      m_description(std::move(description)),
      m_what(ToUtf8(m_source + u": " + m_description)) {}

}  // namespace kestrum::host
