// The trace of a result as a PDF: what an auditor takes along.
#include <qellib10/qellib10.h>
#include <qellib10/quantity.h>

#include <cstdio>

namespace {

qel::Trace Titration() {
    using qel::CalculationInput, qel::UncertaintyComponent;
    qel::Calculation calculation;
    calculation.result = {"ACIDITY", "(EP - BLANK) * C * M / SAMPLE", "g/L"};
    calculation.inputs = {
        *CalculationInput::Of("EP", "16.519 mL", {*UncertaintyComponent::Rectangular(0.02, "burette")}, "curve 17"),
        *CalculationInput::Of("BLANK", "0.03 mL", {*UncertaintyComponent::Standard(0.005)}, "method"),
        *CalculationInput::Of("C", "0.10023 mol/L", {*UncertaintyComponent::Certificate(0.0002, 2)}, "lot 4711"),
        *CalculationInput::Of("M", "60.052 g/mol", {}, "acetic acid"),
        *CalculationInput::Of("SAMPLE", "2 mL", {*UncertaintyComponent::Triangular(0.01)}, "pipette 3"),
    };
    calculation.rule = qel::RoundingRule::ToUncertainty(qel::DecimalRounding::kHalfEven, 2);
    calculation.limits = {qel::Decimal(45), qel::Decimal(55), qel::DecisionRule::GuardedAcceptance()};
    return qel::Trace::Of(calculation);
}

}  // namespace

int main() {
    qel::SetCodePage(qel::kCodePageUtf8);  // the texts of a trace are UTF-8
    const qel::Trace trace = Titration();

    CQelPrintJobPageStyle style;  // A4
    style.SetStyleName("Trace");
    style.SetPrinterDevice("PDF");
    style.SetTopMargin(200);
    style.SetBottomMargin(150);
    style.SetLeftMargin(200);
    style.SetRightMargin(150);
    CDC printer;
    if (!printer.Attach(style.GetPrinterDC())) return 1;

    CQelPrintJobDocumentData document;
    const qel::TablePage page{.headline = "ACIDITY = " + trace.ResultWithUncertainty(), .remark = "sample 17"};
    const auto tables = qel::PrintTablesOf(trace.Tables(qel::TraceLanguage::kEnglish));
    for (const CQelPrintJobQueueData& job : qel::MakeTableJobs(tables, page, style, printer))
        if (!document.CheckAndAddJobFile(job)) return 1;
    if (!document.PrintOut()) return 1;
    std::printf("printed: %s\n", page.headline.c_str());
    return 0;
}
