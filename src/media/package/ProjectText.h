// A project file between bytes and tree: read so that no text changes, written as project files always are.
#pragma once

#include <pugixml.hpp>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// False if the bytes are no XML.
bool ParseProject(pugi::xml_document& document, const Bytes& projectFile);

/// A line break between tags that touch, nothing else. A CR by itself separates the paragraphs of a title; it becomes a
/// reference, since readers turn a plain one into LF.
Bytes SerialiseProject(const pugi::xml_document& document);

}  // namespace kestrum::media
