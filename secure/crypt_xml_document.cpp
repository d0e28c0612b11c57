#include "qellib10/secure/crypt_xml_document.h"

#include <chrono>
#include <iterator>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "qellib10/file/write_undo.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/whole_file.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_document.h"
#include "qellib10/secure/crypt_xml_format.h"

namespace {

using qel::FailureKind;
using qel::Refuse;
using qel::XmlNode;

// Known to every application of the family.
constexpr const char* kKey = "Tessaloomber::CVellumXMLRecords";

std::string_view ViewOf(const char* text) { return text != nullptr ? text : ""; }

// Nothing is written that could not be loaded again.
std::string CheckedSize(std::string bytes) {
    constexpr std::size_t kTooMany = std::size_t{1} << 31, kMarkAndFilling = 8;
    if (bytes.size() >= kTooMany - kMarkAndFilling) throw qel::DataError("a document of 2 GiB or more");
    return bytes;
}

// The file is shortened last: if writing fails, the old bytes are restored, and nothing of the old content is lost.
void WriteWhole(CFile& file, std::string_view bytes) {
    const bool isNew = file.GetLength() == 0;
    qel::WriteUndo old(file, 0, bytes.size());
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.Flush();
    const bool wasLonger = file.GetLength() > bytes.size();
    if (wasLonger) file.SetLength(bytes.size());
    old.Keep();
    if (wasLonger) file.Flush();
    const CString path = file.GetFilePath();
    if (isNew && !path.IsEmpty()) qel::FlushFolderOf(qel::ToPosixPath(path.View()), path.View());
}

constexpr std::string_view kNoDocument = "there is no document", kLocked = "a file is locked already",
                           kUnlocked = "no file is locked";
constexpr UINT kForSaving = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite | CFile::shareExclusive;

bool NamesEncoding(std::string_view text) {
    const std::size_t end = text.find("?>");
    return end != std::string_view::npos && text.substr(0, end).find("encoding") != std::string_view::npos;
}

std::optional<XmlNode> Find(const qel::XmlDocument& document, const char* path) {
    const auto root = document.Root();
    return root ? root->Select(ViewOf(path)) : std::nullopt;
}

// Records that a document has no node of that path. @return 0
int NoSuchNode(const char* path) { return Refuse(FailureKind::kMissing, ViewOf(path), "no such node"); }

CString CutFirst(CString& text, char separator) {
    const int end = text.Find(separator);
    const CString first = end < 0 ? text : text.Left(end);
    text = end < 0 ? CString() : text.Mid(end + 1);
    return first;
}

// The last node of a path; it and every missing one before it are created.
XmlNode MakeNodes(const XmlNode& root, const char* path) {
    XmlNode last = root;
    CString walked;
    for (CString left = path; !left.IsEmpty();) {
        const CString step = CutFirst(left, '/');
        const CString before = walked;
        walked = CCryptXMLDocumentObject::AppendNode(before, step);
        if (const auto found = root.Select(walked.View())) {
            last = *found;
            continue;
        }
        const int predicate = step.Find('[');
        const CString name = predicate < 0 ? step : step.Left(predicate);
        last = last.AppendElement(name.View());
        if (predicate >= 0) walked = CCryptXMLDocumentObject::AppendNode(before, name + "[end()]");
    }
    return last;
}

}  // namespace

CCryptXMLDocument::CCryptXMLDocument() : m_pDocument(std::make_unique<qel::XmlDocument>()) { Initialize(); }

CCryptXMLDocument::~CCryptXMLDocument() {
    if (m_nLocked != 0) CCryptXMLDocument::LockRollback();
}

int CCryptXMLDocument::Initialize() {
    if (m_nLocked != 0) LockRollback();
    Empty();
    m_nCryptMode = 1;
    m_szKey = kKey;
    return 1;
}

int CCryptXMLDocument::LoadXMLFile(const char* path, int noWait) {
    return qel::AsResult("CCryptXMLDocument::LoadXMLFile", [&] {
        if (m_nCryptMode == 0) return LoadPlainXMLFile(path, noWait);
        CFile file;
        return file.Open(path, CFile::modeRead | CFile::shareDenyNone) ? LoadCryptXMLFile(file) : 0;
    });
}

