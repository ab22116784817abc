// Builds: parts of a slide that wait for a click.
#pragma once

#include <com/sun/star/drawing/XDrawPage.hpp>

namespace kestrum::impress {

/// True if the slide has builds that start at a click. Inside a job.
bool HasClickBuilds(const com::sun::star::uno::Reference<com::sun::star::drawing::XDrawPage>& page);

}  // namespace kestrum::impress
