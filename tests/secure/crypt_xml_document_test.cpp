#include "qellib10/secure/crypt_xml_document.h"

#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "../support/full_disk.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/secure/crypt_xml_format.h"

namespace {

// Reaches what derived classes may call.
class Document : public CCryptXMLDocument {
public:
    using CCryptXMLDocument::ConvertFromUTF8;
    using CCryptXMLDocument::ConvertToUTF8;
    using CCryptXMLDocument::FileOpen;
    using CCryptXMLDocument::Initialize;
    using CCryptXMLDocument::LoadPlainXMLFile;
    using CCryptXMLDocument::SavePlainXMLFile;
    using CCryptXMLDocument::Split;

    explicit Document(const char* xml = "") { SetXMLString(xml); }
    std::string Xml() const { return std::string(GetXMLString().View()); }
    std::string Text(const std::string& path) const {
        CString text = "(none)";
        GetNodeText(path.c_str(), text);
        return std::string(text.View());
    }
};

const CString kKey = "Tessaloomber::CVellumXMLRecords";
constexpr const char* kData[] = {QELLIB10_TEST_DATA "/method_plain.xml", QELLIB10_TEST_DATA "/method_enciphered.xml"};

class XmlFiles : public testing::Test {
protected:
    int Load(const std::string& bytes, int crypt = 1) {
        m_folder.Write("in.xml", bytes);
        m_document.SetCryptMode(crypt);
        return m_document.LoadXMLFile(m_folder.Path("in.xml"), 1);
    }
    std::string Saved(int crypt) {
        m_document.SetCryptMode(crypt);
        EXPECT_EQ(m_document.SaveXMLFile(m_folder.Path("out.xml"), 1), 1);
        return m_folder.Read("out.xml");
    }

    TempFolder m_folder;
    CString m_path = m_folder.Path("a.xml");
    Document m_document;
};

}  // namespace

TEST(CryptXMLDocument, MakesTheNodesThatAPathNames) {
    Document document("<r><A><Item>1</Item></A><A/></r>");
    for (const std::string& path : Words("A/B/C A/Item[7]/D A/Item[end()] A[2]/Item[1] \x83\x65\x81\x5B[1]/x *"))
        EXPECT_EQ(document.SetNodeText(path.c_str(), "x"), 1) << path;
    for (const char* const path : {"", "E/1", "F//G", "/G", "H/", "N/*", "..", "@k", "A[@k='a/b']"})
        EXPECT_EQ(document.SetNodeText(path, "x"), 0) << path;
    EXPECT_EQ(document.Xml(),
              "<r><A>x</A><A><Item>x</Item></A><\x83\x65\x81\x5B><x>x</x></\x83\x65\x81\x5B><F/><N/></r>\r\n");
    EXPECT_EQ(document.SetXMLString("<r/>"), 1);
    for (const char* const text : {"1", "2", "3"}) EXPECT_EQ(document.SetNodeText("A/B[2]/C", text), 1);
    EXPECT_EQ(document.Xml(), "<r><A><B><C>1</C></B><B><C>3</C></B></A></r>\r\n");
}

TEST(CryptXMLDocument, BadPathsAndEmptyDocumentsReturn0) {
    Document document("<?xml version='1.0'?><r k='v'><A>t</A></r>");
    CString out = "old";
    for (const char* const path : {"Item[", "count(A)", "B", "A/", static_cast<const char*>(nullptr)})
        EXPECT_EQ(Line({document.GetNodeText(path, out), document.GetNodeXml(path, out), document.DeleteTag(path)}),
                  "0 0 0");
    EXPECT_EQ(out, "old");
    EXPECT_EQ(Line({document.GetTagCount("A"), document.GetTagCount("B"), document.GetTagCount("count(A)")}), "1 0 -1");
    EXPECT_NE(document.GetNodeXml("@k", out), 0);
    EXPECT_EQ(out, "k=\"v\"");
    EXPECT_EQ(Line({document.DeleteTag("@k"), document.DeleteTag("A")}), "0 1");
    EXPECT_EQ(document.Xml(), "<?xml version=\"1.0\"?>\r\n<r k=\"v\"/>\r\n");
    EXPECT_EQ(document.DeleteTag("."), 1);  // a declaration alone could not be loaded again
    for (const bool isBad : {false, true}) {
        if (isBad) document.SetXMLString("<r><A></r>");
        EXPECT_EQ(document.Xml(), "");
        EXPECT_EQ(document.GetTagCount("A"), -1);
        EXPECT_EQ(Line({document.SetNodeText("A", "x"), document.GetNodeText("A", out), document.DeleteTag("A")}),
                  "0 0 0");
        document.SetXMLString("<r><A/></r>");
    }
}

