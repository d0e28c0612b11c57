#pragma once

#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// A named value used in result formulas, and the formula evaluator's intermediate result. The name goes with the value
/// wherever it goes. Values in an array of numbers are found by position, and after a change of their order a formula
/// computes with the wrong one.
///
/// @code
/// CCalcVariable volume;
/// volume.m_szName = "VOLUME";
/// volume.m_dValue = 16.519;  // mL
/// CCalcVariableList list;
/// list.AddVariableData(volume);
/// @endcode
///
/// A value class: a copy has its own texts. One thread at a time. Only Serialize fails, and std::bad_alloc may be
/// thrown by what copies a text.
///
/// In an archive (integers and doubles little-endian, a text is the archive's counted string):
///
///     text     tag "QWCalc"; "QX-APP" is read as well
///     text     version "1.00"
///     text     name
///     8 bytes  value
///     4 bytes  state
///     1 byte   option flag 1, low byte; the flags are read unsigned
///     1 byte   use flag
///     1 byte   option flag 2
///     text     free text
class QELLIB10_API CCalcVariable : public CObject {
public:
    /// In the state that InitParameter sets.
    CCalcVariable();
    CCalcVariable(const CCalcVariable& other);
    CCalcVariable(CCalcVariable&& other) noexcept;
    CCalcVariable& operator=(const CCalcVariable& other);
    CCalcVariable& operator=(CCalcVariable&& other) noexcept;
    ~CCalcVariable() override;

    /// Texts empty, numbers 0, option flag 2 set to 1.
    void InitParameter();

    /// 1 if all seven fields are equal, texts byte for byte and the value exactly (so NaN differs from itself); else 0.
    int operator==(const CCalcVariable& other) const;
    int operator!=(const CCalcVariable& other) const;

    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override;

    /// Writes the variable, or reads it. An unknown tag or version ends the reading without an error, directly after
    /// the version, and does not change the variable.
    /// @throws CArchiveException from the archive; the variable does not change then
    void Serialize(CArchive& archive) override;

    CString m_szName;       ///< as written in formulas
    double m_dValue = 0.0;  ///< in a unit chosen by the application
    int m_nState = 0;       ///< 0 in lists; of a grammar step: 1 a known number, 0 depends on a variable, -1 an error
    int m_nOption1 = 0;     ///< for the application
    int m_nUse = 0;         ///< 1: a checked formula refers to the variable
    int m_nOption2 = 1;     ///< for the application
    CString m_szText;       ///< free text

private:
    friend class CCalcVariableList;  // ends its own reading at a variable that cannot be read

    bool Load(CArchive& archive);
};
