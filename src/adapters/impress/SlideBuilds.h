// Builds: parts of a slide that wait for a click.
#pragma once

#include <com/sun/star/drawing/XDrawPage.hpp>
#include <cstdint>

namespace kestrum::impress {

/// Number of clicks that the slide waits for before it is left. Inside a job.
std::int32_t ClickBuilds(const com::sun::star::uno::Reference<com::sun::star::drawing::XDrawPage>& page);

}  // namespace kestrum::impress
