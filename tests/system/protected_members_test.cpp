#include "../support/test.h"
#include "qellib10/qellib10.h"

namespace {

// An application's job with an element of its own in a second document.
struct Job : CQelPrintJobQueueData {
    static std::string Written() {
        qel::XmlElementWriter writer;
        writer.Begin("sample");
        AddAttribute(writer, "id", 7);
        AddAttribute(writer, "name", "EP<1>");
        AddAttribute(writer, "operator", nullptr);
        AddSubNode(writer, "count", 3);
        AddSubNode(writer, "unit", "mL");
        AddSubNode(writer, "comment", nullptr);
        writer.End();
        return writer.Bytes();
    }
    static std::string Read(const std::string& bytes) {
        qel::XmlDocument document;
        document.LoadBytes(bytes);
        qel::XmlAttributes attributes(*document.Root());
        return Line({GetAttributeInt(attributes, "id", 0), GetAttributeString(attributes, "name", "none").View(),
                     GetAttributeString(attributes, "unknown", "none").View(), document.Root()->Select("unit")->Text(),
                     GetAttributeString(attributes, nullptr, "none").View()});
    }
};

}  // namespace

// With what is installed alone: this program sees the shared library.
TEST(ProtectedMembers, OfAJobWriteAndReadXml) {
    EXPECT_EQ(
        Job::Written(),
        "<sample id=\"7\" name=\"EP&lt;1&gt;\" operator=\"\"><count>3</count><unit>mL</unit><comment/></sample>\r\n");
    EXPECT_EQ(Job::Read(Job::Written()), "7 EP<1> none mL none");
}

// Each refused call leaves no byte.
TEST(ProtectedMembers, WriteNothingThatIsNotXml) {
    using Step = void (*)(qel::XmlElementWriter&);
    const std::vector<std::pair<const char*, Step>> before = {
        {"attribute", [](auto& writer) { writer.Attribute("id", 1); }},
        {"text", [](auto& writer) { writer.Text("text"); }},
        {"empty text", [](auto& writer) { writer.Text(""); }},
        {"end", [](auto& writer) { writer.End(); }},
        {"bytes", [](auto& writer) { writer.Bytes(); }},
        {"null", [](auto& writer) { writer.Begin(nullptr); }},
        {"tag", [](auto& writer) { writer.Begin("a<b"); }},
        {"digit", [](auto& writer) { writer.Begin("1a"); }},
        {"not ASCII", [](auto& writer) { writer.Begin("\xC2\xB5"); }},
    };
    const std::vector<std::pair<const char*, Step>> inRoot = {
        {"the same attribute", [](auto& writer) { writer.Attribute("id", 2); }},
        {"wrong attribute", [](auto& writer) { writer.Attribute("a\"", 1); }},
        {"null attribute", [](auto& writer) { writer.Attribute(nullptr, 1); }},
        {"bytes", [](auto& writer) { writer.Bytes(); }},
    };
    const std::vector<std::pair<const char*, Step>> after = {
        {"attribute", [](auto& writer) { writer.Attribute("other", 1); }},
        {"second root", [](auto& writer) { writer.Begin("root"); }},
        {"text", [](auto& writer) { writer.Text("text"); }},
        {"end", [](auto& writer) { writer.End(); }},
    };
    qel::XmlElementWriter writer;
    const auto refuses = [&](const auto& steps) {
        for (const auto& [what, step] : steps) EXPECT_THROW(step(writer), qel::DataError) << what;
    };
    refuses(before);
    writer.Begin("sample");
    writer.Attribute("id", 1);
    refuses(inRoot);
    writer.Text("text");
    EXPECT_THROW(writer.Attribute("other", 1), qel::DataError);
    writer.End();
    refuses(after);
    EXPECT_EQ(writer.Bytes(), "<sample id=\"1\">text</sample>\r\n");
    refuses(before);
}

TEST(ProtectedMembers, WriteNothingThatNestsTooDeepToBeRead) {
    qel::XmlElementWriter writer;
    for (int i = 0; i < 512; ++i) writer.Begin("a");
    EXPECT_THROW(writer.Begin("a"), qel::DataError);
    for (int i = 0; i < 512; ++i) writer.End();
    qel::XmlDocument document;
    EXPECT_NO_THROW(document.LoadBytes(writer.Bytes()));
}
