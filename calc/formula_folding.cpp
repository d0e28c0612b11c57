#include "qellib10/calc/formula_folding.h"

namespace qel {
namespace {

constexpr CheckedOperand kUnknown{};

bool IsKnown(const CheckedOperand& operand) { return operand.state == kStateKnown; }
bool IsUnknown(const CheckedOperand& operand) { return operand.state == kStateUnknown; }
bool IsZero(const CheckedOperand& operand) { return IsKnown(operand) && operand.value == 0.0; }
bool AreKnown(const CheckedOperand& a, const CheckedOperand& b) { return IsKnown(a) && IsKnown(b); }

}  // namespace

CheckedOperand FoldSum(const CheckedOperand& a, const CheckedOperand& b) {
    if (b.Failed()) return FailedOperand();
    return AreKnown(a, b) ? KnownOperand(a.value + b.value) : kUnknown;
}

CheckedOperand FoldDifference(const CheckedOperand& a, const CheckedOperand& b) {
    if (b.Failed()) return FailedOperand();
    if (AreKnown(a, b)) return KnownOperand(a.value - b.value);
    return IsUnknown(a) && IsUnknown(b) && a.name == b.name ? KnownOperand(0.0) : kUnknown;
}

CheckedOperand FoldProduct(const CheckedOperand& a, const CheckedOperand& b) {
    if (b.Failed()) return FailedOperand();
    if (AreKnown(a, b)) return KnownOperand(a.value * b.value);
    return IsZero(b) || (IsZero(a) && IsUnknown(b)) ? KnownOperand(0.0) : kUnknown;
}

CheckedOperand FoldQuotient(const CheckedOperand& a, const CheckedOperand& b) {
    if (b.Failed() || IsZero(b)) return FailedOperand();
    if (AreKnown(a, b)) return KnownOperand(a.value / b.value);
    return IsZero(a) && IsUnknown(b) ? KnownOperand(0.0) : kUnknown;
}

}  // namespace qel
