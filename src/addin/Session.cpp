#include "addin/Session.h"

namespace kestrum {

Session::Session(host::Host& host, host::ICommandBars* commandBars)
    : project(support::Context{host, m_forms, support}),
      m_forms(host.presenter, host.loop),
      c{{{{host, m_forms, support}, project}, devices, display, recording}, publish, addin},
      addIn(c, commandBars) {}

}  // namespace kestrum
