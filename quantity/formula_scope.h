#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qellib10/platform/export.h"

class CCalcVariableList;

namespace qel {

/// The names that formulas may use, found in a time that does not grow with their number. As in all formulas, the case
/// of Latin, Greek and Cyrillic letters does not count, and of several equal names the first one does. Positions count
/// from 0 and are those of the values that a formula is evaluated with.
class QELLIB10_API FormulaScope {
public:
    FormulaScope() = default;
    /// The names of a list, from the code page of the process. Later changes of the list are not seen.
    explicit FormulaScope(const CCalcVariableList& list);

    /// Adds a name in UTF-8. @return its position; that of the first one if it is there already
    std::size_t Add(std::string_view name);

    std::optional<std::size_t> Find(std::string_view name) const;
    const std::string& Name(std::size_t position) const { return m_names.at(position); }
    std::size_t Count() const noexcept { return m_names.size(); }

    /// The known name that a misspelt one may have meant; empty if none is near. Looks at 10,000 names at most.
    std::string Nearest(std::string_view name) const;

private:
    std::vector<std::string> m_names;
    std::unordered_map<std::string, std::size_t> m_positions;  // by folded name
};

/// The one of @p names that is most like @p name, with at most a third of its bytes changed; empty if none is.
/// A name of one character has no other that is like it, but for upper and lower case.
std::string NearestName(std::string_view name, const std::vector<std::string_view>& names);

}  // namespace qel
