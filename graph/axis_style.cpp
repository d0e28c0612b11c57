#include "qellib10/graph/axis_style.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "qellib10/platform/text/number_text.h"

#include "qellib10/base/q_variant.h"

namespace {

enum LabelType { kNumber, kTime, kFixedTexts };
enum Position { kRight, kLeft };

CString NumberInField(double value, int position, int digit, int decimal) {
    if (position != kRight && position != kLeft) return CString();
    const auto limited = [](int count) { return std::clamp(count, -qel::kMaxColumns, qel::kMaxColumns); };
    // Adding 0 turns the -0 from -0.5 into 0.
    std::string text =
        decimal < 1 ? qel::FixedText(std::trunc(value) + 0.0, 0) : qel::FixedText(value, limited(decimal));
    const int width = decimal < 1 ? limited(digit) : limited(digit) + limited(decimal) + 2;
    const std::size_t columns = static_cast<std::size_t>(std::abs(width));
    if (text.size() < columns) {
        // A width below 0 means left-aligned, like in printf.
        text.insert(position == kLeft || width < 0 ? text.size() : 0, columns - text.size(), ' ');
    }
    return CString(std::string_view(text));
}

}  // namespace

CAxisStyle::~CAxisStyle() = default;

double CAxisStyle::GetAbsRange() const { return std::fabs(m_dMaxRange - m_dMinRange); }

CString CAxisStyle::GetFormattedValue(double value, int labelType, int position, int digit, int decimal) {
    switch (labelType) {
        case kNumber:
            return NumberInField(value, position, digit, decimal);
        case kTime:
            return CQVariant::DoubleToDatetimeStr(value);
        default:
            return CString();
    }
}

CString CAxisStyle::GetFormattedMinValue(int position) const {
    if (m_nLabelType == kFixedTexts) return m_szMinStr;
    return GetFormattedValue(m_dMinRange, m_nLabelType, position < 0 ? m_nStrPosition : position, m_nDigit, m_nDecimal);
}

CString CAxisStyle::GetFormattedMaxValue(int position) const {
    if (m_nLabelType == kFixedTexts) return m_szMaxStr;
    return GetFormattedValue(m_dMaxRange, m_nLabelType, position < 0 ? m_nStrPosition : position, m_nDigit, m_nDecimal);
}
