#include "qellib10/platform/text/string_array.h"

#include <utility>

int CStringArray::Add(CString text) {
    m_texts.push_back(std::move(text));
    return GetSize() - 1;
}

const CString& CStringArray::GetAt(int index) const noexcept {
    static const CString none;
    return index >= 0 && index < GetSize() ? m_texts[static_cast<std::size_t>(index)] : none;
}

void CStringArray::SetAt(int index, CString text) {
    if (index >= 0 && index < GetSize()) m_texts[static_cast<std::size_t>(index)] = std::move(text);
}

void CStringArray::RemoveAt(int index) {
    if (index >= 0 && index < GetSize()) m_texts.erase(m_texts.begin() + index);
}