int CCryptXMLDocument::SaveXMLFile(const char* path, int noWait) {
    return qel::AsResult("CCryptXMLDocument::SaveXMLFile", [&] {
        const bool isCrypt = m_nCryptMode != 0;
        const std::string bytes = isCrypt ? EncipheredBytes() : PlainBytes();
        CFile file;
        // Emptied at once only if others cannot read it meanwhile; otherwise a failed save is reversed.
        const bool opened = isCrypt ? file.Open(path, kForSaving) != 0
                                    : FileOpen(file, path, 3, 1) != 0 || FileOpen(file, path, 4, noWait) != 0;
        if (!opened) return 0;
        WriteWhole(file, bytes);
        file.Close();
        return isCrypt && bytes.empty() ? Refuse(FailureKind::kState, ViewOf(path), kNoDocument) : 1;
    });
}

int CCryptXMLDocument::LockFile(const char* path, int noWait, int create) {
    return qel::AsResult("CCryptXMLDocument::LockFile", [&] {
        if (m_nLocked != 0) return Refuse(FailureKind::kState, ViewOf(path), kLocked);
        if (!FileOpen(m_fileLock, path, create != 0 ? 3 : 2, noWait)) return 0;
        m_nLocked = m_nCryptMode != 0 ? LoadCryptXMLFile(m_fileLock) : LoadPlainXMLFile(m_fileLock);
        if (m_nLocked == 0) m_fileLock.Abort();
        return m_nLocked;
    });
}

int CCryptXMLDocument::IsLocked() { return m_nLocked; }

int CCryptXMLDocument::LockCommit() {
    return qel::AsResult("CCryptXMLDocument::LockCommit", [&] {
        if (m_nLocked == 0) return Refuse(FailureKind::kState, "", kUnlocked);
        if (!(m_nCryptMode != 0 ? SaveCryptXMLFile(m_fileLock) : SavePlainXMLFile(m_fileLock))) return 0;
        m_fileLock.Close();
        m_nLocked = 0;
        return 1;
    });
}

int CCryptXMLDocument::LockRollback() {
    qel::Operation operation("CCryptXMLDocument::LockRollback");
    if (m_nLocked == 0) return operation.Failed(FailureKind::kState, "", kUnlocked);
    m_fileLock.Abort();
    return operation.Ended(1);
}

void CCryptXMLDocument::Empty() { m_pDocument->Empty(); }

CString CCryptXMLDocument::GetXMLString() const { return CString(m_pDocument->Text()); }

int CCryptXMLDocument::SetXMLString(const char* text) {
    return qel::AsResult("CCryptXMLDocument::SetXMLString", [&] {
        m_pDocument->LoadText(ViewOf(text));
        return 1;
    });
}

int CCryptXMLDocument::GetNodeText(const char* path, CString& text) const {
    return qel::AsResult("CCryptXMLDocument::GetNodeText", [&] {
        const auto node = Find(*m_pDocument, path);
        if (!node) return NoSuchNode(path);
        text = CString(node->Text());
        return 1;
    });
}

int CCryptXMLDocument::GetNodeXml(const char* path, CString& xml) const {
    return qel::AsResult("CCryptXMLDocument::GetNodeXml", [&] {
        const auto node = Find(*m_pDocument, path);
        if (!node) return NoSuchNode(path);
        xml = CString(node->Xml());
        return 1;
    });
}

int CCryptXMLDocument::SetNodeText(const char* path, const char* text) {
    return qel::AsResult("CCryptXMLDocument::SetNodeText", [&] {
        const auto root = m_pDocument->Root();
        if (!root) return Refuse(FailureKind::kState, "", kNoDocument);
        const auto found = root->Select(ViewOf(path));
        XmlNode node = found ? *found : MakeNodes(*root, path);
        node.SetText(ViewOf(text));
        return 1;
    });
}

long CCryptXMLDocument::GetTagCount(const char* path) const {
    long count = -1;
    qel::AsResult("CCryptXMLDocument::GetTagCount", [&] {
        if (const auto root = m_pDocument->Root()) count = static_cast<long>(root->SelectAll(ViewOf(path)).size());
        return count >= 0 ? 1 : Refuse(FailureKind::kState, "", kNoDocument);
    });
    return count;
}

int CCryptXMLDocument::DeleteTag(const char* path) {
    return qel::AsResult("CCryptXMLDocument::DeleteTag", [&] {
        auto node = Find(*m_pDocument, path);
        if (!node) return NoSuchNode(path);
        return node->Remove() ? 1 : Refuse(FailureKind::kArgument, ViewOf(path), "a node that cannot be removed");
    });
}

int CCryptXMLDocument::LoadPlainXMLFile(const char* path, int noWait) {
    return qel::AsResult("CCryptXMLDocument::LoadPlainXMLFile", [&] {
        if (m_nLocked != 0) return Refuse(FailureKind::kState, ViewOf(path), kLocked);
        CFile file;
        return FileOpen(file, path, 1, noWait) ? LoadPlainXMLFile(file) : 0;
    });
}

