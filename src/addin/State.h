// What the add-in shell keeps for the session.
#pragma once

#include <memory>

#include "support/modXml.h"

namespace kestrum::addin {

struct State {
    /// `default.ksp` of the install folder, loaded once; null while it could not be.
    std::shared_ptr<const modXml::Document> g_DefaultProjectDoc;
};

}  // namespace kestrum::addin
