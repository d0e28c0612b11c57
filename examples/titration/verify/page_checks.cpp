#include "page_checks.h"

#include <algorithm>
#include <vector>

#include "../number.h"
#include "../report_page.h"
#include "../text_file.h"
#include "checks.h"

namespace titration {
namespace {

std::vector<std::string> TextsOf(CQelPrintJobBlockData& block) {
    std::vector<std::string> texts;
    CQelPrintJobCommand command;
    for (block.ResetGetCommand(); block.GetNextCommand(command) != 0;) {
        if (command.GetKind() == CQelPrintJobCommand::kText) texts.emplace_back(command.GetText());
    }
    return texts;
}

// What has no room ends with dots.
bool IsShownAs(const std::string& text, std::string shown) {
    if (!shown.ends_with("...")) return shown == text;
    shown.resize(shown.size() - 3);
    return text.starts_with(shown);
}

}  // namespace

std::string CheckJob(const MadeFiles& made, DWORD version, const std::optional<std::string>& headline) {
    const std::string name = ReportJobName(version);
    CQelPrintJobQueueData job;
    Require(job.LoadJobFile(made.Path(name).c_str()) != 0, "is missing, or no job file");
    const CQelPrintJobPageStyle& style = job.GetPageStyle();
    Require(!style.GetPrinterDevice().IsEmpty() && style.GetDpi() > 0, "names no printer and its resolution");
    CQelPrintJobDocumentData document;
    Require(document.CheckAndAddJobFile(job) != 0 && style.GetPageBlocks() > 0, "has no place on a page");

    const std::vector<std::string> texts = TextsOf(job.GetBlock());
    Require(texts.size() > 1 && texts[1].starts_with("version " + std::to_string(version) + ", "),
            "is not the report on version " + std::to_string(version));
    Require(!headline || IsShownAs(*headline, texts[0]), "shows \"" + texts[0] + "\"");
    made.RequireAsMade(name);
    return "\"" + texts[0] + "\" for printer " + std::string(style.GetPrinterDevice()) + ", " +
           std::to_string(job.GetBlock().GetCommandCount()) + " commands";
}

std::string CheckPicture(const MadeFiles& made, const std::string& name) {
    constexpr char kSignature[] = "\x89PNG\r\n\x1A\n";
    constexpr int kSignatureSize = 8, kLength = 4, kAroundData = 12;  // length and kind, CRC
    const std::string bytes = ReadBytes(made.Path(name));
    CQBinary picture(bytes.data(), static_cast<int>(bytes.size()));
    picture.SetEndian(1);
    Require(picture.Compare(0, kSignature, kSignatureSize) != 0, "is no PNG file");
    int at = kSignatureSize;
    while (picture.Compare(at + kLength, "IEND", 4) == 0) {
        const int length = picture.GetInt(at);
        Require(length >= 0 && length <= picture.GetSize() - at - kAroundData, "is cut");
        at += length + kAroundData;
    }
    made.RequireAsMade(name);
    return std::to_string(picture.GetInt(16)) + " x " + std::to_string(picture.GetInt(20)) + " dots";
}

std::string CheckPdf(const MadeFiles& made, const std::string& name) {
    const std::string bytes = ReadBytes(made.Path(name));
    const std::vector<std::string_view> lines = Lines(bytes);
    Require(bytes.starts_with("%PDF-"), "is no PDF file");
    Require(lines.size() > 3 && lines.back() == "%%EOF" && lines[lines.size() - 3] == "startxref", "is cut");
    const auto table = ParseWholeNumber(lines[lines.size() - 2]);
    Require(table && bytes.compare(std::min<std::size_t>(*table, bytes.size()), 4, "xref") == 0,
            "its table of objects is not where it says");
    made.RequireAsMade(name);
    return std::to_string(bytes.size()) + " bytes, whole";
}

}  // namespace titration
