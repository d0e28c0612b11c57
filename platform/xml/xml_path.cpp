#include "qellib10/platform/xml/xml_path.h"

#include <algorithm>
#include <string>

#include <pugixml.hpp>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_text.h"

namespace qel {
namespace {

std::size_t SkipBlanks(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(kXmlBlanks, at), text.size());
}

// The position after parentheses, with nothing between them, that open at or after @p at; @p at if there are none.
std::size_t SkipParentheses(std::string_view text, std::size_t at) {
    const std::size_t open = SkipBlanks(text, at);
    if (!text.substr(open).starts_with('(')) return at;
    const std::size_t close = SkipBlanks(text, open + 1);
    return text.substr(close).starts_with(')') ? close + 1 : at;
}

// The end of the name or string that starts at @p at, or the next position.
std::size_t EndOfToken(std::string_view text, std::size_t at) {
    if (text[at] == '\'' || text[at] == '"') return std::min(text.find(text[at], at + 1), text.size() - 1) + 1;
    std::size_t end = at;
    while (end < text.size() && IsXmlNamePart(text[end])) ++end;
    return std::max(end, at + 1);
}

// XPath has no end(): the last sibling is the one whose position is the last. `last()` instead would be wrong in
// `[end() and B]`.
std::string WithoutEndFunction(std::string_view path) {
    std::string result;
    for (std::size_t at = 0; at < path.size();) {
        std::size_t end = EndOfToken(path, at);
        const std::string_view token = path.substr(at, end - at);
        const std::size_t next = token == "end" ? SkipParentheses(path, end) : end;
        result += next != end ? "(position()=last())" : token;
        at = next;
    }
    return result;
}

template <class Evaluate> auto WithQuery(std::string_view path, Evaluate evaluate) {
    try {
        return evaluate(pugi::xpath_query(WithoutEndFunction(ToUtf8(path)).c_str()));
    } catch (const pugi::xpath_exception& error) {  // also if the result is not a set of nodes
        throw DataError(error.what());
    }
}

}  // namespace

pugi::xpath_node FindXml(pugi::xml_node context, std::string_view path) {
    return WithQuery(path, [&](const pugi::xpath_query& query) { return query.evaluate_node(context); });
}

pugi::xpath_node_set FindAllXml(pugi::xml_node context, std::string_view path) {
    return WithQuery(path, [&](const pugi::xpath_query& query) {
        auto nodes = query.evaluate_node_set(context);
        nodes.sort();
        return nodes;
    });
}

}  // namespace qel
