// XML in the terms of the rules: text of an element, attribute by position and by name, child by path, create, remove,
// serialise. White space between elements is no node: it is dropped when a text is parsed and never made when one is
// serialised. Where the rules want line breaks in a file, the serialised text is edited and written as bytes.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Error.h"
#include "host/String.h"

namespace pugi {
struct xml_node_struct;
}

namespace kestrum::modXml {

/// One element, or none (as a failed selection gives it). A cheap handle into its document, which must outlive it.
/// Reading or writing through none is host::Error 91.
class Node {
  public:
    Node() = default;

    explicit operator bool() const { return m_body != nullptr; }
    String Name() const;
    /// All text inside the element, its descendants' included, in document order.
    String Text() const;
    /// Replaces all content by one text. Characters that no XML file can hold (most control characters) are left out,
    /// here and in attributes.
    void SetText(StringView text);

    /// Child elements in order.
    std::vector<Node> Children() const;
    /// Child element `index` from 0; none beyond.
    Node Child(std::size_t index) const;
    /// The first child element of that name; none if there is none.
    Node Child(StringView name) const;
    /// Follows the first child of each name in turn, separated by `separator`; none as soon as one is missing.
    Node Select(StringView path, char16_t separator = u'/') const;
    Node Parent() const;

    std::size_t AttributeCount() const;
    /// By position from 0. Error 9 beyond.
    String AttributeAt(std::size_t index) const;
    void SetAttributeAt(std::size_t index, StringView value);
    /// By name; none if the element does not have it.
    std::optional<String> Attribute(StringView name) const;
    /// Adds the attribute at the end if it is missing.
    void SetAttribute(StringView name, StringView value);
    /// Harmless if the element does not have it.
    void RemoveAttribute(StringView name);

    /// A new child element at the end.
    Node Append(StringView name);
    /// A copy of `other` (of this or another document) as the last child.
    Node AppendCopy(const Node& other);
    /// A new child element in front of `before`, which must be a child; at the end if `before` is none.
    Node InsertBefore(StringView name, const Node& before);
    /// Takes `child` out; false if it is not a child.
    bool Remove(const Node& child);

    /// The element as text, no white space added.
    String Xml() const;

  private:
    friend class Document;
    explicit Node(pugi::xml_node_struct* body) : m_body(body) {}
    pugi::xml_node_struct* m_body = nullptr;
};

/// A parsed document. Movable; nodes of it end with it.
class Document {
  public:
    /// An empty document: it has no root.
    Document();
    ~Document();
    Document(Document&& other) noexcept;
    Document& operator=(Document&& other) noexcept;

    /// Bytes of a file in UTF-8 or UTF-16 (with or without a mark) or in a declared ISO 8859-1. Entities of its own are
    /// never expanded or fetched: a reference to one stays text. Any depth of nesting is safe. Error 13 with the
    /// reason if it is no well-formed document with one root, or holds bytes of an encoding that is not known.
    static Document ParseBytes(const std::string& bytes);
    /// The same for a text.
    static Document Parse(StringView text);

    /// The root element; none in an empty document.
    Node Root() const;
    /// Makes the root of an empty document.
    Node CreateRoot(StringView name);
    /// The whole document as text, its declaration included, no white space added.
    String Xml() const;
    /// The same in UTF-8, for a file.
    std::string Bytes() const;

  private:
    struct Body;
    std::unique_ptr<Body> m_body;
};

}  // namespace kestrum::modXml
