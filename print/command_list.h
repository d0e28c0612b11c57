#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "qellib10/print/command.h"

namespace qel {

/// Commands in the order in which they were added. Nothing of a command is lost, but it takes only the memory that it
/// needs: a line to a point 12 bytes. Curves are recorded with one command per point, so a job may have millions of
/// them.
class CommandList {
public:
    std::size_t Count() const noexcept { return m_nCount; }
    void Add(const CQelPrintJobCommand& command);

    /// The position of the first command; if there is none, reading there finds the end.
    static constexpr std::size_t kBegin = 0;
    std::size_t End() const noexcept { return m_aryWord.size(); }
    /// Returns the command at @p position in @p command. @return the position of the next one
    std::size_t Read(std::size_t position, CQelPrintJobCommand& command) const;

private:
    static constexpr std::array kNumbers = {
        &CQelPrintJobCommand::m_nX1,       &CQelPrintJobCommand::m_nY1,   &CQelPrintJobCommand::m_nX2,
        &CQelPrintJobCommand::m_nY2,       &CQelPrintJobCommand::m_nX3,   &CQelPrintJobCommand::m_nY3,
        &CQelPrintJobCommand::m_nX4,       &CQelPrintJobCommand::m_nY4,   &CQelPrintJobCommand::m_nRadius,
        &CQelPrintJobCommand::m_nPenWidth, &CQelPrintJobCommand::m_nStyle};

    // A command is a word with its kind and a bit for each field that is not 0, then one word for each of these fields:
    // the numbers and the colour themselves, the indices of the font and of the text.
    std::vector<std::uint32_t> m_aryWord;
    std::vector<LOGFONT> m_aryFont;
    std::vector<CString> m_aryText;
    std::size_t m_nCount = 0;
};

}  // namespace qel
