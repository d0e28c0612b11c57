#pragma once

#include <list>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// One item that was changed: its name, and its value before and after the change as text. A value class, empty at
/// first.
class QELLIB10_API CDiffItem {
public:
    CDiffItem();
    CDiffItem(const CDiffItem& other);
    CDiffItem& operator=(const CDiffItem& other);
    virtual ~CDiffItem();

    const CString& GetName() const { return m_szName; }
    const CString& GetBefore() const { return m_szBefore; }
    const CString& GetAfter() const { return m_szAfter; }
    void SetName(const CString& name) { m_szName = name; }
    void SetBefore(const CString& before) { m_szBefore = before; }
    void SetAfter(const CString& after) { m_szAfter = after; }

    /// Empties all three.
    void InitParameter();

private:
    CString m_szName;
    CString m_szBefore;
    CString m_szAfter;
};

/// What differs between two states of a set of named values, in the order in which it was added. The list keeps copies.
class QELLIB10_API CQDiffList {
public:
    CQDiffList();
    CQDiffList(const CQDiffList& other);
    CQDiffList& operator=(const CQDiffList& other);
    virtual ~CQDiffList();

    void AddDiffItem(CDiffItem item);
    int GetCount() const { return static_cast<int>(m_lstItem.size()); }
    /// @param index from 0; the time it takes grows with it
    /// @param item takes the texts of that item
    /// @return 0, and @p item as it was, when there is no such item or @p item is null; else 1
    int GetDiffItemIndex(int index, CDiffItem* item) const;
    /// Removes all items.
    void InitParameter();

private:
    std::list<CDiffItem> m_lstItem;
};
