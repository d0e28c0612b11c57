#pragma once

#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"

/// One renewal of a document: when, which file, who and why. qel::RenewalHistory keeps such a record for each version
/// of a cabinet. A value class.
///
/// In an archive:
///
///     text      tag "HistoryRenewInfo"
///     text      version "1.00"
///     12 bytes  date and time: status (4), day number (8)
///     text      file name
///     text      operator
///     text      comment
class QELLIB10_API CHistoryRenewInfo : public CObject {
public:
    /// In the state that InitParameter sets.
    CHistoryRenewInfo();
    CHistoryRenewInfo(const CHistoryRenewInfo& other);
    CHistoryRenewInfo& operator=(const CHistoryRenewInfo& other);
    ~CHistoryRenewInfo() override;

    const COleDateTime& GetRenewDateTime() const { return m_dtRenew; }
    const CString& GetFileName() const { return m_szFileName; }
    const CString& GetOperator() const { return m_szOperator; }
    const CString& GetComment() const { return m_szComment; }
    void SetRenewDateTime(const COleDateTime& time) { m_dtRenew = time; }
    void SetFileName(const CString& name) { m_szFileName = name; }
    void SetOperator(const CString& name) { m_szOperator = name; }
    void SetComment(const CString& comment) { m_szComment = comment; }

    /// 2001-01-01 00:00:00, texts empty.
    void InitParameter();

    /// Equal times, as compared by COleDateTime, and texts that are equal byte for byte.
    bool operator==(const CHistoryRenewInfo& other) const;
    bool operator!=(const CHistoryRenewInfo& other) const { return !(*this == other); }

    static CObject* CreateObject();
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override;

    /// Writes the record, or reads it. An unknown tag or version ends the reading without an error, directly after the
    /// version, and does not change the record.
    /// @throws CArchiveException from the archive; the record does not change then
    void Serialize(CArchive& archive) override;

private:
    COleDateTime m_dtRenew;
    CString m_szFileName;
    CString m_szOperator;
    CString m_szComment;
};
