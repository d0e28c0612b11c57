// A class of the application's own goes into an archive and comes back; text is scanned by characters, and a file that
// somebody uses says so.
#include <qellib10/qellib10.h>

#include <cstdio>
#include <memory>

class CReading : public CObject {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override;

    COleDateTime m_time;
    double m_dVolume = 0;  // mL
    CString m_szComment;
};

const CRuntimeClass* CReading::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CReading, CObject>("CReading");
    return &theClass;
}
static const qel::RegisteredClass<CReading> registered;

void CReading::Serialize(CArchive& archive) {
    if (archive.IsStoring())
        archive << m_time << m_dVolume << m_szComment;
    else
        archive >> m_time >> m_dVolume >> m_szComment;
}

int main() try {
    CReading reading;
    reading.m_time = COleDateTime(2026, 3, 9, 14, 30, 0);
    reading.m_dVolume = 16.519;
    reading.m_szComment = "\x95\x5C";  // one character of code page 932, whose second byte is a backslash
    {
        CFile file("reading.dat", CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
        CArchive archive(&file, CArchive::store);
        archive << &reading;
        archive.Close();
        std::printf("%llu bytes\n", static_cast<unsigned long long>(file.GetLength()));

        CFileException refusal;
        CFile second;
        if (!second.Open("reading.dat", CFile::modeRead, &refusal))
            std::printf("while it is written: %s, code %d\n", refusal.what(), refusal.m_lOsError);
    }

    CFile file("reading.dat", CFile::modeRead | CFile::shareDenyWrite);
    CArchive archive(&file, CArchive::load);
    CReading* loaded = nullptr;
    archive >> loaded;
    const std::unique_ptr<CReading> owner(loaded);
    std::printf("%d-%02d-%02d, %s mL\n", loaded->m_time.GetYear(), loaded->m_time.GetMonth(), loaded->m_time.GetDay(),
                static_cast<const char*>(CQVariant::DoubleToStr(loaded->m_dVolume, 3, 0)));
    std::printf("a comment of %d bytes, without a backslash: %d\n", loaded->m_szComment.GetLength(),
                loaded->m_szComment.Find('\\'));
    std::puts(qel::ToUtf8(loaded->m_szComment.View()).c_str());
    archive >> loaded;  // nothing follows it
    return 1;
} catch (const CArchiveException& failure) {
    std::puts(failure.what());
    return 0;
} catch (const CFileException& failure) {
    std::puts(failure.what());
    return 1;
}
