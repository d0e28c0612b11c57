#pragma once

#include <list>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/function_info.h"

/// What one user may do: a level for each function of the application, and two privileges above all levels. A manager
/// may do everything; so may a maker, the account of the instrument maker's service, who is always also a manager.
///
/// An application derives a class that fills the table with its functions; the base class creates an empty one:
///
/// @code
/// class TitratorSecurity : public CFunctionSecurity {
/// public:
///     TitratorSecurity() { Initialize(); }
///     void InitializeFunctionInfo() override {
///         CFunctionSecurity::InitializeFunctionInfo();
///         AddFunctionInfo(CFunctionInfo(100, "Calibrate", 0));
///     }
/// };
/// @endcode
///
/// An identifier may occur twice: operations by identifier act on the first entry with it. Copies have their own table.
/// The order of the virtual operations is fixed.
class QELLIB10_API CFunctionSecurity {
public:
    /// No functions, no privileges, show 1.
    CFunctionSecurity() = default;
    CFunctionSecurity(const CFunctionSecurity&) = default;
    CFunctionSecurity& operator=(const CFunctionSecurity&) = default;
    virtual ~CFunctionSecurity();

    /// Creates the table for a new user of this application. The base class empties it; an override calls the base
    /// before it adds its functions.
    virtual void InitializeFunctionInfo();
    /// The instrument model that the table belongs to: in the base class 0 and the empty text. Not const, like all
    /// virtual operations here, so that existing overrides, which are not const, are called.
    virtual int GetMachineID();
    virtual CString GetMachineName();
    /// Makes the privileges consistent after one was set: in the base class a maker becomes a manager.
    virtual void SetFunctionParameter();
    /// Grant the privilege (not 0) or remove it, then call SetFunctionParameter. So a maker stays a manager.
    virtual void SetMakerParameter(int maker);
    virtual void SetManagerParameter(int manager);

    /// The table of InitializeFunctionInfo, no privileges, show 1.
    void Initialize();

    /// Appends a copy, whatever its identifier. @return 1
    int AddFunctionInfo(const CFunctionInfo& function);

    int GetFunctionIDCount() const;
    /// The identifier at @p index, which counts from 0 in the order of adding; -1 outside the table.
    int GetFunctionID(int index) const;
    /// The empty text for an unknown function.
    CString GetFunctionName(int functionID) const;

    /// 1 for makers and managers, even for unknown functions. Otherwise the function's level, -1 for an unknown one.
    int GetFunctionSecurity(int functionID) const;
    /// @return 0 for an unknown function
    int SetFunctionSecurity(int functionID, int securityLevel);

    int GetMakerParameter() const { return m_nMakerParameter; }
    int GetManagerParameter() const { return m_nManagerParameter; }

    /// A switch for showing the table; it is stored with the table, and the library does not read it.
    const int& GetShow() const { return m_nShow; }
    void SetShow(const int& show) { m_nShow = show; }

private:
    std::list<CFunctionInfo> m_listFunction;

protected:
    // For overrides of SetFunctionParameter.
    int m_nManagerParameter = 0;
    int m_nMakerParameter = 0;
    int m_nPrivileged = 0;  // 1 once a privilege was granted, until Initialize
    int m_nShow = 1;
};
