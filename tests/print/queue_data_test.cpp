#include "qellib10/print/queue_data.h"

#include <cstdlib>
#include <limits>

#include "qellib10/platform/text/code_page.h"

#include "../support/test.h"
#include "describe.h"

namespace {

constexpr int kSmallest = std::numeric_limits<int>::min(), kLargest = std::numeric_limits<int>::max();
constexpr const char* kName = "result.job";

class PrintJob : public testing::Test {
protected:
    // The commands of a file with this content below the root.
    std::vector<std::string> Loaded(const std::string& content) {
        m_folder.Write(kName, "<printjob>" + content + "</printjob>");
        CQelPrintJobQueueData job;
        EXPECT_EQ(job.LoadJobFile(m_folder.Path(kName)), 1) << content;
        m_style = job.GetPageStyle();
        return Describe(job.GetBlock());
    }
    std::vector<std::string> Again(CQelPrintJobQueueData& job) {
        EXPECT_EQ(job.SaveJobFile(m_folder.Path(kName)), 1);
        CQelPrintJobQueueData again;
        EXPECT_EQ(again.LoadJobFile(m_folder.Path(kName)), 1);
        m_style = again.GetPageStyle();
        return Describe(again.GetBlock());
    }

    TempFolder m_folder;
    CQelPrintJobPageStyle m_style;
};

CQelPrintJobQueueData WholeJob() {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& style = job.GetPageStyle();
    style.SetStyleName("A4-\x95\xF1\x8D\x90 <&>");
    style.SetPrinterDriverName("driver");
    style.SetPrinterDevice("Lab \"1\"");
    style.SetPaperForm(8);
    style.SetPaperDirection(2);
    style.SetPrintBlock({2, 3});
    style.SetPrintDirection(2);
    style.SetUnit(3);
    style.SetDpi(600);
    style.SetTopMargin(1);
    style.SetBottomMargin(-2);
    style.SetLeftMargin(3);
    style.SetRightMargin(kLargest);

    CQelPrintJobCommand command;
    const auto add = [&](int) { job.AddCommand(command); };
    add(0);  // the empty command is not written
    add(command.SetUnit(-7));
    add(command.SetText(1, 2, "\x82\x6C\x82\x72 Gothic", 90, 0xFF0000FF, "a<b>&\"c\"", 0x12, 300, 40));
    add(command.SetText(1, 2, "", 0, 0, "", 0, -1, -1));
    add(command.SetMoveTo(kSmallest, kLargest));
    add(command.SetLineTo(3, -4));
    add(command.SetLine(1, 2, 3, 4));
    add(command.SetCircle(5, 6, 7));
    add(command.SetPen(PS_DOT, 2, 0xFFFFFFFF));
    add(command.SetRgn(0, 0, 0, 0));
    add(command.SetRectangle(1, 2, -3, -4));
    add(command.SetArc(1, 2, 3, 4, 5, 6, 7, 8));
    return job;
}

}  // namespace

TEST_F(PrintJob, IsWrittenInTheOrderThatReadersKnow) {
    CQelPrintJobQueueData job = WholeJob();
    ASSERT_EQ(job.SaveJobFile(m_folder.Path(kName)), 1);
    EXPECT_EQ(
        m_folder.Read(kName),
        "<printjob clientversion=\"1.0.0.1\"><pagestyle><stylename>A4-\u5831\u544A &lt;&amp;&gt;</stylename>"
        "<printerdriver>driver</printerdriver><printerdevice>Lab \"1\"</printerdevice><printerport/>"
        "<size>8</size><direction>2</direction><printblock x=\"2\" y=\"3\" style=\"2\"/><unit>3</unit>"
        "<dpi>600</dpi><margin top=\"1\" bottom=\"-2\" left=\"3\" right=\"2147483647\"/></pagestyle><commands>"
        "<unit>-7</unit><text font=\"\uFF2D\uFF33 Gothic\" size=\"90\" x=\"1\" y=\"2\" width=\"300\""
        " height=\"40\" color=\"-16776961\" style=\"18\">a&lt;b&gt;&amp;\"c\"</text>"
        "<text size=\"0\" x=\"1\" y=\"2\" width=\"-1\" height=\"-1\" color=\"0\" style=\"0\"/>"
        "<moveto x=\"-2147483648\" y=\"2147483647\"/><lineto x=\"3\" y=\"-4\"/>"
        "<line x1=\"1\" y1=\"2\" x2=\"3\" y2=\"4\"/><circle x=\"5\" y=\"6\" r=\"7\"/>"
        "<setpen width=\"2\" style=\"2\" color=\"-1\"/><setrgn x1=\"0\" y1=\"0\" x2=\"0\" y2=\"0\"/>"
        "<rectangle x1=\"1\" y1=\"2\" x2=\"-3\" y2=\"-4\"/>"
        "<arc x1=\"1\" y1=\"2\" x2=\"3\" y2=\"4\" x3=\"5\" y3=\"6\" x4=\"7\" y4=\"8\"/></commands></printjob>\r\n");
    const std::string lint = "xmllint --noout " + m_folder.Posix(kName).string();
    EXPECT_EQ(std::system(lint.c_str()), 0);
}

