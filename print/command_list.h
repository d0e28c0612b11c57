#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "qellib10/print/command.h"

namespace qel {

/// Commands in the order in which they were added. Each is kept whole, but takes the memory of what it holds: a line to
/// a point 12 bytes. Curves are recorded with a command a point, so that a job may have millions of them.
class CommandList {
public:
    std::size_t Count() const noexcept { return m_nCount; }
    void Add(const CQelPrintJobCommand& command);

    /// Where the first command is, and where none is any more.
    static constexpr std::size_t kBegin = 0;
    std::size_t End() const noexcept { return m_aryWord.size(); }
    /// Gives out the command at @p position. @return the position of the next one
    std::size_t Read(std::size_t position, CQelPrintJobCommand& command) const;

private:
    static constexpr std::array kNumbers = {
        &CQelPrintJobCommand::m_nX1,       &CQelPrintJobCommand::m_nY1,   &CQelPrintJobCommand::m_nX2,
        &CQelPrintJobCommand::m_nY2,       &CQelPrintJobCommand::m_nX3,   &CQelPrintJobCommand::m_nY3,
        &CQelPrintJobCommand::m_nX4,       &CQelPrintJobCommand::m_nY4,   &CQelPrintJobCommand::m_nRadius,
        &CQelPrintJobCommand::m_nPenWidth, &CQelPrintJobCommand::m_nStyle};

    // A command is a word that tells its kind and which of its fields are not 0, then a word for each of these: the
    // numbers and the colour themselves, the index of the font and of the text.
    std::vector<std::uint32_t> m_aryWord;
    std::vector<LOGFONT> m_aryFont;
    std::vector<CString> m_aryText;
    std::size_t m_nCount = 0;
};

}  // namespace qel
