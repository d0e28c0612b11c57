#include "qellib10/quantity/operation_name.h"

namespace qel {

std::string_view NameOf(FormulaOperation operation) {
    using enum FormulaOperation;
    switch (operation) {
        case kNumber:
            return "number";
        case kConstant:
            return "constant";
        case kVariable:
        case kEarlier:
            return "variable";
        case kAbs:
            return "abs";
        case kSqrt:
            return "sqrt";
        case kExp:
            return "exp";
        case kLn:
            return "ln";
        case kLog10:
            return "log10";
        case kLog2:
            return "log2";
        case kRound:
            return "round";
        case kNot:
            return "not";
        case kAdd:
            return "+";
        case kNegate:
        case kSubtract:
            return "-";
        case kMultiply:
            return "*";
        case kDivide:
            return "/";
        case kPower:
            return "^";
        case kLess:
            return "<";
        case kLessOrEqual:
            return "<=";
        case kGreater:
            return ">";
        case kGreaterOrEqual:
            return ">=";
        case kEqual:
            return "=";
        case kNotEqual:
            return "<>";
        case kAnd:
        case kAndThen:
            return "and";
        case kOr:
        case kOrElse:
            return "or";
        case kMin:
            return "min";
        case kMax:
            return "max";
        case kMean:
            return "mean";
        case kSum:
            return "sum";
        case kIfNot:
        case kGoOn:
            return "if";
    }
    return {};
}

}  // namespace qel