TEST_F(PrintJob, ComesBackAsItWas) {
    CQelPrintJobQueueData job = WholeJob();
    const std::vector<std::string> loaded = Again(job);
    EXPECT_TRUE(m_style == job.GetPageStyle());
    CQelPrintJobQueueData again;
    ASSERT_EQ(again.LoadJobFile(m_folder.Path(kName)), 1);
    const std::string first = m_folder.Read(kName);
    EXPECT_EQ(Again(again), loaded);
    EXPECT_EQ(m_folder.Read(kName), first);
    EXPECT_EQ(loaded.size(), 11u);

    ASSERT_EQ(again.LoadJobFile(m_folder.Path(kName)), 1);
    EXPECT_EQ(again.GetBlock().GetCommandCount(), 22) << "what is loaded is added";
    CQelPrintJobQueueData empty;
    EXPECT_TRUE(Again(empty).empty());
    EXPECT_NE(m_folder.Read(kName).find("<commands/>"), std::string::npos);
}

TEST_F(PrintJob, TextsKeepBlanksLineEndsAndTheirCodePage) {
    for (const char* text : {"  a  ", " ", "\n", "a\r\nb\rc\n\td", "]]>", "\x83\x5D]>", "\xB1\xB2 \x87\x40"}) {
        CQelPrintJobQueueData job;
        CQelPrintJobCommand command;
        command.SetText(0, 0, " \x93\x48 \t", 0, 0, text, 0, 0, 0);
        job.AddCommand(command);
        EXPECT_EQ(Again(job), std::vector{Describe(command)});
    }
    const CodePageScope latin(qel::kCodePageLatin1);
    EXPECT_EQ(Loaded("<commands><text style='1'>\u00E4 \u20AC \u0416</text></commands>"),
              std::vector<std::string>{"2: x2=-1 y2=-1 s=1 t=\xE4 \x80 ?"});
}

TEST_F(PrintJob, WhatAFileLeavesOutHasItsDefault) {
    for (const auto& [element, command] : Cases<std::string, std::string>{
             {"<text/>", "2: x2=-1 y2=-1 s=1"},
             {"<text x='1' style='' width='wide'>a<!-- --><![CDATA[<b>]]></text>", "2: x1=1 y2=-1 t=a<b>"},
             {"<line/>", "5:"},
             {"<setpen style=' -2x' colour='1' width='+3'/>", "7: w=3 s=-2"},
             {"<arc y4='1'/>", "10: y4=1"},
             {"<unit/>", "1:"},
             {"<lineto y='99999999999999999999' x='-2147483649'/>", "4: x1=-2147483648 y1=2147483647"}})
        EXPECT_EQ(Loaded("<commands>" + element + "</commands>"), std::vector{command}) << element;
    for (const char* none :
         {"", "<commands/>", "<commands>text<Line/><other/></commands>", "<x><commands><line/></commands></x>"})
        EXPECT_TRUE(Loaded(none).empty()) << none;
    EXPECT_EQ(Loaded("<commands><line/></commands><pagestyle><dpi> 300 dpi</dpi><x>1</x><margin top='5'/></pagestyle>"
                     "<commands><unit>2</unit></commands>"),
              (std::vector<std::string>{"5:", "1: s=2"}));
    EXPECT_EQ(m_style.GetDpi(), 300);
    EXPECT_EQ(m_style.GetTopMargin(), 5);
    EXPECT_EQ(m_style.GetPaperForm(), 9) << "not in the file";
}

