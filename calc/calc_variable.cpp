#include "qellib10/calc/calc_variable.h"

#include <tuple>

#include "qellib10/platform/archive/archive.h"

#include "qellib10/calc/calc_archive_format.h"

namespace {

const qel::RegisteredClass<CCalcVariable> theRegistration;

BYTE LowByte(int flag) { return static_cast<BYTE>(flag & 0xFF); }

int ReadFlag(CArchive& archive) {
    BYTE flag = 0;
    archive >> flag;
    return flag;
}

}  // namespace

CCalcVariable::CCalcVariable() = default;
CCalcVariable::CCalcVariable(const CCalcVariable& other) = default;
CCalcVariable::CCalcVariable(CCalcVariable&& other) noexcept = default;
CCalcVariable& CCalcVariable::operator=(const CCalcVariable& other) = default;
CCalcVariable& CCalcVariable::operator=(CCalcVariable&& other) noexcept = default;
CCalcVariable::~CCalcVariable() = default;

void CCalcVariable::InitParameter() { *this = CCalcVariable(); }

int CCalcVariable::operator==(const CCalcVariable& other) const {
    return m_szName == other.m_szName && m_dValue == other.m_dValue && m_nState == other.m_nState &&
           m_nOption1 == other.m_nOption1 && m_nUse == other.m_nUse && m_nOption2 == other.m_nOption2 &&
           m_szText == other.m_szText;
}

int CCalcVariable::operator!=(const CCalcVariable& other) const { return !(*this == other); }

const CRuntimeClass* CCalcVariable::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CCalcVariable, CObject>("CCalcVariable");
    return &theClass;
}

const CRuntimeClass* CCalcVariable::GetRuntimeClass() const { return GetThisClass(); }

void CCalcVariable::Serialize(CArchive& archive) {
    if (!archive.IsStoring()) {
        Load(archive);
        return;
    }
    qel::WriteCalcHead(archive, qel::kCalcVariableVersion);
    archive << m_szName << m_dValue << m_nState;
    archive << LowByte(m_nOption1) << LowByte(m_nUse) << LowByte(m_nOption2);
    archive << m_szText;
}

bool CCalcVariable::Load(CArchive& archive) {
    if (qel::ReadCalcHead(archive) != qel::kCalcVariableVersion) return false;
    CCalcVariable read;  // so that an archive that ends within the record changes nothing
    archive >> read.m_szName >> read.m_dValue >> read.m_nState;
    read.m_nOption1 = ReadFlag(archive);
    read.m_nUse = ReadFlag(archive);
    read.m_nOption2 = ReadFlag(archive);
    archive >> read.m_szText;
    *this = std::move(read);
    return true;
}
