// A telegram to an instrument is put together, its answer is taken apart, and the reading becomes a line of a table.
#include <qellib10/qellib10.h>

#include <cstdio>
#include <optional>
#include <string>

namespace {

constexpr unsigned char kStartOfText = 0x02;

// Start, command, a number in a field of eight, the exclusive or of all bytes, end of line.
CQBinary Telegram(const char* command, double value) {
    CQBinary telegram;
    telegram.AddByte(kStartOfText);
    telegram.AddString(command);
    telegram.AddDoubleTopSign(value, 8, 3, 0);
    unsigned char check = 0;
    for (int i = 0; i < telegram.GetSize(); ++i) check ^= telegram.GetByte(i);
    telegram.AddByte(check);
    telegram.AddString("\r\n");
    return telegram;
}

CString Hexadecimal(const CQBinary& bytes) {
    CString text;
    for (int i = 0; i < bytes.GetSize(); ++i) {
        CString digits;
        digits.Format("%02X ", bytes.GetByte(i));
        text += digits;
    }
    return text;
}

}  // namespace

int main() {
    const CQBinary request = Telegram("DOSE", -1.5);
    std::puts(Hexadecimal(request));

    // The answer: model (2 bytes, highest first), unit (1), status text (8), reading (8 characters).
    CQBinary answer(
        "\x01\xA9\x03"
        "STABLE  "
        "   7.005",
        19);
    answer.SetEndian(1);
    CString status = answer.GetString(3, 8);
    CQVariant::Trim(status);
    const std::optional<double> reading = qel::ReadNumber(answer.GetString(11, 8).View());
    if (!reading) return 1;
    std::printf("model %d, %s, %s pH\n", answer.GetShort(0), static_cast<const char*>(status),
                static_cast<const char*>(CQVariant::DoubleToStr(*reading, 2, 0)));

    CString terminator = "$0d$0a";
    CRSControlCode::ConvertDisplay(terminator);
    std::puts("line end " + terminator);

    char text[64] = {};
    int size = sizeof text - 1;
    if (!CBase64::GetBinToBase64(request, request.GetSize(), text, size)) return 1;
    std::puts(text);

    CQCSVFile table;
    if (!table.Open("readings.csv", CFile::modeCreate | CFile::modeReadWrite)) return 1;
    table.WriteCSVString("Sample \"A\"");
    table.WriteDelimiter();
    table.WriteCSVString(CQVariant::DoubleToStr(*reading, 2, 0));
    table.WriteCRLF();
    table.SeekToBegin();
    char line[32] = {};
    table.Read(line, sizeof line - 1);
    std::fputs(line, stdout);

    table.SeekToBegin();
    qel::CsvReader rows(table, {.encoding = qel::CsvEncoding::kCodePage932});
    while (rows.Next()) {
        const std::string name(rows.Fields()[0]);
        if (const auto pH = qel::ReadMeasuredValue(rows.Fields()[1]))
            std::printf("line %zu: %s has pH %.2f\n", rows.Line(), name.c_str(), pH->value);
    }
    if (rows.Failure()) std::puts(rows.Failure()->Text().c_str());
    return 0;
}
