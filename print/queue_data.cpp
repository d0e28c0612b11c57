#include "qellib10/print/queue_data.h"

#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/platform/storage/whole_file.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/number_scan.h"
#include "qellib10/platform/xml/xml_document.h"
#include "qellib10/platform/xml/xml_element_writer.h"
#include "qellib10/print/command_format.h"
#include "qellib10/print/written_commands.h"

namespace {

using qel::XmlAttributes;
using qel::XmlElementWriter;
using qel::XmlNode;

constexpr const char* kClientVersion = "1.0.0.1";
constexpr const char* kPageStyle = "pagestyle";
constexpr const char* kCommands = "commands";

int NumberOf(std::string_view text) { return qel::ClampToInt(qel::ScanInteger(text)); }

// Calls `take` for each element inside the root's elements called `part`.
template <class Take> void ForEachIn(const XmlNode& root, std::string_view part, Take take) {
    for (auto parent = root.FirstElement(); parent; parent = parent->NextElement()) {
        if (parent->Utf8Name() != part) continue;
        for (auto element = parent->FirstElement(); element; element = element->NextElement()) take(*element);
    }
}

}  // namespace

CQelPrintJobQueueData::CQelPrintJobQueueData() { Initialize(); }

CQelPrintJobQueueData::CQelPrintJobQueueData(const CQelPrintJobQueueData& other)
    : m_PageStyle(other.m_PageStyle), m_Block(other.m_Block) {}

CQelPrintJobQueueData& CQelPrintJobQueueData::operator=(const CQelPrintJobQueueData& other) {
    m_PageStyle = other.m_PageStyle;
    m_Block = other.m_Block;
    return *this;
}

CQelPrintJobQueueData::~CQelPrintJobQueueData() = default;

int CQelPrintJobQueueData::Initialize() {
    const int style = m_PageStyle.Initialize();
    const int data = InitializeData();
    return style == 1 && data == 1;
}

int CQelPrintJobQueueData::InitializeData() {
    SetDefaultFont("", 0, 0);
    return m_Block.Initialize();
}

void CQelPrintJobQueueData::SetDefaultFont(const char* faceName, int size, unsigned long color) {
    m_szDefaultFontName = faceName;
    m_nDefaultFontSize = size;
    m_dwDefaultColor = static_cast<DWORD>(color);
}

int CQelPrintJobQueueData::AddCommand(const CQelPrintJobCommand& command) {
    return qel::AsResult("CQelPrintJobQueueData::AddCommand", [&] { return m_Block.AddCommand(command); });
}

int CQelPrintJobQueueData::AddMillimetreCommandText(CRect rect, const char* text, int style) {
    return qel::AsResult("CQelPrintJobQueueData::AddMillimetreCommandText", [&] {
        m_PageStyle.ConvertMillimetreToPixel(rect);
        CQelPrintJobCommand command;
        command.SetText(rect.left, rect.top, m_szDefaultFontName, m_nDefaultFontSize, m_dwDefaultColor, text, style,
                        rect.Width(), rect.Height());
        return m_Block.AddCommand(command);
    });
}

int CQelPrintJobQueueData::AddMillimetreCommandText(const CRect& rect, UINT stringId, int style) {
    return qel::AsResult([&] {
        CString text;
        text.LoadString(stringId);
        return AddMillimetreCommandText(rect, static_cast<const char*>(text), style);
    });
}

int CQelPrintJobQueueData::AddMillimetreCommandLine(CRect rect) {
    return qel::AsResult("CQelPrintJobQueueData::AddMillimetreCommandLine", [&] {
        m_PageStyle.ConvertMillimetreToPixel(rect);
        CQelPrintJobCommand command;
        command.SetLine(rect.left, rect.top, rect.right, rect.bottom);
        return m_Block.AddCommand(command);
    });
}

