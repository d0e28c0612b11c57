#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "qellib10/print/block_data.h"

/// A command's fields as text; those that are 0 or empty are left out.
inline std::string Describe(const CQelPrintJobCommand& command) {
    std::ostringstream text;
    text << command.GetKind() << ':';
    const auto put = [&](const char* name, auto value) {
        if (value != 0) text << ' ' << name << value;
    };
    put("x1=", command.GetX1());
    put("y1=", command.GetY1());
    put("x2=", command.GetX2());
    put("y2=", command.GetY2());
    put("x3=", command.GetX3());
    put("y3=", command.GetY3());
    put("x4=", command.GetX4());
    put("y4=", command.GetY4());
    put("r=", command.GetRadius());
    put("w=", command.GetPenWidth());
    put("s=", command.GetStyle());
    put("c=", command.GetColor());
    put("h=", command.GetFont().lfHeight);
    if (command.GetFont().lfFaceName[0] != 0) text << " f=" << command.GetFont().lfFaceName;
    if (!command.GetText().IsEmpty()) text << " t=" << command.GetText().View();
    return text.str();
}

/// All commands of a block; its cursor is at the end then.
inline std::vector<std::string> Describe(CQelPrintJobBlockData& block) {
    std::vector<std::string> all;
    CQelPrintJobCommand command;
    block.ResetGetCommand();
    while (block.GetNextCommand(command)) all.push_back(Describe(command));
    return all;
}
