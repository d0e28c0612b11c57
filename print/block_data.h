#pragma once

#include <cstddef>
#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/print/command.h"

namespace qel {
class CommandList;
}

/// Print commands in order, and where on a page they are drawn. Commands are read one by one through a cursor, or drawn
/// together as often as needed; drawing does not move the cursor.
///
/// Operations return 1 unless described otherwise.
class QELLIB10_API CQelPrintJobBlockData {
public:
    CQelPrintJobBlockData();
    /// A copy, and the target of an assignment, has the other's commands with the cursor on the first one, but not its
    /// offset.
    CQelPrintJobBlockData(const CQelPrintJobBlockData& other);
    CQelPrintJobBlockData& operator=(const CQelPrintJobBlockData& other);
    virtual ~CQelPrintJobBlockData();

    /// Removes all commands and resets the cursor. The offset stays.
    int Initialize();

    int AddCommand(const CQelPrintJobCommand& command);
    int GetCommandCount() const;

    /// Puts the cursor on the first command.
    int ResetGetCommand();
    /// Returns the command at the cursor in @p out and moves the cursor on.
    /// @return 0 at the end; @p out does not change then. Once the last command has been returned, commands that are
    /// added later are only found after ResetGetCommand.
    int GetNextCommand(CQelPrintJobCommand& out);

    /// The position of the commands' 0,0, in device units.
    void SetOffset(int x, int y);

    /// Draws all commands, starting with the surface's current pen, colours and clip. The last pen and clip that the
    /// commands set stay on the surface; to avoid that, call SaveDC before and RestoreDC after it.
    int DrawCommand(CDC* dc) const;

private:
    friend class CQelPrintJobQueueData;
    void AddCommands(qel::CommandList commands);

    std::unique_ptr<qel::CommandList> m_pCommand;
    std::size_t m_nCursor = 0;
    bool m_isAllRead = false;
    int m_nOffsetX = 0, m_nOffsetY = 0;
};
