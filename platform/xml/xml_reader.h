#pragma once

#include <string>

namespace pugi {
class xml_document;
}

namespace qel {

/// What is known about a text's names before it is read.
enum class XmlNames {
    inCodePage,  // the whole text comes from there
    any          // names outside it are refused
};

/// Builds the tree of a text in UTF-8. Refuses what the parser accepts although XML forbids it.
/// @param text the tree's own texts point into it afterwards
/// @throws DataError when it is refused; the tree is then in any state
void ReadXml(pugi::xml_document& tree, std::string& text, XmlNames names);

}  // namespace qel
