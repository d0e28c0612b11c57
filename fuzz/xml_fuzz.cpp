// Law: a file of any bytes, plain or enciphered, is refused, and then the document is empty; or it is loaded, and then
// saved, plain or enciphered, as a file that is loaded as the same document. A path of any bytes is refused everywhere,
// or finds as many nodes as it counts; a text that is set at its place is saved with the rest.
#include <string>
#include <string_view>

#include "qellib10/platform/storage/mem_file.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/secure/crypt_xml_document.h"
#include "qellib10/secure/crypt_xml_format.h"

#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096, kLongestUsefulPath = 48;

struct Document : CCryptXMLDocument {
    bool Load(std::string_view bytes) {
        CMemFile file;
        file.Attach(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
        return LoadCryptXMLFile(file) != 0;
    }
    std::string Saved(bool isPlain) {
        CMemFile file;
        const bool isSaved = (isPlain ? SavePlainXMLFile(file) : SaveCryptXMLFile(file)) != 0;
        Require(isSaved == (isPlain || !GetXMLString().IsEmpty()));
        const auto bytes = file.Bytes();
        return {bytes.begin(), bytes.end()};
    }
};

bool SeemsToNameEncoding(const Document& document) {
    const CString xml = document.GetXMLString();
    return xml.Left(xml.Find("?>")).Find("encoding") >= 0;
}

void CheckSaved(Document& document) {
    for (const bool isPlain : {false, true}) {
        Document again;
        const bool isLoaded = again.Load(document.Saved(isPlain));
        if (isPlain && SeemsToNameEncoding(document)) continue;  // whatever it names, see CCryptXMLDocument
        Require(isLoaded && again.GetXMLString() == document.GetXMLString());
    }
}

void CheckPath(Document& document, const std::string& path) {
    CString text, xml;
    const long count = document.GetTagCount(path.c_str());
    Require((count > 0) == (document.GetNodeText(path.c_str(), text) != 0));
    Require((count > 0) == (document.GetNodeXml(path.c_str(), xml) != 0));
    const bool isSet = document.SetNodeText(path.c_str(), "<\x83\x5C\r\n>") != 0;
    Require(!isSet || document.GetTagCount(path.c_str()) >= 0);
    CheckSaved(document);
    if (document.DeleteTag(path.c_str()) != 0 && !document.GetXMLString().IsEmpty()) CheckSaved(document);
}

}  // namespace

// The first byte chooses the code page and the kind of file; then a path, a zero byte, and the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > kLongestUsefulInput) return 0;
    constexpr UINT kPages[] = {qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8};
    qel::SetCodePage(kPages[data[0] % 3]);
    const bool isEnciphered = (data[0] & 0x80) != 0;
    const std::string_view all(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t zero = all.substr(0, kLongestUsefulPath).find('\0');
    const std::string path(zero != std::string_view::npos ? all.substr(0, zero) : "");
    const std::string bytes(zero != std::string_view::npos ? all.substr(zero + 1) : all);

    Document document;
    document.SetXMLString("<old/>");
    const bool isLoaded = document.Load(
        isEnciphered && !bytes.empty() ? qel::EncipheredXml(bytes, "Tessaloomber::CVellumXMLRecords") : bytes);
    if (!isLoaded) {
        Require(document.GetXMLString().IsEmpty() && document.GetTagCount(".") == -1);
    } else if (!document.GetXMLString().IsEmpty()) {
        CheckSaved(document);
        CheckPath(document, path);
    }
    return 0;
}