int CQelPrintJobQueueData::SaveJobFile(const char* path) {
    if (path == nullptr) return qel::RefuseNull("CQelPrintJobQueueData::SaveJobFile");
    return qel::AsResult("CQelPrintJobQueueData::SaveJobFile", [&] {
        InitializeParser();
        XmlElementWriter writer;
        writer.Begin("printjob");
        AddAttribute(writer, "clientversion", kClientVersion);
        WritePageStyle(writer);
        writer.Begin(kCommands);
        CQelPrintJobCommand command;
        m_Block.ResetGetCommand();
        while (m_Block.GetNextCommand(command)) WriteCommand(writer, command);
        writer.End();
        writer.End();
        const std::string bytes = writer.Bytes();
        qel::Replacement file(path);
        qel::WriteFully(file.File(), std::as_bytes(std::span(bytes)), path);
        file.Commit();
        return 1;
    });
}

void CQelPrintJobQueueData::WritePageStyle(XmlElementWriter& root) const {
    root.Begin(kPageStyle);
    AddSubNode(root, "stylename", m_PageStyle.GetStyleName());
    AddSubNode(root, "printerdriver", m_PageStyle.GetPrinterDriverName());
    AddSubNode(root, "printerdevice", m_PageStyle.GetPrinterDevice());
    AddSubNode(root, "printerport", m_PageStyle.GetPrinterPort());
    AddSubNode(root, "size", m_PageStyle.GetPaperForm());
    AddSubNode(root, "direction", m_PageStyle.GetPaperDirection());
    root.Begin("printblock");
    AddAttribute(root, "x", m_PageStyle.GetPrintBlock().cx);
    AddAttribute(root, "y", m_PageStyle.GetPrintBlock().cy);
    AddAttribute(root, "style", m_PageStyle.GetPrintDirection());
    root.End();
    AddSubNode(root, "unit", m_PageStyle.GetUnit());
    AddSubNode(root, "dpi", m_PageStyle.GetDpi());
    root.Begin("margin");
    AddAttribute(root, "top", m_PageStyle.GetTopMargin());
    AddAttribute(root, "bottom", m_PageStyle.GetBottomMargin());
    AddAttribute(root, "left", m_PageStyle.GetLeftMargin());
    AddAttribute(root, "right", m_PageStyle.GetRightMargin());
    root.End();
    root.End();
}

void CQelPrintJobQueueData::WriteCommand(XmlElementWriter& commands, const CQelPrintJobCommand& command) {
    const qel::CommandFormat* const format = qel::FindCommandFormat(command.GetKind());
    if (format == nullptr) return;  // the empty command
    commands.Begin(format->name);
    const char* const face = command.GetFont().lfFaceName;
    if (format->hasFace && *face != '\0') AddAttribute(commands, "font", face);
    for (const qel::CommandField& field : format->fields) AddAttribute(commands, field.name, field.get(command));
    const std::string_view text = command.GetText().View();
    if (format->setText != nullptr) format->isUtf8 ? commands.Utf8Text(text) : commands.Text(text);
    if (format->kind == CQelPrintJobCommand::kUnit) commands.Text(command.GetStyle());
    commands.End();
}

int CQelPrintJobQueueData::LoadJobFile(const char* path) {
    if (path == nullptr) return qel::RefuseNull("CQelPrintJobQueueData::LoadJobFile");
    return qel::AsResult("CQelPrintJobQueueData::LoadJobFile", [&] {
        InitializeParser();
        std::string file = qel::ReadWholeFile(path);
        auto written = qel::ReadWrittenCommands(file);
        m_pDocument->LoadBytes(written ? written->rest : std::move(file));
        const XmlNode root = *m_pDocument->Root();
        ForEachIn(root, kPageStyle, [this](const XmlNode& value) { ReadPageStyleValue(value); });
        ForEachIn(root, kCommands, [this](const XmlNode& command) { ReadCommand(command); });
        if (written) m_Block.AddCommands(std::move(written->commands));
        m_pDocument->Empty();  // a job is small compared with its document
        return 1;
    });
}

