// Law: texts and objects read from any bytes, stored, read again and stored again are the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <set>
#include <vector>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 64 * 1024;

// A node of any graph, cycles and nodes with several parents included; so no node owns another.
class CNode : public CObject {
public:
    CNode() { All().insert(this); }
    CNode(const CNode&) = delete;
    CNode& operator=(const CNode&) = delete;
    ~CNode() override { All().erase(this); }

    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override;

    static std::set<CNode*>& All() {
        static std::set<CNode*> all;
        return all;
    }

private:
    CString m_szName;
    bool m_bMarked = false;
    std::vector<CNode*> m_aryLink;
};

class CTimedNode : public CNode {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override;

private:
    COleDateTime m_time;
    WORD m_nKind = 0;
};

const CRuntimeClass* CNode::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CNode, CObject>("N");
    return &theClass;
}

const CRuntimeClass* CTimedNode::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CTimedNode, CNode>("T", 1);
    return &theClass;
}

const qel::RegisteredClass<CNode> registeredNode;
const qel::RegisteredClass<CTimedNode> registeredTimedNode;

void CNode::Serialize(CArchive& archive) {
    if (archive.IsStoring()) {
        archive << m_szName << m_bMarked;
        archive.WriteCount(static_cast<DWORD>(m_aryLink.size()));
        for (const CNode* link : m_aryLink) archive << link;
    } else {
        archive >> m_szName >> m_bMarked;
        for (DWORD rest = archive.ReadCount(); rest > 0; --rest) archive >> m_aryLink.emplace_back();
    }
}

void CTimedNode::Serialize(CArchive& archive) {
    CNode::Serialize(archive);
    if (archive.IsStoring()) {
        archive << m_time << m_nKind;
    } else {
        archive >> m_time >> m_nKind;
    }
}

struct Document {
    CString title;
    CNode* root = nullptr;
    CTimedNode* start = nullptr;
};

std::optional<Document> Read(const std::uint8_t* data, std::size_t size) {
    CMemFile file;
    file.Attach(data, static_cast<UINT>(size));
    try {
        Document document;
        CArchive archive(&file, CArchive::load);
        archive >> document.title >> document.root >> document.start;
        return document;
    } catch (const CArchiveException&) {
        return std::nullopt;
    }
}

std::vector<BYTE> Stored(const Document& document) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    archive << document.title << document.root << document.start;
    archive.Close();
    return file.Detach();
}

void DeleteAll() {
    while (!CNode::All().empty()) delete *CNode::All().begin();
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    const bool isRead = Read(data, size).has_value();
    DeleteAll();
    return isRead;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    if (const std::optional<Document> first = Read(data, size)) {
        const std::vector<BYTE> bytes = Stored(*first);
        const std::optional<Document> second = Read(bytes.data(), bytes.size());
        if (!second || Stored(*second) != bytes) std::abort();
    }
    DeleteAll();
    return 0;
}
