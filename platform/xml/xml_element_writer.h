#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

class XmlOutput;

/// Writes a document element by element, without a tree: the bytes are those that XmlDocument writes for the same
/// elements. Values and texts are in the code page; characters that XML cannot have become `?`. Names are the program's
/// own, of ASCII, and live as long as this object.
///
/// @throws DataError for an operation that the state of the document does not allow
class QELLIB10_API XmlElementWriter {
public:
    XmlElementWriter();
    ~XmlElementWriter();
    XmlElementWriter(const XmlElementWriter&) = delete;
    XmlElementWriter& operator=(const XmlElementWriter&) = delete;

    /// Begins an element within the one that is open, the first one is the root.
    void Begin(const char* name);
    /// Only before texts and elements are put into the element that is open.
    void Attribute(const char* name, int value);
    void Attribute(const char* name, std::string_view value);
    void Text(std::string_view text);
    void Text(int value);
    void End();

    /// The document in UTF-8, once all elements have ended.
    std::string Bytes();

private:
    XmlOutput& AttributeOutput(const char* name);
    void CloseTag();

    std::unique_ptr<XmlOutput> m_pOutput;
    std::vector<const char*> m_aryOpen;
    bool m_isTagOpen = false;  // `>` is still to come
};

}  // namespace qel
