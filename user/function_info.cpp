#include "qellib10/user/function_info.h"

CFunctionInfo::CFunctionInfo(int functionID, const CString& functionName, int securityLevel)
    : m_nFunctionID(functionID), m_szFunctionName(functionName), m_nSecurityLevel(securityLevel) {}

CFunctionInfo::~CFunctionInfo() = default;

void CFunctionInfo::Empty() {
    m_nFunctionID = 0;
    m_szFunctionName.Empty();
    m_nSecurityLevel = 0;
}
