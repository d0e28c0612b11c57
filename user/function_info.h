#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// One function of an application that not every user may use (a screen, a command, a setting), and a user's level for
/// it. A value class; the application defines what identifiers and levels mean.
class QELLIB10_API CFunctionInfo {
public:
    CFunctionInfo() = default;
    CFunctionInfo(int functionID, const CString& functionName, int securityLevel);
    CFunctionInfo(const CFunctionInfo&) = default;
    CFunctionInfo& operator=(const CFunctionInfo&) = default;
    virtual ~CFunctionInfo();

    /// Resets identifier and level to 0 and the name to the empty text, as in a new object.
    void Empty();

    const int& GetFunctionID() const { return m_nFunctionID; }
    void SetFunctionID(const int& functionID) { m_nFunctionID = functionID; }

    /// The name that people see.
    const CString& GetFunctionName() const { return m_szFunctionName; }
    void SetFunctionName(const CString& functionName) { m_szFunctionName = functionName; }

    const int& GetSecurityLevel() const { return m_nSecurityLevel; }
    void SetSecurityLevel(const int& securityLevel) { m_nSecurityLevel = securityLevel; }

private:
    int m_nFunctionID = 0;
    CString m_szFunctionName;
    int m_nSecurityLevel = 0;
};
