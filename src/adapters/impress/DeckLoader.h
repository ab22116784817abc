// Opening a presentation so that nothing can ask back: the file is looked at first, and every question that the office
// would put to the user in a box is answered here.
#pragma once

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include "host/String.h"

namespace kestrum::impress {

/// Opens `path` in a window of its own. Inside a job. Raises host::Error with a sentence if the file is no
/// presentation, is damaged, or wants a password.
com::sun::star::uno::Reference<com::sun::star::frame::XModel> LoadDeck(
    const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& remote, const String& path);

}  // namespace kestrum::impress
