#include "qellib10/platform/xml/xml_document.h"

#include <fstream>

#include "../support/test.h"
#include "qellib10/platform/error.h"

using qel::XmlDocument;
using qel::XmlNode;

namespace {

std::string Written(const std::string& text) {
    XmlDocument document;
    document.LoadText(text);
    return document.Text();
}

bool IsRefused(const std::string& text) {
    XmlDocument document;
    document.LoadText("<old/>");
    try {
        document.LoadText(text);
        return false;
    } catch (const qel::DataError&) {
        return !document.Root() && document.Text().empty();
    }
}

std::string Nested(int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += "<a>";
    for (int i = 0; i < levels; ++i) text += "</a>";
    return text;
}

class XmlNodes : public testing::Test {
protected:
    XmlNode Root() { return *m_document.Root(); }
    std::string TextAt(const std::string& path) {
        const auto node = Root().Select(path);
        return node ? node->Text() : "(none)";
    }

    XmlDocument m_document;
};

}  // namespace

TEST(XmlDocument, RefusesWhatIsNotWellFormed) {
    std::ifstream file(QELLIB10_TEST_DATA "/xml_refused.txt");
    int texts = 0;
    for (std::string text; std::getline(file, text); ++texts) EXPECT_TRUE(IsRefused(text)) << text;
    EXPECT_EQ(texts, 48);
    for (const char* const text : {"", " \n", "<a>\x01</a>", "<a x='\x1F'/>"}) EXPECT_TRUE(IsRefused(text)) << text;
    EXPECT_TRUE(IsRefused(std::string("<a/>\0<b/>", 9)));
    for (const int levels : {512, 513, 1000000}) EXPECT_EQ(IsRefused(Nested(levels)), levels > 512);
}

TEST(XmlDocument, IsWrittenAsThePlatformWritesIt) {
    for (const auto& [text, expected] : Cases<std::string, std::string>{
             {"<?xml version='1.0' encoding='Shift_JIS'?><a>q</a>", "<?xml version=\"1.0\"?>\r\n<a>q</a>\r\n"},
             {" <?xml version=\"1.0\" standalone='yes' ?>\n<a ></a >",
              "<?xml version=\"1.0\" standalone=\"yes\"?>\r\n<a/>\r\n"},
             {"<Root>\n\t<Sub val=\"A\" />\n</Root>\n", "<Root>\r\n\t<Sub val=\"A\"/>\r\n</Root>\r\n"},
             {"<a>l1\r\nl2\rl3\nl4&#13;\n</a>", "<a>l1\r\nl2\r\nl3\r\nl4&#13;\r\n</a>\r\n"},
             {"<a x='\"'>&gt;'\"</a>", "<a x=\"&quot;\">&gt;'\"</a>\r\n"},
             {"<a x='&#9;&#10;&#13;\t\n&lt;&amp;&apos;'/>", "<a x=\"&#9;&#10;&#13;  &lt;&amp;'\"/>\r\n"},
             {"<a>&#65;&#x42;&#x1F600;</a>", "<a>AB&#128512;</a>\r\n"},
             {"<!DOCTYPE a [<!ENTITY e 'x'>]><!--c\r\nd--><a><?p q\r\nr?><?p?><![CDATA[<\r\n&amp;]]></a><!--e-->",
              "<!DOCTYPE a [<!ENTITY e 'x'>]>\r\n<!--c\r\nd-->\r\n<a><?p "
              "q\r\nr?><?p?><![CDATA[<\r\n&amp;]]></a>\r\n<!--e-->\r\n"}}) {
        EXPECT_EQ(Written(text), expected);
        EXPECT_EQ(Written(expected), expected);
    }
}

