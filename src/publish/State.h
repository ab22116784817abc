// What publishing leaves behind for whoever asked for it. Plain values.
#pragma once

#include "host/String.h"

namespace kestrum::publish {

struct State {
    /// The page of the last publication that was finished since the last dialog opened; empty if none was.
    String publishedPage;
    /// Why the last one was not, as the dialog shows it; empty if it was, or was not begun.
    String failure;
};

}  // namespace kestrum::publish
