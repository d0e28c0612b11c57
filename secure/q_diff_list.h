#pragma once

#include <list>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// One changed item: its name, and its value before and after the change as text. A value class, empty at first.
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

/// The differences between two states of a set of named values, in the order in which they were added: what a person
/// confirms before a change is kept, and what the history shows later. A note that somebody writes by hand, such as
/// "blank changed", does not have the former value, and nobody can find it again.
///
/// @code
/// CDiffItem item;
/// item.SetName("blank");
/// item.SetBefore("0.30 mL");
/// item.SetAfter("0.35 mL");
/// CQDiffList changes;
/// changes.AddDiffItem(item);
/// for (int i = 0; changes.GetDiffItemIndex(i, &item); ++i)
///     std::printf("%s: %s -> %s\n", item.GetName().GetString(), item.GetBefore().GetString(),
///                 item.GetAfter().GetString());
/// @endcode
///
/// The list keeps copies, and a copy of the list has its own. Nothing is thrown but std::bad_alloc. One thread at a
/// time.
class QELLIB10_API CQDiffList {
public:
    CQDiffList();
    CQDiffList(const CQDiffList& other);
    CQDiffList& operator=(const CQDiffList& other);
    virtual ~CQDiffList();

    void AddDiffItem(CDiffItem item);
    int GetCount() const { return static_cast<int>(m_lstItem.size()); }
    /// @param index from 0; the time grows with it
    /// @param item receives the texts of that item
    /// @return 0, and @p item does not change, if there is no such item or @p item is null; else 1
    int GetDiffItemIndex(int index, CDiffItem* item) const;
    /// Removes all items.
    void InitParameter();

private:
    std::list<CDiffItem> m_lstItem;
};
