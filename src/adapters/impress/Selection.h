// Which slides are selected in a document's window.
#pragma once

#include <com/sun/star/frame/XModel.hpp>
#include <cstdint>
#include <vector>

namespace kestrum::impress {

/// Document numbers, ascending: the slides selected in the slide pane or sorter; where neither is open, the slide being
/// edited. Inside a job.
std::vector<std::int32_t> SelectedSlideNumbers(
    const com::sun::star::uno::Reference<com::sun::star::frame::XModel>& model);

}  // namespace kestrum::impress
