// What a slide is called, and how the presentation's properties reach the project's abstract. Failures of the host are
// skipped statement by statement.
#pragma once

#include "host/IApplication.h"
#include "host/String.h"
#include "project/Context.h"

namespace kestrum::modSlide {

/// Text of the title placeholder; without one, the first text of more than 20 points in the top fifth of the slide;
/// else `fallback`.
String GetSlideTitle(const support::Context& c, host::ISlide& slide, const String& fallback);

/// A built-in property of the active presentation by its English name, trimmed; empty on any failure.
String GetDocProperty(const support::Context& c, const String& name);

/// Copies the presentation's title, author, manager, company, category, comments and keywords into g_Project and
/// stores it (modProject::SaveProject).
void WriteAbstract(const project::Context& c);

/// Reads every slide's title; with `addItems` each becomes an entry without a media position.
void CollectSlideTitles(const project::Context& c, bool addItems);

}  // namespace kestrum::modSlide
