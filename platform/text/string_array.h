#pragma once

#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// A growable list of texts, positions from 0.
class QELLIB10_API CStringArray {
public:
    int GetSize() const noexcept { return static_cast<int>(m_texts.size()); }
    int GetCount() const noexcept { return GetSize(); }
    bool IsEmpty() const noexcept { return m_texts.empty(); }
    void RemoveAll() noexcept { m_texts.clear(); }
    /// @return the position of the new last text
    int Add(CString text);
    /// The text at @p index; empty outside the list.
    const CString& GetAt(int index) const noexcept;
    const CString& operator[](int index) const noexcept { return GetAt(index); }
    /// Outside the list: nothing happens.
    void SetAt(int index, CString text);
    void RemoveAt(int index);

private:
    std::vector<CString> m_texts;
};
