#include "qellib10/secure/history_renew_info.h"

#include "qellib10/platform/archive/archive.h"

#include "qellib10/secure/history_renew_format.h"

namespace {

const qel::RegisteredClass<CHistoryRenewInfo> theRegistration;

}  // namespace

CHistoryRenewInfo::CHistoryRenewInfo() : m_dtRenew(2001, 1, 1, 0, 0, 0) {}
CHistoryRenewInfo::CHistoryRenewInfo(const CHistoryRenewInfo& other) = default;
CHistoryRenewInfo& CHistoryRenewInfo::operator=(const CHistoryRenewInfo& other) = default;
CHistoryRenewInfo::~CHistoryRenewInfo() = default;

void CHistoryRenewInfo::InitParameter() { *this = CHistoryRenewInfo(); }

bool CHistoryRenewInfo::operator==(const CHistoryRenewInfo& other) const {
    return m_dtRenew == other.m_dtRenew && m_szFileName == other.m_szFileName && m_szOperator == other.m_szOperator &&
           m_szComment == other.m_szComment;
}

CObject* CHistoryRenewInfo::CreateObject() { return GetThisClass()->CreateObject(); }

const CRuntimeClass* CHistoryRenewInfo::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CHistoryRenewInfo, CObject>("CHistoryRenewInfo");
    return &theClass;
}

const CRuntimeClass* CHistoryRenewInfo::GetRuntimeClass() const { return GetThisClass(); }

void CHistoryRenewInfo::Serialize(CArchive& archive) {
    if (archive.IsStoring()) {
        archive << CString(qel::kRenewalTag) << CString(qel::kRenewalVersion) << m_dtRenew << m_szFileName
                << m_szOperator << m_szComment;
        return;
    }
    CString tag, version;
    archive >> tag >> version;
    if (tag.View() != qel::kRenewalTag || version.View() != qel::kRenewalVersion) return;
    CHistoryRenewInfo read;  // so that an archive that ends within the record changes nothing
    archive >> read.m_dtRenew >> read.m_szFileName >> read.m_szOperator >> read.m_szComment;
    *this = read;
}
