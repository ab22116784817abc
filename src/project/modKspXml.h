// XML and text helpers around the project format that other rooms use on documents and lists of their own: selection
// by a dotted path, the one line-break rule of the files, and the index as the journal of a running recording.
#pragma once

#include <string>

#include "host/IFileSystem.h"
#include "host/String.h"
#include "project/CProjectFile.h"
#include "support/modXml.h"

namespace kestrum::modKspXml {

/// The node at a dotted path from the root element, each part one child step; none if a part is missing. Never fails.
modXml::Node SelectXmlPath(const modXml::Document& document, StringView path);

/// The same node, made if it is missing, its parents too. Error 91 for a document without a root.
modXml::Node MakeXmlPath(const modXml::Document& document, StringView path);

/// Text of the node at a dotted path, `fallback` if there is none.
String GetXmlText(const modXml::Document& document, StringView path, StringView fallback);

/// A line break (CR LF) between each ">" that is directly followed by "<": the only formatting that a file has. A CR
/// inside a text (it separates the paragraphs of a title) becomes a reference; readers turn a plain one into LF.
std::string BreakLines(const std::string& xml);

/// Writes the document with BreakLines and without tabs and vertical tabs; `document` becomes what was written. Strict:
/// a failure is host::Error, and the old file or, under `file` + ".tmp", the new one is whole.
void SaveXmlPretty(host::IFileSystem& fs, modXml::Document& document, const String& file);

/// The index as the journal that is kept in the package while a recording runs. One line an entry, ended by LF:
/// pos TAB RecDate TAB title TAB Url. In every field backslash, tab, LF and CR are written as \\ \t \n \r.
String JournalText(const CProjectFile& project);

}  // namespace kestrum::modKspXml
