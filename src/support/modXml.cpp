#include "support/modXml.h"

#include <algorithm>
#include <iterator>
#include <pugixml.hpp>

namespace kestrum::modXml {
namespace {

using host::FromUtf8;
using host::ToUtf8;

constexpr unsigned kParse =
    pugi::parse_default | pugi::parse_declaration | pugi::parse_comments | pugi::parse_pi | pugi::parse_doctype;
constexpr unsigned kFormat = pugi::format_raw | pugi::format_no_declaration;

/// The element behind a handle; error 91 for none.
pugi::xml_node Element(pugi::xml_node_struct* body) {
    if (body == nullptr) throw host::Error(host::ErrorNumber::ObjectNotSet, u"XML", u"The element is missing");
    return pugi::xml_node(body);
}

bool IsText(const pugi::xml_node& node) {
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

/// Collects the text below an element in document order, without recursion.
class TextWalker : public pugi::xml_tree_walker {
  public:
    bool for_each(pugi::xml_node& node) override {
        if (IsText(node)) text += node.value();
        return true;
    }
    std::string text;
};

pugi::xml_attribute AttributeAtIndex(const pugi::xml_node& node, std::size_t index) {
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        if (index-- == 0) return attribute;
    }
    throw host::Error(host::ErrorNumber::OutOfRange, u"XML", u"The element has no such attribute");
}

class TextWriter : public pugi::xml_writer {
  public:
    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
    std::string text;
};

/// Always valid UTF-8, even where a character reference named half a character.
std::string Serialise(const pugi::xml_node& node) {
    TextWriter out;
    node.print(out, "", kFormat, pugi::encoding_utf8);
    return host::IsUtf8(out.text) ? std::move(out.text) : ToUtf8(FromUtf8(out.text));
}

bool FitsXml(char16_t unit) {
    if (unit < 0x20) return unit == u'\t' || unit == u'\n' || unit == u'\r';
    return unit != 0xFFFE && unit != 0xFFFF;
}

/// The text as it can stand in a file. A character that no XML holds would make the whole file unreadable.
std::string Storable(StringView text) {
    String kept;
    kept.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept), FitsXml);
    return ToUtf8(kept);
}

/// Takes a node and all below it out, leaves first: the library's own removal descends once a level and a file can be
/// nested deeper than the stack.
void RemoveTree(const pugi::xml_node& top) {
    const pugi::xml_node end = top.parent();
    for (pugi::xml_node node = top; node != end;) {
        while (node.first_child()) node = node.first_child();
        pugi::xml_node parent = node.parent();
        parent.remove_child(node);
        node = parent;
    }
}

}  // namespace

String Node::Name() const {
    return FromUtf8(Element(m_body).name());
}

String Node::Text() const {
    TextWalker walker;
    Element(m_body).traverse(walker);
    return FromUtf8(walker.text);
}

void Node::SetText(StringView text) {
    pugi::xml_node element = Element(m_body);
    while (const pugi::xml_node child = element.first_child()) RemoveTree(child);
    const std::string stored = Storable(text);
    if (!stored.empty()) element.append_child(pugi::node_pcdata).set_value(stored.c_str());
}

std::vector<Node> Node::Children() const {
    std::vector<Node> children;
    for (const pugi::xml_node& child : Element(m_body).children()) {
        if (child.type() == pugi::node_element) children.push_back(Node(child.internal_object()));
    }
    return children;
}

Node Node::Child(std::size_t index) const {
    for (const pugi::xml_node& child : Element(m_body).children()) {
        if (child.type() == pugi::node_element && index-- == 0) return Node(child.internal_object());
    }
    return {};
}

Node Node::Child(StringView name) const {
    return Node(Element(m_body).child(ToUtf8(name).c_str()).internal_object());
}

