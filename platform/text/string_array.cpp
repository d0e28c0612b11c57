#include "qellib10/platform/text/string_array.h"

int CStringArray::Add(const char* text) {
    m_texts.emplace_back(text);
    return GetSize() - 1;
}

const CString& CStringArray::GetAt(int index) const noexcept {
    static const CString none;
    return index >= 0 && index < GetSize() ? m_texts[static_cast<std::size_t>(index)] : none;
}

void CStringArray::SetAt(int index, const char* text) {
    if (index >= 0 && index < GetSize()) m_texts[static_cast<std::size_t>(index)] = text;
}

void CStringArray::RemoveAt(int index) {
    if (index >= 0 && index < GetSize()) m_texts.erase(m_texts.begin() + index);
}
