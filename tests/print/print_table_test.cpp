#include "qellib10/print/print_table.h"

#include <algorithm>

#include "qellib10/platform/failure.h"

#include "../support/canvas.h"
#include "../support/test.h"

namespace {

// Cells of 180 mm by 61 mm, so that tables have no space but for a few lines.
CQelPrintJobPageStyle Style() {
    CQelPrintJobPageStyle style;
    style.SetDpi(254);
    style.SetPaperSize({2000, 1440});
    style.SetLeftMargin(200);
    style.SetTopMargin(220);
    style.SetPrintBlock({1, 2});
    return style;
}

struct Text {
    CRect box;
    std::string text;
};

std::vector<Text> TextsOf(CQelPrintJobQueueData job) {
    std::vector<Text> texts;
    CQelPrintJobCommand command;
    for (job.GetBlock().ResetGetCommand(); job.GetBlock().GetNextCommand(command) != 0;) {
        const CPoint at(command.GetX1(), command.GetY1());
        if (command.GetKind() == CQelPrintJobCommand::kText)
            texts.push_back({CRect(at, CSize(command.GetX2(), command.GetY2())), std::string(command.GetText())});
    }
    return texts;
}

std::vector<CQelPrintJobQueueData> Made(const std::vector<qel::PrintTable>& tables,
                                        const CQelPrintJobPageStyle& style = Style()) {
    Canvas canvas(10, 10);
    return qel::MakeTableJobs(tables, {.headline = "Sample"}, style, canvas.dc);
}

std::string Joined(const CQelPrintJobQueueData& job) {
    std::string all;
    for (const Text& text : TextsOf(job)) all += (all.empty() ? "" : "|") + text.text;
    return all;
}

}  // namespace

TEST(PrintTable, GoesOnInTheNextCellWithItsHeads) {
    qel::PrintTable table{"Values", {"Name", "Empty", "Value"}, {}};
    for (int i = 1; i <= 12; ++i) table.rows.push_back({"V" + std::to_string(i), "", std::to_string(i * i)});
    const auto jobs = Made({{"Result", {}, {{"C", "0.102 mol/L"}}}, table});
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(Joined(jobs[0]),
              "Sample||Result|C|0.102 "
              "mol/L|Values|Name|Value|V1|1|V2|4|V3|9|V4|16|V5|25|V6|36|V7|49|V8|64|V9|81|V10|100||1 of 2");
    EXPECT_EQ(Joined(jobs[1]), "Sample||Values (continued)|Name|Value|V11|121|V12|144||2 of 2");
}

// Also what is much too long for a line, in each place, and what has no name of a column.
TEST(PrintTable, NothingIsCutAndNothingLeavesItsCell) {
    std::string words, word;
    for (int i = 0; i < 150; ++i) words += "word" + std::to_string(i) + (i % 7 == 0 ? "; " : " ");
    for (int i = 0; i < 400; ++i) word += static_cast<char>('a' + i % 26);
    std::string all;
    const auto jobs = Made({{words, {words, "B"}, {{word, "b", "more"}, {words, word}}}});
    for (const auto& job : jobs) {
        for (const Text& text : TextsOf(job)) {
            all += text.text;
            const CRect& box = text.box;
            EXPECT_TRUE(box.left >= 0 && box.right <= 1800 && box.top >= 0 && box.bottom <= 610) << text.text;
        }
    }
    std::erase(all, ' ');
    for (int i = 0; i < 150; ++i) {
        const std::string wanted = "word" + std::to_string(i);
        EXPECT_NE(all.find(wanted), std::string::npos) << wanted;
    }
    EXPECT_NE(all.find("more"), std::string::npos);
    EXPECT_EQ(std::ranges::count(all, 'z'), 30) << "of both long words";
}

TEST(PrintTable, WhereThereIsNoSpaceThereIsNoJob) {
    using Change = void (*)(CQelPrintJobPageStyle&);
    for (const Change change :
         {Change([](CQelPrintJobPageStyle& style) { style.SetDpi(0); }), Change([](CQelPrintJobPageStyle& style) {
              style.SetPrintBlock({1, 5});
          }),
          Change([](CQelPrintJobPageStyle& style) {
              style.SetPrintBlock({0, 1});
          })}) {
        CQelPrintJobPageStyle style = Style();
        change(style);
        EXPECT_EQ(Made({{"T", {}, {}}}, style).size(), 0U);
        EXPECT_STREQ(qel::LastFailure().operation, "qel::MakeTableJobs");
    }
    EXPECT_EQ(Made({{"T", std::vector<std::string>(30, "x"), {}}}).size(), 0U);
}