Node Node::Select(StringView path, char16_t separator) const {
    Node node = *this;
    while (node && !path.empty()) {
        const std::size_t end = std::min(path.find(separator), path.size());
        node = node.Child(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return node;
}

Node Node::Parent() const {
    const pugi::xml_node parent = Element(m_body).parent();
    return parent.type() == pugi::node_element ? Node(parent.internal_object()) : Node();
}

std::size_t Node::AttributeCount() const {
    const auto attributes = Element(m_body).attributes();
    return static_cast<std::size_t>(std::distance(attributes.begin(), attributes.end()));
}

String Node::AttributeAt(std::size_t index) const {
    return FromUtf8(AttributeAtIndex(Element(m_body), index).value());
}

void Node::SetAttributeAt(std::size_t index, StringView value) {
    AttributeAtIndex(Element(m_body), index).set_value(Storable(value).c_str());
}

std::optional<String> Node::Attribute(StringView name) const {
    const pugi::xml_attribute attribute = Element(m_body).attribute(ToUtf8(name).c_str());
    if (!attribute) return std::nullopt;
    return FromUtf8(attribute.value());
}

void Node::SetAttribute(StringView name, StringView value) {
    pugi::xml_node element = Element(m_body);
    const std::string key = ToUtf8(name);
    pugi::xml_attribute attribute = element.attribute(key.c_str());
    if (!attribute) attribute = element.append_attribute(key.c_str());
    attribute.set_value(Storable(value).c_str());
}

void Node::RemoveAttribute(StringView name) {
    Element(m_body).remove_attribute(ToUtf8(name).c_str());
}

Node Node::Append(StringView name) {
    return Node(Element(m_body).append_child(ToUtf8(name).c_str()).internal_object());
}

Node Node::AppendCopy(const Node& other) {
    return Node(Element(m_body).append_copy(Element(other.m_body)).internal_object());
}

Node Node::InsertBefore(StringView name, const Node& before) {
    if (!before) return Append(name);
    const std::string key = ToUtf8(name);
    return Node(Element(m_body).insert_child_before(key.c_str(), Element(before.m_body)).internal_object());
}

bool Node::Remove(const Node& child) {
    const pugi::xml_node node = Element(child.m_body);
    if (node.parent() != Element(m_body)) return false;
    RemoveTree(node);
    return true;
}

String Node::Xml() const {
    return FromUtf8(Serialise(Element(m_body)));
}

struct Document::Body {
    pugi::xml_document document;
};

Document::Document() : m_body(std::make_unique<Body>()) {}
Document::~Document() = default;
Document::Document(Document&& other) noexcept = default;
Document& Document::operator=(Document&& other) noexcept = default;

namespace {

/// What is written is UTF-8, whatever was read.
void DeclareUtf8(pugi::xml_document& document) {
    for (pugi::xml_node& child : document) {
        if (child.type() == pugi::node_declaration && child.attribute("encoding")) {
            child.attribute("encoding").set_value("UTF-8");
        }
    }
}

[[noreturn]] void Malformed(const std::string& reason) {
    throw host::Error(host::ErrorNumber::TypeMismatch, u"XML", FromUtf8(reason));
}

void Load(pugi::xml_document& document, const std::string& bytes, pugi::xml_encoding encoding) {
    const pugi::xml_parse_result result = document.load_buffer(bytes.data(), bytes.size(), kParse, encoding);
    if (!result) Malformed(std::string(result.description()) + " at byte " + std::to_string(result.offset));
    if (result.encoding == pugi::encoding_utf8 && !host::IsUtf8(bytes)) Malformed("The text is not in its encoding");
    const auto isElement = [](const pugi::xml_node& node) { return node.type() == pugi::node_element; };
    if (std::count_if(document.begin(), document.end(), isElement) != 1) Malformed("More than one root element");
    DeclareUtf8(document);
}

}  // namespace

Document Document::ParseBytes(const std::string& bytes) {
    Document document;
    Load(document.m_body->document, bytes, pugi::encoding_auto);
    return document;
}

Document Document::Parse(StringView text) {
    Document document;
    Load(document.m_body->document, ToUtf8(text), pugi::encoding_utf8);
    return document;
}

Node Document::Root() const {
    return Node(m_body->document.document_element().internal_object());
}

Node Document::CreateRoot(StringView name) {
    return Node(m_body->document.append_child(ToUtf8(name).c_str()).internal_object());
}

String Document::Xml() const {
    return FromUtf8(Bytes());
}

std::string Document::Bytes() const {
    return Serialise(m_body->document);
}

}  // namespace kestrum::modXml
