#pragma once

#include <string_view>

namespace pugi {
class xml_node;
class xpath_node;
class xpath_node_set;
}  // namespace pugi

namespace qel {

/// The first node of a path from @p context, null if there is none; and all of them in document order.
/// @param path in the process's code page, as described at XmlNode
/// @throws DataError for a bad one
pugi::xpath_node FindXml(pugi::xml_node context, std::string_view path);
pugi::xpath_node_set FindAllXml(pugi::xml_node context, std::string_view path);

}  // namespace qel