TEST_F(PrintJob, WhatCannotBeReadLeavesTheJob) {
    CQelPrintJobQueueData job = WholeJob();
    for (const char* bytes :
         {"", "printjob", "<printjob><commands><line/></commands>", "<a/><b/>", "<a x='1' x='2'/>",
          "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a><commands><text>&e;</text></commands></a>",
          "<a>\x93\x48</a>"}) {
        m_folder.Write(kName, bytes);
        EXPECT_EQ(job.LoadJobFile(m_folder.Path(kName)), 0) << bytes;
    }
    for (const char* path : {"", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(job.LoadJobFile(path), 0);
        EXPECT_EQ(job.SaveJobFile(path), 0);
    }
    EXPECT_EQ(job.LoadJobFile(m_folder.Path("none")), 0);
    EXPECT_EQ(job.LoadJobFile(m_folder.Path()), 0);
    EXPECT_EQ(job.GetBlock().GetCommandCount(), 12);
}

TEST_F(PrintJob, MillimetresBecomePixels) {
    CQelPrintJobQueueData job;
    job.SetDefaultFont("Arial", 105, 0xFF);
    job.AddMillimetreCommandText({10, 20, 30, -41}, "a", 0x12);  // without a resolution
    job.GetPageStyle().SetDpi(600);
    job.AddMillimetreCommandText({10, 20, 30, -41}, "b", 4);
    job.AddMillimetreCommandText(CRect(0, 0, 254, 254), 2048u, 1);
    job.AddMillimetreCommandText(CRect(0, 0, 0, 0), 1u, 1);  // a text that no table has
    job.AddMillimetreCommandLine({1, -1, 254, 100});
    const CQelPrintJobQueueData& made = job;
    CQelPrintJobQueueData copy(made);
    CString unit;
    unit.LoadString(2048);
    EXPECT_EQ(Describe(copy.GetBlock()),
              (std::vector<std::string>{"2: x1=10 y1=20 x2=20 y2=-61 s=18 c=255 h=105 f=Arial t=a",
                                        "2: x1=23 y1=47 x2=47 y2=-143 s=4 c=255 h=105 f=Arial t=b",
                                        "2: x2=600 y2=600 s=1 c=255 h=105 f=Arial t=" + std::string(unit.View()),
                                        "2: s=1 c=255 h=105 f=Arial", "5: x1=2 y1=-2 x2=600 y2=236"}));
    EXPECT_TRUE(copy.GetPageStyle() == made.GetPageStyle());
    copy.Initialize();
    copy = made;
    copy.AddMillimetreCommandText({0, 0, 0, 0}, nullptr, 0);
    const CQelPrintJobQueueData& itself = copy;
    copy = itself;
    EXPECT_EQ(Describe(copy.GetBlock()).back(), "2:") << "the default font is not copied";
    EXPECT_EQ(copy.Initialize(), 1);
    EXPECT_EQ(copy.GetBlock().GetCommandCount(), 0);
    EXPECT_EQ(copy.GetPageStyle().GetDpi(), 0);
}

TEST_F(PrintJob, QuotedTextIsInSectionsThatEndOnlyAtItsEnd) {
    for (const auto& [text, quoted] :
         Cases<const char*, const char*>{{"", "<![CDATA[]]>"},
                                         {"a&<b>", "<![CDATA[a&<b>]]>"},
                                         {"a]]>b]]>", "<![CDATA[a]]]]><![CDATA[>b]]]]><![CDATA[>]]>"},
                                         {"\x83\x5D]>", "<![CDATA[\x83\x5D]>]]>"},  // the trail byte is not a bracket
                                         {nullptr, "<![CDATA[]]>"}})
        EXPECT_EQ(CQelPrintJobQueueData::Quote(text), quoted);
    EXPECT_EQ(
        Loaded("<commands><unit>" + std::string(CQelPrintJobQueueData::Quote("1]]>2").View()) + "</unit></commands>"),
        std::vector<std::string>{"1: s=1"});
}
