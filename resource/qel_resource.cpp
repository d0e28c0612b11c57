#include "qellib10/resource/qel_resource.h"

#include "qellib10/resource/string_ids.h"

namespace {

CString TextWithin(UINT id, UINT first, UINT last) {
    CString text;
    if (id >= first && id <= last) text.LoadString(id);
    return text;
}

}  // namespace

CQELResource::~CQELResource() = default;

int CQELResource::GetUnitCount() { return qel::kLastUnitId - qel::kFirstUnitId + 1; }
CString CQELResource::GetUnitText(UINT id) { return TextWithin(id, qel::kFirstUnitId, qel::kLastUnitId); }
int CQELResource::GetUnitID(const char* text) {
    if (text == nullptr || *text == '\0') return -1;
    for (UINT id = qel::kFirstUnitId; id <= qel::kLastUnitId; ++id) {
        if (GetUnitText(id) == text) return static_cast<int>(id);
    }
    return -1;
}

int CQELResource::GetModelCount() { return qel::kLastModelId - qel::kFirstModelId + 1; }
CString CQELResource::GetModelName(int index) {
    if (index < 0 || index >= GetModelCount()) return {};
    return TextWithin(qel::kFirstModelId + static_cast<UINT>(index), qel::kFirstModelId, qel::kLastModelId);
}