TEST(CryptXMLDocument, TextsAreConvertedUnitByUnit) {
    EXPECT_EQ(Document::ConvertToUTF8("a\x83\x65"), "a\xE3\x83\x86");
    EXPECT_EQ(Document::ConvertFromUTF8("a\xE3\x83\x86\xC3"), "a\x83\x65?");
    const CodePageScope page(65001);
    const char *const smile = "\xF0\x9F\x98\x80", *const halves = "\xED\xA0\xBD\xED\xB8\x80";
    EXPECT_EQ(Document::ConvertToUTF8(smile), halves);
    for (const char* const text : {smile, halves}) EXPECT_EQ(Document::ConvertFromUTF8(text), smile);
    EXPECT_EQ(Document::ConvertFromUTF8("\xC1\x81\xC3\x41\x80\xE3"), "A\xC3\x81\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(CryptXMLDocument, SplitsAndJoinsPaths) {
    CString left = "A/\x83\x2F/";
    for (const char* const first : {"A", "\x83\x2F", "", ""}) EXPECT_EQ(Document::Split(left, '/'), first);
    using Path = CCryptXMLDocumentObject;
    EXPECT_EQ(Line({Path::AppendNode("A", "B"), Path::AppendNode("A/", "B"), Path::AppendNode("", "B")}), "A/B A/B B");
    EXPECT_EQ(Path::AppendNodeKey("Item", "2"), "Item[2]");
}

TEST_F(XmlFiles, EncipheredAreLoadedAsTheyWereSaved) {
    for (const char* const xml : {"<a/>", "<abcdefgh/>", "<a k='\x83\x65'>&#228;\x95\x5C &amp;\n</a>"}) {
        ASSERT_EQ(m_document.SetXMLString(xml), 1);
        const std::string text = m_document.Xml();
        const std::string bytes = Saved(1);
        EXPECT_EQ(bytes[0], '\0');
        EXPECT_EQ(bytes.size(), 1 + (text.size() + 7) / 8 * 8);
        EXPECT_EQ(qel::DecipheredXml(bytes, kKey), text);
        EXPECT_EQ(Load(bytes), 1);
        EXPECT_EQ(m_document.Xml(), text);
        EXPECT_EQ(Load(bytes, 0), 0);  // plain loads know no cipher
        EXPECT_EQ(Load(bytes.substr(0, bytes.size() - 1)), 0);
    }
    EXPECT_EQ(Load(std::string(1, '\0')), 0);
    EXPECT_EQ(m_document.Xml(), "");
}

TEST_F(XmlFiles, PlainAreUtf8UnlessTheyNameAnEncoding) {
    const CodePageScope latin(1252);
    for (const char* const begin :
         {"", "\xEF\xBB\xBF", "<?xml version='1.0' encoding='utf-8'?>", "<!--encoding--><?p?>"}) {
        const bool isInCodePage = std::string(begin).find("encoding") != std::string::npos;
        for (const int crypt : {0, 1}) {
            EXPECT_EQ(Load(begin + std::string("<a>\xC3\xA4</a>"), crypt), 1);
            EXPECT_EQ(m_document.Text("."), isInCodePage ? "\xC3\xA4" : "\xE4") << begin;
        }
    }
    EXPECT_EQ(Saved(0), "<!--encoding-->\r\n<?p?>\r\n<a>\xC3\x83\xC2\xA4</a>\r\n");
    EXPECT_EQ(Load(std::string("<a>\xE2\x82\xAC\xF0\x9F\x98\x80</a>\0<", 16)), 1);
    EXPECT_EQ(Saved(0), "<a>\xE2\x82\xAC&#128512;</a>\r\n");
}

TEST_F(XmlFiles, EmptyAreEmptyDocuments) {
    for (const int crypt : {1, 0}) {
        m_document.SetXMLString("<a/>");
        EXPECT_EQ(Load("", crypt), 1);
        EXPECT_EQ(m_document.Xml(), "");
        m_folder.Write("a.xml", "old");
        EXPECT_EQ(m_document.SaveXMLFile(m_path, 1), 1 - crypt);
        EXPECT_EQ(m_folder.Read("a.xml"), "");
    }
}

TEST_F(XmlFiles, OfEarlierVersionsAreRead) {
    for (const int crypt : {0, 1}) {
        std::filesystem::copy(kData[crypt], m_folder.Posix("a.xml"), std::filesystem::copy_options::overwrite_existing);
        m_document.SetCryptMode(1);
        EXPECT_EQ(m_document.LoadXMLFile(m_path, 1), 1);
        EXPECT_EQ(
            Line({m_document.Text("Formula"), m_document.Text("Limits/Item[end()]/@unit"), m_document.Text("Comment")}),
            "(EP-BLANK)*0.1/SAMPLE mol/L \x93\x48\x92\xE8 a");
        EXPECT_EQ(Saved(crypt), m_folder.Read("a.xml"));
    }
}

TEST_F(XmlFiles, AreSavedByPathInTheEncodingThatTheyName) {
    m_document.SetXMLString("<?xml version='1.0' encoding='Shift_JIS'?><a>\x83\x65</a>");
    EXPECT_EQ(m_document.SavePlainXMLFile(m_path, 1), 1);
    EXPECT_EQ(m_folder.Read("a.xml"), "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>\r\n<a>\x83\x65</a>\r\n");
    EXPECT_EQ(Saved(0), "<?xml version=\"1.0\"?>\r\n<a>\xE3\x83\x86</a>\r\n");
    m_document.SetXMLString("<?xml version='1.0' encoding='none-such'?><a/>");
    EXPECT_EQ(m_document.SavePlainXMLFile(m_path, 1), 0);
    EXPECT_EQ(m_folder.Read("a.xml").size(), 55u);
}

TEST_F(XmlFiles, AreChangedUnderTheLock) {
    for (const int crypt : {0, 1}) {
        Document document;
        document.SetCryptMode(crypt);
        m_folder.Write("a.xml", "");
        EXPECT_EQ(document.LockFile(m_folder.Path("none.xml"), 0, 0), 0);
        EXPECT_EQ(document.LockFile(m_path, 1, 1), 1);
        const auto tryAll = [&] {
            return Line({document.LockFile(m_path, 1, 1), document.LoadPlainXMLFile(m_path, 1),
                         document.SavePlainXMLFile(m_path, 1)});
        };
        EXPECT_EQ(tryAll(), "0 0 0");
        document.SetXMLString("<a>a long text</a>");
        EXPECT_EQ(document.LockCommit(), 1);
        EXPECT_EQ(Line({document.IsLocked(), document.LockCommit(), document.LockRollback()}), "0 0 0");

        EXPECT_EQ(document.LockFile(m_path, 1, 0), 1);
        document.SetNodeText(".", "b");  // shorter
        EXPECT_EQ(document.LockCommit(), 1);
        EXPECT_EQ(document.LoadXMLFile(m_path, 1), 1);
        EXPECT_EQ(document.Xml(), "<a>b</a>\r\n");

        EXPECT_EQ(document.LockFile(m_path, 1, 0), 1);
        document.SetNodeText(".", "c");
        EXPECT_EQ(document.LockRollback(), 1);
        EXPECT_EQ(document.IsLocked(), 1);  // kept
        EXPECT_EQ(Line({tryAll(), document.LockCommit()}), "0 0 0 0");
        EXPECT_EQ(Load(m_folder.Read("a.xml")), 1);
        EXPECT_EQ(m_document.Text("."), "b");
    }
    m_folder.Write("a.xml", "<a>");
    EXPECT_EQ(Line({m_document.LockFile(m_path, 1, 0), m_document.IsLocked()}), "0 0");
    EXPECT_TRUE(CFile().Open(m_path, CFile::modeReadWrite | CFile::shareExclusive));  // closed again
    m_folder.Write("a.xml", "");
    EXPECT_EQ(Line({m_document.LockFile(m_path, 1, 0), m_document.Initialize()}), "1 1");  // rolls back
    EXPECT_TRUE(CFile().Open(m_path, CFile::modeReadWrite | CFile::shareExclusive));
}

TEST_F(XmlFiles, WaitForWritersUnlessTheyMustNot) {
    m_folder.Write("a.xml", "<a/>");
    for (const int kind : {1, 2, 3, 4}) {
        CFile first, second;
        EXPECT_EQ(Document::FileOpen(first, m_path, kind, 1), 1);
        EXPECT_EQ(second.Open(m_path, CFile::modeWrite | CFile::shareDenyNone), kind != 1) << kind;
        EXPECT_EQ(first.GetLength(), kind == 4 ? 0u : 4u);
    }
    CFile file;
    for (const int kind : {0, 5}) EXPECT_EQ(Document::FileOpen(file, m_path, kind, 0), 0);
    for (const int kind : {1, 2}) EXPECT_EQ(Document::FileOpen(file, m_folder.Path("none"), kind, 0), 0);
    // What never becomes a file that can be opened is not waited for.
    ASSERT_EQ(::mkfifo(m_folder.Posix("pipe").c_str(), 0600), 0);
    ASSERT_EQ(m_document.SetXMLString("<a/>"), 1);
    for (const CString& name : {m_folder.Path(), m_folder.Path("pipe"), CString("\\dev\\null")}) {
        for (const int kind : {1, 2, 3, 4}) EXPECT_EQ(Document::FileOpen(file, name, kind, 0), 0) << kind;
        for (const int crypt : {0, 1}) {
            m_document.SetCryptMode(crypt);
            EXPECT_EQ(Line({m_document.LoadXMLFile(name, 0), m_document.SaveXMLFile(name, 0),
                            m_document.LockFile(name, 0, 1)}),
                      "0 0 0")
                << crypt;
        }
    }
    EXPECT_EQ(Line({m_document.LoadXMLFile(nullptr, 0), m_document.SaveXMLFile(nullptr, 0)}), "0 0");

    m_folder.Write("a.xml", "<a/>");
    m_document.SetCryptMode(0);
    Document holder;
    holder.SetCryptMode(0);
    ASSERT_EQ(holder.LockFile(m_path, 1, 0), 1);
    EXPECT_EQ(m_document.LoadXMLFile(m_path, 1), 0);
    std::thread waiting([&] { EXPECT_EQ(m_document.LoadXMLFile(m_path, 0), 1); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    holder.SetXMLString("<new/>");
    EXPECT_EQ(holder.LockCommit(), 1);
    waiting.join();
    EXPECT_EQ(m_document.Xml(), "<new/>\r\n");
}

TEST_F(XmlFiles, AreFreeWhenTheHolderOfTheLockWasKilled) {
    m_folder.Write("a.xml", "<a/>");
    auto& isLocked = SharedWithChildren<std::atomic<bool>>();
    ChildProcess holder([&] {
        Document document;
        isLocked = document.LockFile(m_path, 1, 0) != 0;
        for (;;) std::this_thread::sleep_for(std::chrono::seconds(1));
        return 0;
    });
    while (!isLocked) std::this_thread::yield();
    m_document.SetCryptMode(0);
    EXPECT_EQ(m_document.LoadXMLFile(m_path, 1), 0);
    holder.Kill();
    EXPECT_EQ(m_document.LoadXMLFile(m_path, 1), 1);
    EXPECT_EQ(m_document.LockFile(m_path, 1, 0), 1);
}

TEST_F(XmlFiles, AreRefusedWhenTheDiskIsFull) {
    const auto saveAndCommit = [&] {
        Document locked;
        m_document.SetXMLString(("<a>" + std::string(100, 'x') + "</a>").c_str());
        EXPECT_EQ(Line({m_document.SaveXMLFile(m_path, 1), locked.LockFile(m_folder.Path("b.xml"), 1, 1)}), "0 1");
        locked.SetXMLString(m_document.GetXMLString());
        EXPECT_EQ(Line({locked.LockCommit(), locked.IsLocked()}), "0 1");
        return HasFailure() ? 1 : 0;
    };
    EXPECT_EQ(OnFullDisk(64, saveAndCommit), 0);
}
