#include "qellib10/calc/calc_variable_list.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/archive/archive.h"

#include "qellib10/base/q_variant.h"
#include "qellib10/calc/calc_archive_format.h"
#include "qellib10/calc/calc_variable_index.h"

namespace {

const qel::RegisteredClass<CCalcVariableList> theRegistration;

bool IsUsed(const CCalcVariable& variable) { return variable.m_nUse != 0; }

}  // namespace

CCalcVariableList::CCalcVariableList() : m_pIndex(std::make_unique<qel::CalcVariableIndex>()) {}
CCalcVariableList::CCalcVariableList(const CCalcVariableList& other)
    : CObject(other),
      m_nRoundUpFlag(other.m_nRoundUpFlag),
      m_nRoundUpDigit(other.m_nRoundUpDigit),
      m_aryVariable(other.m_aryVariable),
      m_pIndex(std::make_unique<qel::CalcVariableIndex>(*other.m_pIndex)) {}
CCalcVariableList& CCalcVariableList::operator=(const CCalcVariableList& other) {
    // Copied first: if memory runs out, variables and index must not come from two lists.
    CCalcVariableList copy(other);
    m_nRoundUpFlag = copy.m_nRoundUpFlag;
    m_nRoundUpDigit = copy.m_nRoundUpDigit;
    m_aryVariable.swap(copy.m_aryVariable);
    m_pIndex.swap(copy.m_pIndex);
    return *this;
}
CCalcVariableList::~CCalcVariableList() = default;

int CCalcVariableList::operator!=(const CCalcVariableList& other) const {
    return m_nRoundUpFlag != other.m_nRoundUpFlag || m_nRoundUpDigit != other.m_nRoundUpDigit ||
           m_aryVariable != other.m_aryVariable;
}

const CRuntimeClass* CCalcVariableList::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CCalcVariableList, CObject>("CCalcVariableList");
    return &theClass;
}

const CRuntimeClass* CCalcVariableList::GetRuntimeClass() const { return GetThisClass(); }

void CCalcVariableList::InitParameter() {
    RemoveAll();
    m_nRoundUpFlag = 0;
    m_nRoundUpDigit = 0;
}

const int& CCalcVariableList::GetRoundUpFlag() const { return m_nRoundUpFlag; }
void CCalcVariableList::SetRoundUpFlag(const int& flag) { m_nRoundUpFlag = flag; }
const int& CCalcVariableList::GetRoundUpDigit() const { return m_nRoundUpDigit; }
void CCalcVariableList::SetRoundUpDigit(const int& digit) { m_nRoundUpDigit = digit; }

int CCalcVariableList::Find(const CString& name) const { return m_pIndex->FindExact(m_aryVariable, name.View()); }

int CCalcVariableList::FindIgnoringCase(std::string_view name) const {
    return m_pIndex->FindFolded(m_aryVariable, name);
}

int CCalcVariableList::GetVariableCount() const { return static_cast<int>(m_aryVariable.size()); }

int CCalcVariableList::GetVariableData(int index, CCalcVariable* out) const {
    if (out == nullptr || !Has(index)) return 0;
    *out = At(index);
    out->m_dValue = Rounded(out->m_dValue);
    return 1;
}

int CCalcVariableList::SetVariableData(int index, CCalcVariable variable) {
    if (!Has(index)) return 0;
    CCalcVariable& entry = At(index);
    if (entry.m_szName != variable.m_szName) m_pIndex->Invalidate();
    variable.m_dValue = Rounded(variable.m_dValue);
    entry = std::move(variable);
    return 1;
}

void CCalcVariableList::AddVariableData(CCalcVariable variable) {
    variable.m_dValue = Rounded(variable.m_dValue);
    variable.m_nState = 0;
    const int index = Find(variable.m_szName);
    if (index >= 0) {
        CCalcVariable& entry = At(index);
        variable.m_nOption1 = entry.m_nOption1;
        variable.m_nOption2 = entry.m_nOption2;
        entry = std::move(variable);
        return;
    }
    variable.m_nOption1 = 1;
    variable.m_nOption2 = 1;
    m_aryVariable.push_back(std::move(variable));
}

int CCalcVariableList::SetVariableValue(CString name, double value) {
    const int index = Find(name);
    if (index < 0) return 0;
    At(index).m_dValue = Rounded(value);
    return 1;
}

int CCalcVariableList::GetVariableDataAtName(CString name, CCalcVariable* out) const {
    return GetVariableData(Find(name), out);
}

int CCalcVariableList::DeleteVariableAtName(CString name) {
    const int index = Find(name);
    if (index < 0) return 0;
    m_aryVariable.erase(m_aryVariable.begin() + index);
    m_pIndex->Invalidate();
    return 1;
}

void CCalcVariableList::ClearViewFlag() {
    for (CCalcVariable& variable : m_aryVariable) variable.m_nUse = 0;
}

int CCalcVariableList::GetUseVariableCount() const {
    return static_cast<int>(std::ranges::count_if(m_aryVariable, IsUsed));
}

int CCalcVariableList::GetUseVariableData(int index, CCalcVariable* out) const {
    if (index < 0) return 0;
    int left = index;
    const auto found = std::ranges::find_if(
        m_aryVariable, [&left](const CCalcVariable& variable) { return IsUsed(variable) && left-- == 0; });
    return GetVariableData(static_cast<int>(found - m_aryVariable.begin()), out);
}

// The value goes out of the list and back in, like a caller's, so it is rounded twice.
void CCalcVariableList::StoreUsed(CCalcVariable& entry) {
    entry.m_dValue = Rounded(Rounded(entry.m_dValue));
    entry.m_nUse = 1;
}

double CCalcVariableList::RoundedUp(double value) const { return CQVariant::fround(value, m_nRoundUpDigit, 0); }

void CCalcVariableList::RemoveAll() {
    m_aryVariable.clear();
    m_pIndex->Invalidate();
}

void CCalcVariableList::Serialize(CArchive& archive) {
    if (archive.IsStoring()) {
        Store(archive);
    } else {
        Load(archive);
    }
}

void CCalcVariableList::Store(CArchive& archive) {
    qel::WriteCalcHead(archive, qel::kCalcListVersion);
    archive << static_cast<BYTE>(m_nRoundUpFlag & 0xFF) << m_nRoundUpDigit << GetVariableCount();
    for (CCalcVariable& variable : m_aryVariable) variable.Serialize(archive);
}

void CCalcVariableList::Load(CArchive& archive) {
    const CString version = qel::ReadCalcHead(archive);
    BYTE flag = 0;
    int digit = 0;
    if (version == qel::kCalcListVersion) {
        archive >> flag >> digit;
    } else if (version != qel::kCalcListEarlierVersion) {
        return;
    }
    int count = 0;
    archive >> count;
    RemoveAll();
    m_nRoundUpFlag = flag;
    m_nRoundUpDigit = digit;
    LoadVariables(archive, count);
}

void CCalcVariableList::LoadOldVariableList(CArchive& archive) {
    RemoveAll();
    int count = 0;
    archive >> count;
    LoadVariables(archive, count);
}

// The count may be forged: each variable is appended after it has been read, and nothing is reserved.
void CCalcVariableList::LoadVariables(CArchive& archive, int count) {
    for (; count > 0; --count) {
        CCalcVariable variable;
        if (!variable.Load(archive)) return;
        m_aryVariable.push_back(std::move(variable));
    }
}
