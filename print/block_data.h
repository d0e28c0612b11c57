#pragma once

#include <cstddef>
#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/print/command.h"

namespace qel {
class CommandList;
}

/// Print commands in order, and where on a page they are drawn. Commands are read one after the other through a cursor,
/// or drawn as a whole as often as needed; drawing does not move the cursor.
///
/// Operations answer 1 unless described otherwise.
class QELLIB10_API CQelPrintJobBlockData {
public:
    CQelPrintJobBlockData();
    /// A copy, and a block that is assigned to, has the other one's commands with the cursor on the first, but not its
    /// offset.
    CQelPrintJobBlockData(const CQelPrintJobBlockData& other);
    CQelPrintJobBlockData& operator=(const CQelPrintJobBlockData& other);
    virtual ~CQelPrintJobBlockData();

    /// Takes all commands out and puts the cursor where the first one will be. The offset stays.
    int Initialize();

    int AddCommand(const CQelPrintJobCommand& command);
    int GetCommandCount() const;

    /// Puts the cursor on the first command.
    int ResetGetCommand();
    /// Gives out the command at the cursor, which moves on.
    /// @return 0 at the end, @p out is then as before. Once the last command was given out, commands that are added are
    ///   only seen after ResetGetCommand.
    int GetNextCommand(CQelPrintJobCommand& out);

    /// Where the commands' 0,0 is drawn, in device units.
    void SetOffset(int x, int y);

    /// Draws all commands, with pen, colours and clip as the surface has them at the start. The last pen and clip that
    /// the commands set stay in the surface; who needs a clean one keeps its state with SaveDC and RestoreDC.
    int DrawCommand(CDC* dc) const;

private:
    friend class CQelPrintJobQueueData;
    void AddCommands(qel::CommandList commands);

    std::unique_ptr<qel::CommandList> m_pCommand;
    std::size_t m_nCursor = 0;
    bool m_isAllRead = false;
    int m_nOffsetX = 0, m_nOffsetY = 0;
};