TEST(XmlDocument, KeepsCharactersMissingInTheCodePage) {
    XmlDocument document;
    document.LoadUtf8("<a k='\xC3\xA4'>\xE2\x82\xAC<![CDATA[\xC3\xA4<]]><![CDATA[\xE3\x83\x86]]><!--\xC3\xA4--></a>");
    EXPECT_EQ(document.Text(), "<a k=\"&#228;\">&#8364;&#228;&lt;<![CDATA[\x83\x65]]><!--&#228;--></a>\r\n");
    EXPECT_EQ(Written(document.Text()), document.Text());
    EXPECT_EQ(document.Root()->Text(), "?a<\x83\x65");  // best fit
    for (const char* const text :
         {"<\xC3\xA4/>", "<a \xC3\xA4=''/>", "<a><?\xC3\xA4?></a>", "<!DOCTYPE \xC3\xA4><a/>"}) {
        EXPECT_THROW(document.LoadUtf8(text), qel::DataError) << text;  // no reference is allowed there
        const CodePageScope latin(1252);
        EXPECT_NO_THROW(document.LoadUtf8(text)) << text;
    }
}

TEST(XmlDocument, IsReadAndWrittenInTheEncodingOfAFile) {
    const std::string sjis = "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>\r\n<a>\x83\x65&#228;</a>\r\n";
    const std::string utf16("\xFF\xFE<\0a\0>\0\xC6\x30<\0/\0a\0>\0", 18);
    for (const auto& [bytes, text, again] : Cases<std::string, std::string, std::string>{
             {sjis, "\x83\x65\x61", sjis},
             {utf16, "\x83\x65", "<a>\xE3\x83\x86</a>\r\n"},
             {"\xEF\xBB\xBF<a>\xE3\x83\x86</a>", "\x83\x65", "<a>\xE3\x83\x86</a>\r\n"},
             {"<?xml version='1.0' encoding='iso-8859-1'?><a>\xE4<![CDATA[\xE4]]>&#8364;</a>", "aa?",
              "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n<a>\xE4<![CDATA[\xE4]]>&#8364;</a>\r\n"}}) {
        XmlDocument document;
        document.LoadBytes(bytes);
        EXPECT_EQ(document.Root()->Text(), text);
        EXPECT_EQ(document.Bytes(), again);
    }
    for (const char* const bytes : {"<a>\xE4</a>", "<?xml version='1.0' encoding='none-such'?><a/>", "\xFF\xFE<",
                                    "<?xml version='1.0' encoding='Shift_JIS'?><a>\x83</a>"}) {
        XmlDocument document;
        EXPECT_THROW(document.LoadBytes(bytes), qel::DataError) << bytes;
    }
    XmlDocument nameIsLacking;
    nameIsLacking.LoadText("<?xml version='1.0' encoding='iso-8859-1'?><\x83\x65/>");
    EXPECT_THROW(nameIsLacking.Bytes(), qel::DataError);
}

TEST_F(XmlNodes, AreFoundByPathsFromTheRoot) {
    m_document.LoadText(
        "<r><A><Item k='end()'>1</Item><Item>2<B>b</B></Item><Item k='x'>3</Item></A>"
        "<A><Item>4</Item></A><\x83\x65>5</\x83\x65><p:q xmlns:p='u'>6</p:q><end>7</end></r>");
    const auto found = Words(
        "A/Item 1 A/Item[2] 2b A/Item[end()] 3 A[end()]/Item 4 A/Item[4] (none) A/Item[@k='end()'] 1 A/Item[@k]/@k "
        "end() "
        "\x83\x65[1] 5 p:q 6 end 7 A/Item/text() 1 .. 12b34567 /r/A/Item 1 A//B b");
    for (std::size_t i = 0; i < found.size(); i += 2) EXPECT_EQ(TextAt(found[i]), found[i + 1]) << found[i];
    EXPECT_EQ(Line({TextAt("A/Item[ end ( ) and @k]"), TextAt("A/Item[end() and B]")}), "3 (none)");
    EXPECT_EQ(Root().SelectAll("A/Item").size(), 4u);
    EXPECT_EQ(Root().SelectAll("A/*[end()]").size(), 2u);
    for (const char* const path : {"", "Item[", "A/", "count(A)", "1+1", "bend()", "'", "A[end(]"}) {
        EXPECT_THROW(Root().Select(path), qel::DataError) << path;
        EXPECT_THROW(Root().SelectAll(path), qel::DataError) << path;
    }
}

