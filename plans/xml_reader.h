#pragma once
// A small, strict reader of XML documents into a tree of elements, for the exchange files
// that other observing programs write. It knows elements, attributes, text, CDATA, comments,
// processing instructions, a DOCTYPE without an internal subset and the character references
// and five predefined entities. Text is returned as UTF-8.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nocturnel {

struct XmlElement {
    std::string name;                                        // as written, prefix included ("oal:observations")
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;                                        // the element's own text, concatenated
    std::vector<std::unique_ptr<XmlElement>> children;

    std::string_view localName() const;                      // without a prefix
    const std::string* attribute(std::string_view name) const;  // by full or local name
    const XmlElement* child(std::string_view localName) const;  // first child of that local name
    std::vector<const XmlElement*> childrenNamed(std::string_view localName) const;
    std::string childText(std::string_view localName) const;    // trimmed text of the first such child
};

struct XmlParseError {
    std::size_t line = 0;
    std::string what;
};

// The document's root element, or nothing with the error's line and reason. Nesting is limited
// to 64 levels and the document to 16 MiB, so that no input can exhaust the stack or memory.
std::optional<std::unique_ptr<XmlElement>> parseXml(std::string_view document, XmlParseError& error);

// Escapes &, <, >, " and ' for text and attribute values.
std::string xmlEscape(std::string_view text);

}  // namespace nocturnel
