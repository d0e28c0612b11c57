#include "qellib10/print/command_format.h"

#include <algorithm>

namespace qel {
namespace {

using Command = CQelPrintJobCommand;
using Numbers = CommandNumbers;

template <auto kGetter> int Get(const Command& command) { return static_cast<int>((command.*kGetter)()); }

constexpr std::array<CommandField, 7> kText = {{{"size", [](const Command& c) { return int{c.GetFont().lfHeight}; }},
                                                {"x", Get<&Command::GetX1>},
                                                {"y", Get<&Command::GetY1>},
                                                {"width", Get<&Command::GetX2>, -1},
                                                {"height", Get<&Command::GetY2>, -1},
                                                {"color", Get<&Command::GetColor>},
                                                {"style", Get<&Command::GetStyle>, 1}}};
constexpr std::array<CommandField, 2> kPoint = {{{"x", Get<&Command::GetX1>}, {"y", Get<&Command::GetY1>}}};
constexpr std::array<CommandField, 3> kCircle = {
    {{"x", Get<&Command::GetX1>}, {"y", Get<&Command::GetY1>}, {"r", Get<&Command::GetRadius>}}};
constexpr std::array<CommandField, 3> kPen = {
    {{"width", Get<&Command::GetPenWidth>}, {"style", Get<&Command::GetStyle>}, {"color", Get<&Command::GetColor>}}};
constexpr std::array<CommandField, 8> kPoints = {{{"x1", Get<&Command::GetX1>},
                                                  {"y1", Get<&Command::GetY1>},
                                                  {"x2", Get<&Command::GetX2>},
                                                  {"y2", Get<&Command::GetY2>},
                                                  {"x3", Get<&Command::GetX3>},
                                                  {"y3", Get<&Command::GetY3>},
                                                  {"x4", Get<&Command::GetX4>},
                                                  {"y4", Get<&Command::GetY4>}}};
constexpr std::span<const CommandField> kTwoPoints = std::span(kPoints).first(4);

// The most frequent ones first: curves are lines to points.
constexpr std::array<CommandFormat, 10> kFormats = {{
    {Command::kLineTo, "lineto", kPoint, [](Command& c, const Numbers& n) { c.SetLineTo(n[0], n[1]); }},
    {Command::kMoveTo, "moveto", kPoint, [](Command& c, const Numbers& n) { c.SetMoveTo(n[0], n[1]); }},
    {Command::kLine, "line", kTwoPoints, [](Command& c, const Numbers& n) { c.SetLine(n[0], n[1], n[2], n[3]); }},
    {Command::kText, "text", kText, nullptr},
    {Command::kSetPen, "setpen", kPen,
     [](Command& c, const Numbers& n) { c.SetPen(n[1], n[0], static_cast<DWORD>(n[2])); }},
    {Command::kSetRgn, "setrgn", kTwoPoints, [](Command& c, const Numbers& n) { c.SetRgn(n[0], n[1], n[2], n[3]); }},
    {Command::kRectangle, "rectangle", kTwoPoints,
     [](Command& c, const Numbers& n) { c.SetRectangle(n[0], n[1], n[2], n[3]); }},
    {Command::kArc, "arc", kPoints,
     [](Command& c, const Numbers& n) { c.SetArc(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]); }},
    {Command::kCircle, "circle", kCircle, [](Command& c, const Numbers& n) { c.SetCircle(n[0], n[1], n[2]); }},
    {Command::kUnit, "unit", {}, nullptr},
}};

template <class Matches> const CommandFormat* Find(Matches matches) {
    const auto found = std::ranges::find_if(kFormats, matches);
    return found != kFormats.end() ? &*found : nullptr;
}

}  // namespace

void SetText(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString& face, const CString& text) {
    const auto [size, x, y, width, height, color, style, unused] = numbers;
    command.SetText(x, y, face, size, static_cast<DWORD>(color), text, style, width, height);
}

const CommandFormat* FindCommandFormat(int kind) {
    return Find([kind](const CommandFormat& format) { return format.kind == kind; });
}

const CommandFormat* FindCommandFormat(std::string_view element) {
    return Find([element](const CommandFormat& format) { return format.name == element; });
}

}  // namespace qel
