// Promises: a document of 1 MB, enciphered, loaded and saved compared with pugixml's own parsing or writing with the
// same code page and cipher; GetNodeText compared with pugixml's select_node.
//   Load <= 1.5 LoadOfPugixml
//   Save <= 1.5 SaveOfPugixml
//   NodeText/* <= 1.4 SelectNode/*

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/secure/crypt_brow_fish.h"
#include "qellib10/secure/crypt_xml_document.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSize = 1 << 20;
const std::string kKey = "Tessaloomber::CVellumXMLRecords";

// Records like those in settings and methods, one in ten with text of double-byte characters.
std::string MakeXml() {
    std::string xml = "<?xml version=\"1.0\"?>\r\n<Records>\r\n";
    for (int i = 0; xml.size() < kSize; ++i) {
        const std::string number = std::to_string(i);
        xml += "\t<Record id=\"" + number + "\">\r\n\t\t<Name>" + (i % 10 == 0 ? "\x93\x48\x92\xE8" : "Sample ") +
               number + "</Name>\r\n\t\t<Value unit=\"mol/L\">" + std::to_string(i * 0.37) +
               "</Value>\r\n\t\t<Comment>first &amp; second</Comment>\r\n\t</Record>\r\n";
    }
    return xml + "</Records>\r\n";
}

class File {
public:
    File() : m_path(fs::temp_directory_path() / ("qellib10-bench-" + std::to_string(std::random_device()()))) {}
    ~File() { fs::remove(m_path); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    CString Name() const { return qel::ToLibraryPath(m_path.native()); }
    std::string Read() const {
        std::ifstream file(m_path, std::ios::binary);
        std::string bytes(fs::file_size(m_path), '\0');
        file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }
    void Write(const std::string& bytes) const {
        std::ofstream(m_path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

private:
    fs::path m_path;
};

unsigned char* Bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

CCryptBrowFish Cipher() {
    std::string key = kKey;
    CCryptBrowFish cipher;
    cipher.Initialize(Bytes(key), static_cast<int>(key.size()));
    return cipher;
}

constexpr unsigned kPeerParsing = pugi::parse_full | pugi::parse_ws_pcdata;

void LoadPeer(const File& file, pugi::xml_document& document) {
    std::string bytes = file.Read();
    const auto size = static_cast<DWORD>(bytes.size() - 1);
    Cipher().Decode(Bytes(bytes) + 1, Bytes(bytes) + 1, size);
    const std::string text = qel::ToUtf8(bytes.c_str() + 1);
    document.load_buffer(text.data(), text.size(), kPeerParsing, pugi::encoding_utf8);
}

void SavePeer(const File& file, const pugi::xml_document& document) {
    struct Writer : pugi::xml_writer {
        void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
        std::string text;
    } writer;
    document.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
    std::string text = qel::FromUtf8(writer.text);
    std::string bytes(1 + (text.size() + 7) / 8 * 8, '\0');
    Cipher().Encode(Bytes(text), Bytes(bytes) + 1, static_cast<DWORD>(text.size()));
    file.Write(bytes);
}

void Load(benchmark::State& state) {
    const File file;
    CCryptXMLDocument document;
    document.SetXMLString(MakeXml().c_str());
    if (!document.SaveXMLFile(file.Name(), 1)) return state.SkipWithError("not saved");
    for (auto _ : state) {
        if (!document.LoadXMLFile(file.Name(), 1)) return state.SkipWithError("not loaded");
    }
    if (document.GetXMLString() != CString(MakeXml())) return state.SkipWithError("the documents differ");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

void LoadOfPugixml(benchmark::State& state) {
    const File file;
    CCryptXMLDocument ours;
    ours.SetXMLString(MakeXml().c_str());
    if (!ours.SaveXMLFile(file.Name(), 1)) return state.SkipWithError("not saved");
    pugi::xml_document document;
    for (auto _ : state) LoadPeer(file, document);
    const auto count = static_cast<long>(document.document_element().select_nodes("Record/Comment").size());
    if (count != ours.GetTagCount("Record/Comment")) return state.SkipWithError("the documents differ");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

void Save(benchmark::State& state) {
    const File file;
    CCryptXMLDocument document;
    document.SetXMLString(MakeXml().c_str());
    for (auto _ : state) {
        if (!document.SaveXMLFile(file.Name(), 1)) return state.SkipWithError("not saved");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

void SaveOfPugixml(benchmark::State& state) {
    const File file;
    const std::string text = qel::ToUtf8(MakeXml());
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size(), kPeerParsing, pugi::encoding_utf8);
    for (auto _ : state) SavePeer(file, document);
    CCryptXMLDocument ours;
    if (!ours.LoadXMLFile(file.Name(), 1)) return state.SkipWithError("the file is not ours");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kSize));
}

const char* const kPaths[] = {"Record/Name", "Record[10]/Value/@unit", "Record[@id='50']/Comment", "Record[1000]/Name"};

void NodeText(benchmark::State& state) {
    CCryptXMLDocument document;
    document.SetXMLString(MakeXml().c_str());
    const char* const path = kPaths[state.range(0)];
    CString text;
    for (auto _ : state) benchmark::DoNotOptimize(document.GetNodeText(path, text));
    state.SetLabel(path);
}

void SelectNode(benchmark::State& state) {
    const std::string text = qel::ToUtf8(MakeXml());
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size(), kPeerParsing, pugi::encoding_utf8);
    const char* const path = kPaths[state.range(0)];
    CCryptXMLDocument ours;
    ours.SetXMLString(MakeXml().c_str());
    CString expected;
    ours.GetNodeText(path, expected);
    const auto root = document.document_element();
    const auto found = root.select_node(path);
    const std::string value = found.attribute() ? found.attribute().value() : found.node().text().get();
    if (qel::FromUtf8(value) != expected.View()) return state.SkipWithError("the texts differ");
    for (auto _ : state) benchmark::DoNotOptimize(root.select_node(path));
    state.SetLabel(path);
}

BENCHMARK(Load)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadOfPugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveOfPugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(NodeText)->DenseRange(0, 3);
BENCHMARK(SelectNode)->DenseRange(0, 3);

}  // namespace

BENCHMARK_MAIN();
