// Small XML and text helpers around the project format that other rooms use on documents and lists of their own.
#pragma once

#include "host/String.h"
#include "project/CProjectFile.h"

namespace kestrum::modKspXml {

/// The index as the journal that is kept in the package while a recording runs. One line an entry, ended by LF:
/// pos TAB RecDate TAB title TAB Url. In every field backslash, tab, LF and CR are written as \\ \t \n \r.
String JournalText(const CProjectFile& project);

}  // namespace kestrum::modKspXml
