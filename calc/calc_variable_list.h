#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "qellib10/calc/calc_variable.h"
#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

class CQWCalc;
namespace qel {
class CalcVariableIndex;
}

/// The named values of a result in the order in which they were added, with one setting that rounds every value that
/// enters or leaves the list. So a report that lists the values and a formula that uses them see the same digits:
/// whoever checks the report by hand gets the same result.
///
/// @code
/// CCalcVariableList list;
/// list.SetRoundUpFlag(1);
/// list.SetRoundUpDigit(2);
/// CCalcVariable volume;
/// volume.m_szName = "VOL";
/// volume.m_dValue = 16.519;
/// list.AddVariableData(volume);  // 16.52 from here on
/// @endcode
///
/// Names are compared byte for byte; upper and lower case differ. A name may occur twice; an operation by name uses the
/// first entry that matches. Indices count from 0 in the order of the list. Operations return 1, or 0 when there is no
/// such entry (also for a negative index or a null @p out); nothing is changed then. One thread at a time, for look-ups
/// too.
///
/// While the round-up flag is not 0, "rounded" below means CQVariant::fround(value, round-up digit, 0).
///
/// In an archive (see CCalcVariable for the encoding), always written in version 1.01:
///
///     text     tag "QWCalc"
///     text     version "1.01"
///     1 byte   round-up flag, low byte; read unsigned
///     4 bytes  round-up digit
///     4 bytes  count of variables, signed; a negative one is read as 0
///     ...      the variables, each with its own tag and version
///
/// Kept for older files: the tag "QX-APP" is read as well, and version "1.00", in which flag and digit are missing and
/// count as 0.
class QELLIB10_API CCalcVariableList : public CObject {
public:
    /// An empty list, flag and digit 0.
    CCalcVariableList();
    CCalcVariableList(const CCalcVariableList& other);
    /// Copies everything or, if memory runs out, nothing.
    CCalcVariableList& operator=(const CCalcVariableList& other);
    ~CCalcVariableList() override;

    /// 1 if flag, digit, count or any pair of entries at the same position differ, else 0.
    int operator!=(const CCalcVariableList& other) const;

    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override;

    /// Removes every variable; flag and digit become 0.
    void InitParameter();

    /// Non-zero: values are rounded. Changing it, or the digit, does not change the stored values.
    const int& GetRoundUpFlag() const;
    void SetRoundUpFlag(const int& flag);

    /// Decimal places of the rounding; negative: places before the point.
    const int& GetRoundUpDigit() const;
    void SetRoundUpDigit(const int& digit);

    int GetVariableCount() const;

    /// A copy of the entry at @p index, its value rounded.
    int GetVariableData(int index, CCalcVariable* out) const;

    /// Replaces every field of the entry at @p index; the value is rounded first. The name may equal another's.
    int SetVariableData(int index, CCalcVariable variable);

    /// Replaces the first entry with the same name, which keeps its place and its two option flags; otherwise appends
    /// @p variable with both option flags 1. The value is rounded first, the state becomes 0.
    void AddVariableData(CCalcVariable variable);

    /// Sets the value of the first entry named @p name to @p value, rounded.
    int SetVariableValue(CString name, double value);

    /// A copy of the first entry named @p name, its value rounded.
    int GetVariableDataAtName(CString name, CCalcVariable* out) const;

    /// Removes the first entry named @p name.
    int DeleteVariableAtName(CString name);

    /// Sets the use flag of every entry to 0.
    void ClearViewFlag();

    /// Number of entries whose use flag is not 0.
    int GetUseVariableCount() const;

    /// Like GetVariableData, but @p index counts only the entries whose use flag is not 0.
    int GetUseVariableData(int index, CCalcVariable* out) const;

    /// Reads the oldest layout, a count and that many variables, without a head. All entries are removed first; flag
    /// and digit stay. Stops in the same way as Serialize.
    /// @throws CArchiveException from the archive; the entries read before it stay
    void LoadOldVariableList(CArchive& archive);

    /// Writes the list, or replaces it by the one read. Values are stored and read unchanged, without rounding. An
    /// unknown tag or version ends the reading without an error: in the list's head the list does not change, in a
    /// variable the list keeps the variables read before it.
    /// @throws CArchiveException from the archive; the list does not change if the archive ends within the head, else
    /// it has the new head and the entries read before
    void Serialize(CArchive& archive) override;

private:
    friend class CQWCalc;  // reads values by name without copies of entries

    int Find(const CString& name) const;
    int FindIgnoringCase(std::string_view name) const;
    bool Has(int index) const { return index >= 0 && index < GetVariableCount(); }
    CCalcVariable& At(int index) { return m_aryVariable[static_cast<std::size_t>(index)]; }
    const CCalcVariable& At(int index) const { return m_aryVariable[static_cast<std::size_t>(index)]; }
    double ValueAt(int index) const { return Rounded(At(index).m_dValue); }
    void MarkUsed(int index) {
        if (At(index).m_nUse == 0) StoreUsed(At(index));
    }

    double Rounded(double value) const { return m_nRoundUpFlag != 0 ? RoundedUp(value) : value; }
    double RoundedUp(double value) const;
    void StoreUsed(CCalcVariable& entry);
    void RemoveAll();
    void Store(CArchive& archive);
    void Load(CArchive& archive);
    void LoadVariables(CArchive& archive, int count);

    int m_nRoundUpFlag = 0;
    int m_nRoundUpDigit = 0;
    std::vector<CCalcVariable> m_aryVariable;
    std::unique_ptr<qel::CalcVariableIndex> m_pIndex;  // follows m_aryVariable; each look-up updates it
};

namespace qel {

/// Whether a file with the first bytes @p start (12 are enough) is an archive of CCalcVariableList or CCalcVariable,
/// which have the same tags; for programs that open files whatever their names are. This does not check that the file
/// is complete: Serialize does. The oldest layout has no tag.
QELLIB10_API bool IsCalcArchive(std::string_view start);

}  // namespace qel
