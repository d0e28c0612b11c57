#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/xml/xml_node.h"

namespace pugi {
class xml_document;
}

namespace qel {

enum class XmlNames;

/// An XML document in memory: one root element with what is before and after it, or nothing at all.
///
/// Loading is strict and limited by the size of the text: XML that is not well-formed is refused, and so is nesting
/// deeper than 512 levels. A document type is kept as it is; nothing external is read and its entities are unknown, so
/// a reference to one is refused. Names and the document type must be in the code page, because the document may be
/// written in it. Characters of texts that are missing in the page are kept, and written as numeric references. White
/// space between elements is kept; line ends are LF in memory and CR LF in what is written.
///
/// A text that was written, loaded and written again has the same bytes.
class QELLIB10_API XmlDocument {
public:
    XmlDocument();
    ~XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    /// Removes everything from the document, including the root.
    void Empty() noexcept;

    /// Loads text of the process's code page, whatever encoding it declares; or UTF-8.
    /// @throws DataError when the text is refused; the document is then empty
    void LoadText(std::string_view text);
    void LoadUtf8(std::string utf8);
    /// Loads the bytes of a file: in the encoding of their byte-order mark, else the one that they declare, else UTF-8.
    /// @throws DataError when they are refused; the document is then empty
    void LoadBytes(std::string bytes);

    /// The document in the process's code page, without naming an encoding; "" if it has no root.
    std::string Text() const;
    /// The document as a file in the encoding that it declares, or in UTF-8, which is written without a byte-order
    /// mark.
    /// @throws DataError when the system does not know that encoding, or a character of a name is missing in it
    std::string Bytes() const;

    std::optional<XmlNode> Root() const;

private:
    void Load(std::string utf8, XmlNames names);
    std::size_t ExpectedSize() const;

    std::string m_source;  // the tree's texts point into it
    std::unique_ptr<pugi::xml_document> m_tree;
};

}  // namespace qel
