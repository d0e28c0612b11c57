#include <algorithm>
#include <charconv>
#include <vector>

#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_hints.h"
#include "qellib10/quantity/formula_parser.h"

// What formulas compute with: numbers, constants and variables.
namespace qel {
namespace {

using Operation = FormulaOperation;

constexpr std::string_view kConstantPrefix = "const.";

}  // namespace

FormulaParser::Part FormulaParser::Number() {
    const FormulaToken at = Taken();
    DecimalFlags flags;
    WrittenNumber number{Decimal::OfText(at.text, flags), 0.0, flags.isInexact};
    const auto [end, error] = std::from_chars(at.text.data(), at.text.data() + at.text.size(), number.nearest);
    const bool isTooLarge = error == std::errc::result_out_of_range && number.value.Magnitude() > 0;
    if (isTooLarge || flags.isTooLarge || !number.value.IsFinite()) Refuse(FormulaError::Kind::kTooLarge, at, {});
    m_builder.AddNumber(number, at);
    return Since(at.position, Type::kNumber);
}

// Variables win over functions and constants, so that a formula means what it meant before there were any.
FormulaParser::Part FormulaParser::Word() {
    const FormulaToken name = Taken();
    const bool isVariable = m_scope.Find(name.text).has_value();
    if (!isVariable && m_token.Is("(")) return Call(name);
    if (!isVariable && name.text.starts_with(kConstantPrefix)) {
        const std::string_view wanted = name.text.substr(kConstantPrefix.size());
        const auto constants = FormulaConstants();
        const auto found = std::ranges::find(constants, wanted, &FormulaConstant::name);
        if (found == constants.end()) {
            std::vector<std::string_view> names;
            for (const FormulaConstant& each : constants) names.push_back(each.name);
            Refuse(FormulaError::Kind::kName, name, "a constant", NearestName(wanted, names));
        }
        m_builder.Add(Operation::kConstant, name, static_cast<std::size_t>(found - constants.begin()), 1);
        return Since(name.position, Type::kNumber);
    }
    return Variable(name);
}

FormulaParser::Part FormulaParser::Variable(const FormulaToken& name) {
    const std::optional<std::size_t> position = m_scope.Find(name.text);
    if (!position) {
        if (name.kind == FormulaToken::Kind::kWord) RefuseLookAlikes(m_text, name.position, name.length);
        Refuse(FormulaError::Kind::kName, name, "a variable", WrittenName(m_scope.Nearest(name.text)));
    }
    m_builder.AddVariable(*position, name);
    return Since(name.position, Type::kNumber);
}

}  // namespace qel
