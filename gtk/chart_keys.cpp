#include "qellib10/gtk/chart_keys.h"

#include <algorithm>
#include <iterator>

namespace qel {
namespace {

constexpr guint kShift = GDK_SHIFT_MASK, kControl = GDK_CONTROL_MASK, kAlt = GDK_MOD1_MASK;

struct Row {
    ChartCommand command;
    guint key, modifiers;
};
// docs/gtk.md has the same table. Tab is the window's: it goes to the next widget.
constexpr Row kRows[] = {
    {ChartCommand::kShowAll, GDK_KEY_Home, 0},
    {ChartCommand::kZoomIn, GDK_KEY_plus, 0},
    {ChartCommand::kZoomIn, GDK_KEY_KP_Add, 0},
    {ChartCommand::kZoomOut, GDK_KEY_minus, 0},
    {ChartCommand::kZoomOut, GDK_KEY_KP_Subtract, 0},
    {ChartCommand::kLeft, GDK_KEY_Left, 0},
    {ChartCommand::kRight, GDK_KEY_Right, 0},
    {ChartCommand::kUp, GDK_KEY_Up, 0},
    {ChartCommand::kDown, GDK_KEY_Down, 0},
    {ChartCommand::kCancel, GDK_KEY_Escape, 0},
    {ChartCommand::kNextPoint, GDK_KEY_Right, kControl},
    {ChartCommand::kPointBefore, GDK_KEY_Left, kControl},
    {ChartCommand::kNextSeries, GDK_KEY_Down, kControl},
    {ChartCommand::kMarkers, GDK_KEY_m, 0},
    {ChartCommand::kMarkerLeft, GDK_KEY_Left, kAlt},
    {ChartCommand::kMarkerRight, GDK_KEY_Right, kAlt},
    {ChartCommand::kMarkerFarLeft, GDK_KEY_Left, kAlt | kShift},
    {ChartCommand::kMarkerFarRight, GDK_KEY_Right, kAlt | kShift},
    {ChartCommand::kOtherMarker, GDK_KEY_Up, kAlt},
    {ChartCommand::kMarkerSeries, GDK_KEY_Down, kAlt},
    {ChartCommand::kLeaveOutMode, GDK_KEY_l, 0},
    {ChartCommand::kLeaveOutPoint, GDK_KEY_Delete, 0},
    {ChartCommand::kCopyPicture, GDK_KEY_c, kControl},
    {ChartCommand::kCopyCsv, GDK_KEY_c, kControl | kShift},
    {ChartCommand::kSave, GDK_KEY_s, kControl},
    {ChartCommand::kPrint, GDK_KEY_p, kControl},
};

}  // namespace

std::optional<ChartCommand> CommandOf(const GdkEventKey& event) {
    const guint key = gdk_keyval_to_lower(event.keyval);
    const bool isShifted = key == GDK_KEY_plus || key == GDK_KEY_minus;  // on many keyboards with Shift
    const guint modifiers = event.state & (isShifted ? kControl | kAlt : kShift | kControl | kAlt);
    const auto row =
        std::ranges::find_if(kRows, [&](const Row& each) { return each.key == key && each.modifiers == modifiers; });
    return row == std::end(kRows) ? std::nullopt : std::optional(row->command);
}

ChartKey KeyOf(ChartCommand command) {
    const auto row = std::ranges::find(kRows, command, &Row::command);
    return row == std::end(kRows) ? ChartKey{0, 0} : ChartKey{row->key, row->modifiers};
}

}  // namespace qel
