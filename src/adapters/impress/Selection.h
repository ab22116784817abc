// Which slides are selected in a document's window.
#pragma once

#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <cstdint>
#include <vector>

namespace kestrum::impress {

/// Document numbers, ascending: the slides selected in the slide pane or sorter; where neither is open, the slide being
/// edited. Inside a job.
std::vector<std::int32_t> SelectedSlideNumbers(
    const com::sun::star::uno::Reference<com::sun::star::frame::XModel>& model);

/// Brings the slide with this document number to the front of the document's window, which selects it. Inside a job.
void SelectSlideNumber(const com::sun::star::uno::Reference<com::sun::star::frame::XModel>& model,
                       const com::sun::star::uno::Reference<com::sun::star::drawing::XDrawPage>& page);

}  // namespace kestrum::impress
