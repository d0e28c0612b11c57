#include "qellib10/quantity/value_text.h"

#include "qellib10/quantity/unit_parser.h"

namespace qel {

std::string AfterValue(const std::string& unit) {
    if (unit.empty()) return {};
    return (UnitParser::ContinuesNumber(unit) ? " × " : " ") + unit;
}

}  // namespace qel
