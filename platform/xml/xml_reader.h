#pragma once

#include <string>

namespace pugi {
class xml_document;
}

namespace qel {

/// What is known of a text's names before it is read.
enum class XmlNames {
    inCodePage,  // all of the text comes from there
    any          // those that are not are refused
};

/// Builds the tree of a text in UTF-8. What the parser lets pass although XML forbids it is refused here.
/// @param text the tree's own texts stand in it afterwards
/// @throws DataError when it is refused; the tree is then in any state
void ReadXml(pugi::xml_document& tree, std::string& text, XmlNames names);

}  // namespace qel