void CQelPrintJobQueueData::ReadPageStyleValue(const XmlNode& value) {
    const std::string_view name = value.Utf8Name();
    const auto text = [&] { return CString(value.Text()); };
    const auto number = [&] { return NumberOf(value.Text()); };
    XmlAttributes attributes(value);
    if (name == "stylename") m_PageStyle.SetStyleName(text());
    if (name == "printerdriver") m_PageStyle.SetPrinterDriverName(text());
    if (name == "printerdevice") m_PageStyle.SetPrinterDevice(text());
    if (name == "printerport") m_PageStyle.SetPrinterPort(text());
    if (name == "size") m_PageStyle.SetPaperForm(number());
    if (name == "direction") m_PageStyle.SetPaperDirection(number());
    if (name == "unit") m_PageStyle.SetUnit(number());
    if (name == "dpi") m_PageStyle.SetDpi(number());
    if (name == "printblock") {
        const int x = GetAttributeInt(attributes, "x", 0), y = GetAttributeInt(attributes, "y", 0);
        m_PageStyle.SetPrintBlock({x, y});
        m_PageStyle.SetPrintDirection(GetAttributeInt(attributes, "style", 0));
    }
    if (name == "margin") {
        m_PageStyle.SetTopMargin(GetAttributeInt(attributes, "top", 0));
        m_PageStyle.SetBottomMargin(GetAttributeInt(attributes, "bottom", 0));
        m_PageStyle.SetLeftMargin(GetAttributeInt(attributes, "left", 0));
        m_PageStyle.SetRightMargin(GetAttributeInt(attributes, "right", 0));
    }
}

void CQelPrintJobQueueData::ReadCommand(const XmlNode& element) {
    const qel::CommandFormat* const format = qel::FindCommandFormat(element.Utf8Name());
    if (format == nullptr) return;
    XmlAttributes attributes(element);
    const CString face = format->hasFace ? GetAttributeString(attributes, "font", "") : CString();
    qel::CommandNumbers numbers{};
    std::size_t count = 0;
    for (const qel::CommandField& field : format->fields) {
        numbers[count++] = GetAttributeInt(attributes, field.name, field.ifMissing);
    }
    CQelPrintJobCommand command;
    if (format->setText != nullptr) {
        format->setText(command, numbers, face, CString(format->isUtf8 ? element.Utf8Text() : element.Text()));
    } else if (format->kind == CQelPrintJobCommand::kUnit) {
        command.SetUnit(NumberOf(element.Text()));
    } else {
        format->set(command, numbers);
    }
    m_Block.AddCommand(command);
}

CString CQelPrintJobQueueData::Quote(const char* text) {
    CString quoted(text);
    quoted.Replace("]]>", "]]]]><![CDATA[>");
    return "<![CDATA[" + quoted + "]]>";
}

int CQelPrintJobQueueData::InitializeParser() {
    if (!m_pDocument) m_pDocument = std::make_unique<qel::XmlDocument>();
    m_pDocument->Empty();
    return 1;
}

void CQelPrintJobQueueData::AddSubNode(XmlElementWriter& node, const char* name, int value) {
    node.Begin(name);
    node.Text(value);
    node.End();
}

void CQelPrintJobQueueData::AddSubNode(XmlElementWriter& node, const char* name, const char* value) {
    node.Begin(name);
    node.Text(CString(value).View());
    node.End();
}

void CQelPrintJobQueueData::AddAttribute(XmlElementWriter& element, const char* name, int value) {
    element.Attribute(name, value);
}

void CQelPrintJobQueueData::AddAttribute(XmlElementWriter& element, const char* name, const char* value) {
    element.Attribute(name, CString(value).View());
}

int CQelPrintJobQueueData::GetAttributeInt(XmlAttributes& attributes, const char* name, int ifMissing) {
    const auto value = attributes.Utf8(name);
    return value ? NumberOf(*value) : ifMissing;
}

CString CQelPrintJobQueueData::GetAttributeString(XmlAttributes& attributes, const char* name, const char* ifMissing) {
    const auto value = attributes.Utf8(name);
    return value ? CString(qel::FromUtf8(*value)) : CString(ifMissing);
}
