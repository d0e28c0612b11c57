// Law: texts and objects read from any bytes, stored, read again and stored again are the same bytes.
#include <set>
#include <vector>

#include "../tests/support/archive_bytes.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 64 * 1024;

// A node of any graph, including cycles and nodes with several parents; so no node owns another.
class CNode : public Archived<CNode, CObject> {
public:
    CNode() { All().insert(this); }
    CNode(const CNode&) = delete;
    CNode& operator=(const CNode&) = delete;
    ~CNode() override { All().erase(this); }

    void Serialize(CArchive& archive) override {
        Exchange(archive, m_szName, m_bMarked);
        if (archive.IsStoring()) {
            archive.WriteCount(static_cast<DWORD>(m_aryLink.size()));
            for (const CNode* link : m_aryLink) archive << link;
        } else {
            for (DWORD rest = archive.ReadCount(); rest > 0; --rest) archive >> m_aryLink.emplace_back();
        }
    }

    static std::set<CNode*>& All() {
        static std::set<CNode*> all;
        return all;
    }
    static constexpr const char* kName = "N";
    static constexpr UINT kSchema = 0;

private:
    CString m_szName;
    bool m_bMarked = false;
    std::vector<CNode*> m_aryLink;
};

class CTimedNode : public Archived<CTimedNode, CNode> {
public:
    void Serialize(CArchive& archive) override {
        CNode::Serialize(archive);
        Exchange(archive, m_time, m_nKind);
    }
    static constexpr const char* kName = "T";
    static constexpr UINT kSchema = 1;

private:
    COleDateTime m_time;
    WORD m_nKind = 0;
};

const qel::RegisteredClass<CNode> registeredNode;
const qel::RegisteredClass<CTimedNode> registeredTimedNode;

struct Document {
    void Serialize(CArchive& archive) { Exchange(archive, title, root, start); }

    CString title;
    CNode* root = nullptr;
    CTimedNode* start = nullptr;
};

void DeleteAll() {
    while (!CNode::All().empty()) delete *CNode::All().begin();
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    Document document;
    const bool isRead = Load(document, Text(data, size)) >= 0;
    DeleteAll();
    return isRead;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    Document first, second;
    if (Load(first, Text(data, size)) >= 0) {
        const std::string bytes = Stored(first);
        Require(Load(second, bytes) >= 0 && Stored(second) == bytes);
    }
    DeleteAll();
    return 0;
}
