// Holds the pictures that the program hands to its host. Never shown.
#pragma once

#include "support/Context.h"

namespace kestrum {

class frmResource : public ui::Form {
  public:
    explicit frmResource(const support::Context& c);

    /// The face of the Record button, 16 by 16 pixels.
    ui::Picture picRecord{*this, u"picRecord"};
};

}  // namespace kestrum