int CCryptXMLDocument::SavePlainXMLFile(const char* path, int /*noWait*/) {
    return qel::AsResult("CCryptXMLDocument::SavePlainXMLFile", [&] {
        if (m_nLocked != 0) return Refuse(FailureKind::kState, ViewOf(path), kLocked);
        const std::string bytes = CheckedSize(m_pDocument->Bytes());
        CFile file(path, kForSaving);
        WriteWhole(file, bytes);
        file.Close();
        return 1;
    });
}

int CCryptXMLDocument::LoadCryptXMLFile(CFile& file) {
    return qel::AsResult(nullptr, &file, [&] {
        std::string bytes = qel::ReadWholeFile(file);
        if (bytes.empty()) {
            Empty();
            return 1;
        }
        if (bytes[0] != qel::kEncipheredMark) return LoadPlainXMLFile(file);
        m_pDocument->LoadText(qel::DecipheredXml(std::move(bytes), m_szKey));
        return 1;
    });
}

std::string CCryptXMLDocument::EncipheredBytes() const {
    std::string text = CheckedSize(m_pDocument->Text());
    return text.empty() ? text : qel::EncipheredXml(std::move(text), m_szKey);
}

std::string CCryptXMLDocument::PlainBytes() const {
    return CheckedSize(std::string(ConvertToUTF8(GetXMLString()).View()));
}

int CCryptXMLDocument::SaveCryptXMLFile(CFile& file) {
    return qel::AsResult([&] {
        const std::string bytes = EncipheredBytes();
        if (bytes.empty()) return Refuse(FailureKind::kState, file.GetFilePath().View(), kNoDocument);
        WriteWhole(file, bytes);
        return 1;
    });
}

int CCryptXMLDocument::LoadPlainXMLFile(CFile& file) {
    return qel::AsResult(nullptr, &file, [&] {
        const std::string bytes = qel::ReadWholeFile(file);
        if (bytes.empty()) {
            Empty();
            return 1;
        }
        std::string_view text = bytes.c_str();  // ends at a zero byte
        if (NamesEncoding(text)) return SetXMLString(text.data());
        constexpr std::string_view kMark = "\xEF\xBB\xBF";  // other programs' editors write it
        if (text.starts_with(kMark)) text.remove_prefix(kMark.size());
        // Not through the code page, in which characters may be missing.
        m_pDocument->LoadUtf8(qel::Utf8OfUnits(qel::DecodedUnits(text)));
        return 1;
    });
}

int CCryptXMLDocument::SavePlainXMLFile(CFile& file) {
    return qel::AsResult([&] {
        WriteWhole(file, PlainBytes());
        return 1;
    });
}

int CCryptXMLDocument::FileOpen(CFile& file, const char* path, int kind, int noWait) {
    constexpr UINT kOfKinds[] = {
        CFile::modeRead | CFile::shareDenyWrite, CFile::modeReadWrite | CFile::shareDenyNone,
        CFile::modeReadWrite | CFile::shareDenyNone | CFile::modeCreate | CFile::modeNoTruncate,
        CFile::modeWrite | CFile::shareDenyNone | CFile::modeCreate};
    if (kind < 1 || kind > static_cast<int>(std::size(kOfKinds))) return 0;
    const UINT flags = kOfKinds[kind - 1];
    while (!file.Open(path, flags)) {
        CFileStatus status;
        const bool isThere = noWait == 0 && CFile::GetStatus(path, status) != 0;
        // A folder, a pipe and a device never become a file that can be opened.
        if (!isThere || (status.m_attribute & CFileStatus::archive) == 0) return 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 1;
}

CString CCryptXMLDocument::ConvertToUTF8(const char* text) {
    return CString(qel::EncodedUnits(qel::ToUtf16(ViewOf(text))));
}

CString CCryptXMLDocument::ConvertFromUTF8(const char* text) {
    return CString(qel::FromUtf16(qel::DecodedUnits(ViewOf(text))));
}

CString CCryptXMLDocument::Split(CString& text, char separator) { return CutFirst(text, separator); }

CString CCryptXMLDocumentObject::AppendNode(const char* path, const char* node) {
    CString joined = path;
    if (!joined.IsEmpty() && joined.ReverseFind('/') != joined.GetLength() - 1) joined += '/';
    return joined + node;
}

CString CCryptXMLDocumentObject::AppendNodeKey(const char* node, const char* key) {
    return CString(node) + "[" + key + "]";
}
