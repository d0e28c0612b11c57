#include "qellib10/secure/q_diff_list.h"

#include <iterator>

CDiffItem::CDiffItem() = default;
CDiffItem::CDiffItem(const CDiffItem& other) = default;
CDiffItem& CDiffItem::operator=(const CDiffItem& other) = default;
CDiffItem::~CDiffItem() = default;

void CDiffItem::InitParameter() { *this = CDiffItem(); }

CQDiffList::CQDiffList() = default;
CQDiffList::CQDiffList(const CQDiffList& other) = default;
CQDiffList& CQDiffList::operator=(const CQDiffList& other) = default;
CQDiffList::~CQDiffList() = default;

void CQDiffList::AddDiffItem(CDiffItem item) { m_lstItem.push_back(item); }

int CQDiffList::GetDiffItemIndex(int index, CDiffItem* item) const {
    if (item == nullptr || index < 0 || index >= GetCount()) return 0;
    *item = *std::next(m_lstItem.begin(), index);
    return 1;
}

void CQDiffList::InitParameter() { m_lstItem.clear(); }
