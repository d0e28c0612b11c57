#include "qellib10/print/block_data.h"

#include <utility>

#include "qellib10/print/command_list.h"
#include "qellib10/print/gdi_objects.h"

CQelPrintJobBlockData::CQelPrintJobBlockData() : m_pCommand(std::make_unique<qel::CommandList>()) {}

CQelPrintJobBlockData::CQelPrintJobBlockData(const CQelPrintJobBlockData& other)
    : m_pCommand(std::make_unique<qel::CommandList>(*other.m_pCommand)) {}

CQelPrintJobBlockData& CQelPrintJobBlockData::operator=(const CQelPrintJobBlockData& other) {
    if (this != &other) *m_pCommand = *other.m_pCommand;
    ResetGetCommand();
    return *this;
}

CQelPrintJobBlockData::~CQelPrintJobBlockData() = default;

int CQelPrintJobBlockData::Initialize() {
    *m_pCommand = {};
    return ResetGetCommand();
}

int CQelPrintJobBlockData::AddCommand(const CQelPrintJobCommand& command) {
    m_pCommand->Add(command);
    return 1;
}

void CQelPrintJobBlockData::AddCommands(qel::CommandList commands) {
    if (m_pCommand->Count() == 0) {
        *m_pCommand = std::move(commands);
        return;
    }
    CQelPrintJobCommand command;
    for (std::size_t at = qel::CommandList::kBegin; at != commands.End();) {
        at = commands.Read(at, command);
        m_pCommand->Add(command);
    }
}

int CQelPrintJobBlockData::GetCommandCount() const { return static_cast<int>(m_pCommand->Count()); }

int CQelPrintJobBlockData::ResetGetCommand() {
    m_nCursor = qel::CommandList::kBegin;
    m_isAllRead = false;
    return 1;
}

int CQelPrintJobBlockData::GetNextCommand(CQelPrintJobCommand& out) {
    if (m_isAllRead || m_nCursor == m_pCommand->End()) return 0;
    m_nCursor = m_pCommand->Read(m_nCursor, out);
    m_isAllRead = m_nCursor == m_pCommand->End();
    return 1;
}

void CQelPrintJobBlockData::SetOffset(int x, int y) {
    m_nOffsetX = x;
    m_nOffsetY = y;
}

int CQelPrintJobBlockData::DrawCommand(CDC* dc) const {
    CGDIObjects objects;
    CQelPrintJobCommand command;
    for (std::size_t at = qel::CommandList::kBegin; at != m_pCommand->End();) {
        at = m_pCommand->Read(at, command);
        command.Draw(dc, m_nOffsetX, m_nOffsetY, &objects);
    }
    return 1;
}
