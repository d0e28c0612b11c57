#include "qellib10/print/command_format.h"

#include <algorithm>

#include "qellib10/print/drawn_shape.h"

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

constexpr std::array<CommandField, 9> kShape = {{{"color", Get<&Command::GetColor>},
                                                 {"width", Get<&Command::GetPenWidth>},
                                                 {"style", Get<&Command::GetStyle>},
                                                 {"fill", Get<&Command::GetX1>},
                                                 {"opacity", Get<&Command::GetX2>},
                                                 {"dash1", Get<&Command::GetX3>},
                                                 {"gap1", Get<&Command::GetY3>},
                                                 {"dash2", Get<&Command::GetX4>},
                                                 {"gap2", Get<&Command::GetY4>}}};
constexpr std::array<CommandField, 5> kLabel = {{{"size", [](const Command& c) { return int{c.GetFont().lfHeight}; }},
                                                 {"x", Get<&Command::GetX1>},
                                                 {"y", Get<&Command::GetY1>},
                                                 {"color", Get<&Command::GetColor>},
                                                 {"style", Get<&Command::GetStyle>}}};

void SetTextOf(Command& command, const Numbers& numbers, const CString& face, const CString& text) {
    const auto [size, x, y, width, height, color, style, unused, unusedToo] = numbers;
    command.SetText(x, y, face, size, static_cast<DWORD>(color), text, style, width, height);
}

// The most frequent ones first: curves are lines to points.
constexpr std::array<CommandFormat, 12> kFormats = {{
    {Command::kLineTo, "lineto", kPoint, [](Command& c, const Numbers& n) { c.SetLineTo(n[0], n[1]); }},
    {Command::kMoveTo, "moveto", kPoint, [](Command& c, const Numbers& n) { c.SetMoveTo(n[0], n[1]); }},
    {Command::kLine, "line", kTwoPoints, [](Command& c, const Numbers& n) { c.SetLine(n[0], n[1], n[2], n[3]); }},
    {Command::kText, "text", kText, nullptr, SetTextOf, false, true},
    {Command::kSetPen, "setpen", kPen,
     [](Command& c, const Numbers& n) { c.SetPen(n[1], n[0], static_cast<DWORD>(n[2])); }},
    {Command::kSetRgn, "setrgn", kTwoPoints, [](Command& c, const Numbers& n) { c.SetRgn(n[0], n[1], n[2], n[3]); }},
    {Command::kRectangle, "rectangle", kTwoPoints,
     [](Command& c, const Numbers& n) { c.SetRectangle(n[0], n[1], n[2], n[3]); }},
    {Command::kArc, "arc", kPoints,
     [](Command& c, const Numbers& n) { c.SetArc(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]); }},
    {Command::kCircle, "circle", kCircle, [](Command& c, const Numbers& n) { c.SetCircle(n[0], n[1], n[2]); }},
    {Command::kUnit, "unit", {}, nullptr},
    {Command::kShape, "shape", kShape, nullptr, SetShapeOf, true},
    {Command::kLabel, "label", kLabel, nullptr, SetLabelOf, true, true},
}};

template <class Matches> const CommandFormat* Find(Matches matches) {
    const auto found = std::ranges::find_if(kFormats, matches);
    return found != kFormats.end() ? &*found : nullptr;
}

}  // namespace

const CommandFormat* FindCommandFormat(int kind) {
    return Find([kind](const CommandFormat& format) { return format.kind == kind; });
}

const CommandFormat* FindCommandFormat(std::string_view element) {
    return Find([element](const CommandFormat& format) { return format.name == element; });
}

}  // namespace qel
