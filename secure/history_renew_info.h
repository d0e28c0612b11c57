#pragma once

#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/ole_date_time.h"

/// One renewal of a document: when, which file, who and why. Whoever keeps a history cabinet keeps such a record for
/// each of its versions in an archive of his own. A value class.
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
    /// As InitParameter leaves it.
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

    /// Equal times, as COleDateTime compares them, and texts that are equal byte for byte.
    bool operator==(const CHistoryRenewInfo& other) const;
    bool operator!=(const CHistoryRenewInfo& other) const { return !(*this == other); }

    static CObject* CreateObject();
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override;

    /// Writes the record, or reads one into it. An unknown tag or version ends the reading silently, right behind the
    /// version, and leaves the record as it was.
    /// @throws CArchiveException from the archive; the record is then as it was
    void Serialize(CArchive& archive) override;

private:
    COleDateTime m_dtRenew;
    CString m_szFileName;
    CString m_szOperator;
    CString m_szComment;
};