TEST_F(XmlNodes, GiveTheirTextWithoutIndentation) {
    m_document.LoadText("<r>\n <a> x <b> </b><!--c--><![CDATA[ ]]><i>y</i>\n</a>\n <c> <!--d--> </c></r>");
    EXPECT_EQ(Line({TextAt("a"), TextAt("c"), TextAt("a/comment()")}), " x   y    c");
    EXPECT_EQ(Line({Root().Select("a/i")->Xml(), Root().Select("a/comment()")->Xml()}), "<i>y</i> <!--c-->");
}

TEST_F(XmlNodes, TakeTextsThatComeBackAsTheyWere) {
    m_document.LoadText("<r k=''><e><old/></e>t<!--c--><?p i?><![CDATA[d]]></r>");
    for (const auto& [path, text, xml] : Cases<std::string, std::string, std::string>{
             {"e", " x\r\n<y>\t", "<e> x&#13;\r\n&lt;y&gt;\t</e>"},
             {"e", "\x01\x83\x5C&amp;\x1F", "<e>?\x83\x5C&amp;amp;?</e>"},
             {"e", "x", "<e>x</e>"},
             {"@k", "a\"b\n", "k=\"a&quot;b&#10;\""},
             {"text()", "<", "&lt;"},
             {"comment()", "a-b\r\n", "<!--a-b\r\n-->"},
             {"processing-instruction()", " \na\rb", "<?p a\r\nb?>"},
             {"text()[2]", "x]]>y\r\n]]", "<![CDATA[x]]]]><![CDATA[>y\r\n]]]]>"}}) {
        Root().Select(path)->SetText(text);
        EXPECT_EQ(Root().Select(path)->Xml(), xml);
    }
    Root().Select("e/text()")->SetText("");
    EXPECT_FALSE(Root().Select("e/text()"));
    const std::string text = m_document.Text();
    EXPECT_EQ(Written(text), text);
    for (const auto& [path, bad] : Cases<std::string, std::string>{
             {"comment()", "a--b"},
             {"comment()", "a-"},
             {"processing-instruction()", "?>"},
             {"..", "x"},
         })
        EXPECT_THROW(Root().Select(path)->SetText(bad), qel::DataError) << path;
    EXPECT_EQ(m_document.Text(), text);
}

TEST_F(XmlNodes, AreMadeAndRemoved) {
    m_document.LoadText("\n<job k=''/>\n");
    XmlNode root = Root();
    root.AppendElement("\x83\x65").SetText("x");
    EXPECT_EQ(m_document.Text(), "<job k=\"\"><\x83\x65>x</\x83\x65></job>\r\n");
    for (const char* const name : {"", "1a", "a b", "*", "..", "@k", "a[1]", "\xEF\xBF\xBF"}) {
        const CodePageScope utf8(65001);
        EXPECT_THROW(root.AppendElement(name), qel::DataError) << name;
    }
    EXPECT_EQ(Line({root.Select("@k")->Remove(), root.Select("..")->Remove(), root.Select("/text()").has_value()}),
              "0 0 0");
    EXPECT_TRUE(root.Select("*")->Remove());
    EXPECT_EQ(root.Xml(), "<job k=\"\"/>");

    m_document.LoadText("<a>\n\t<b/>\n</a>");
    Root().AppendElement("c");
    EXPECT_EQ(Root().Xml(), "<a>\r\n\t<b/><c/>\r\n</a>");

    m_document.LoadText(Nested(511));
    XmlNode deepest = Root().SelectAll("descendant::a").back().AppendElement("b");
    EXPECT_THROW(deepest.AppendElement("c"), qel::DataError);
    EXPECT_EQ(Written(m_document.Text()), m_document.Text());
}
