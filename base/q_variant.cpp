#include "qellib10/base/q_variant.h"

#include <type_traits>

#include "qellib10/platform/text/multibyte.h"

namespace {

// What "equal" means for the values of each type.
template <typename T> bool SameValue(const T& a, const T& b) {
    if constexpr (std::is_same_v<T, std::monostate>) {
        return false;
    } else if constexpr (std::is_floating_point_v<T>) {
        return !(a < b) && !(a > b);
    } else if constexpr (std::is_same_v<T, CString>) {
        return qel::CompareText(a.View(), b.View()) == 0;
    } else {
        return a == b;
    }
}

template <typename T> CQVariant Holding(const T& value) {
    CQVariant holder;
    holder = value;
    return holder;
}

}  // namespace

CQVariant::~CQVariant() = default;

CQVariant& CQVariant::operator=(bool value) {
    m_value = value;
    return *this;
}
CQVariant& CQVariant::operator=(int value) {
    m_value = value;
    return *this;
}
CQVariant& CQVariant::operator=(float value) {
    m_value = value;
    return *this;
}
CQVariant& CQVariant::operator=(double value) {
    m_value = value;
    return *this;
}
CQVariant& CQVariant::operator=(const CString& value) {
    m_value = value;
    return *this;
}
CQVariant& CQVariant::operator=(const char* value) { return *this = CString(value); }
CQVariant& CQVariant::operator=(const COleDateTime& value) {
    m_value = value;
    return *this;
}

int CQVariant::ChangeType(int) { return 0; }

bool CQVariant::operator==(const CQVariant& other) const {
    if (GetType() != other.GetType()) return false;
    return std::visit(
        [&](const auto& mine) { return SameValue(mine, std::get<std::decay_t<decltype(mine)>>(other.m_value)); },
        m_value);
}
bool CQVariant::operator==(bool value) const { return *this == Holding(value); }
bool CQVariant::operator==(int value) const { return *this == Holding(value); }
bool CQVariant::operator==(float value) const { return *this == Holding(value); }
bool CQVariant::operator==(double value) const { return *this == Holding(value); }
bool CQVariant::operator==(const CString& value) const { return *this == Holding(value); }
bool CQVariant::operator==(const char* value) const { return *this == Holding(value); }
bool CQVariant::operator==(const COleDateTime& value) const { return *this == Holding(value); }
