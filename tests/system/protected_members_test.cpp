#include <gtest/gtest.h>

#include "../support/line.h"
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
                     GetAttributeString(attributes, "unknown", "none").View(),
                     document.Root()->Select("unit")->Text()});
    }
};

}  // namespace

// With what is installed alone: this program sees the shared library.
TEST(ProtectedMembers, OfAJobWriteAndReadXml) { EXPECT_EQ(Job::Read(Job::Written()), "7 EP<1> none mL"); }

TEST(ProtectedMembers, WriteNothingThatIsNotXml) {
    qel::XmlElementWriter writer;
    EXPECT_THROW(writer.Attribute("id", 1), qel::DataError);
    EXPECT_THROW(writer.End(), qel::DataError);
    writer.Begin("sample");
    EXPECT_THROW(writer.Bytes(), qel::DataError);
    writer.Text("text");
    EXPECT_THROW(writer.Attribute("id", 1), qel::DataError);
    writer.End();
    EXPECT_EQ(writer.Bytes(), "<sample>text</sample>\r\n");
}
