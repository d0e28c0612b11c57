#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

class XmlOutput;

/// Writes a document element by element, without a tree. The bytes are those that XmlDocument writes for the same
/// elements, and XmlDocument loads them. Values and texts are in the code page; characters that XML cannot contain
/// become `?`. Names come from the program, are ASCII, and must live as long as this object.
///
/// @throws DataError for what would not be XML; that call writes nothing, and the document can be continued
class QELLIB10_API XmlElementWriter {
public:
    XmlElementWriter();
    ~XmlElementWriter();
    XmlElementWriter(const XmlElementWriter&) = delete;
    XmlElementWriter& operator=(const XmlElementWriter&) = delete;

    /// Starts an element within the open one; the first one is the root.
    /// @throws DataError for a null or invalid name, a second root, and elements nested deeper than 512 levels
    void Begin(const char* name);
    /// Only before texts and elements are added to the open element.
    /// @throws DataError otherwise, for a null or invalid name, and for one that the element already has
    void Attribute(const char* name, int value);
    void Attribute(const char* name, std::string_view value);
    /// @throws DataError outside the root
    void Text(std::string_view text);
    void Text(int value);
    /// The same for a text in UTF-8.
    void Utf8Text(std::string_view text);
    /// @throws DataError when no element is open
    void End();

    /// The document in UTF-8, once, after all elements have ended.
    /// @throws DataError before that, without a root, and for the second call
    std::string Bytes();

private:
    XmlOutput& AttributeOutput(const char* name);
    XmlOutput& TextOutput();
    void CloseTag();
    void PutName(const char* name, std::size_t start);

    std::unique_ptr<XmlOutput> m_pOutput;  // null after it was taken
    std::vector<const char*> m_aryOpen;
    std::vector<const char*> m_aryAttribute;  // of the open tag
    bool m_hasRoot = false;
    bool m_isTagOpen = false;  // `>` is not yet written
};

}  // namespace qel
