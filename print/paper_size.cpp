#include "qellib10/print/paper_size.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace qel {
namespace {

constexpr int kFirstForm = 2;
constexpr CSize kSizes[] = {
    {2150, 2783},   // 2
    {2783, 4301},   // 3
    {4301, 2783},   // 4
    {2150, 3542},   // 5
    {1391, 2150},   // 6
    {1834, 2656},   // 7
    {2970, 4200},   // 8
    {2100, 2970},   // 9
    {2100, 2970},   // 10
    {1480, 2100},   // 11
    {2500, 3540},   // 12
    {1820, 2570},   // 13
    {2150, 3289},   // 14
    {2150, 2750},   // 15
    {2530, 3542},   // 16
    {2783, 4301},   // 17
    {2150, 2783},   // 18
    {980, 2245},    // 19
    {1043, 2403},   // 20
    {1138, 2624},   // 21
    {1201, 2783},   // 22
    {1265, 2909},   // 23
    {4301, 5566},   // 24
    {5566, 8602},   // 25
    {8602, 11132},  // 26
    {1100, 2200},   // 27
    {1620, 2290},   // 28
    {3240, 4580},   // 29
    {2290, 3240},   // 30
    {1140, 1620},   // 31
    {1140, 2290},   // 32
    {2500, 3530},   // 33
    {1760, 2500},   // 34
    {1760, 1250},   // 35, in landscape
    {1100, 2300},   // 36
    {980, 1897},    // 37
    {917, 1644},    // 38
    {3763, 2783},   // 39
    {2150, 3036},   // 40
    {2150, 3289},   // 41
};

}  // namespace

std::optional<CSize> PaperSizeOf(int form) noexcept {
    if (form < kFirstForm || form - kFirstForm >= static_cast<int>(std::size(kSizes))) return std::nullopt;
    return kSizes[form - kFirstForm];
}

std::optional<CSize> SheetOf(CDC* dc) {
    if (dc == nullptr) return std::nullopt;
    const auto tenths = [&](int length, int dotsPerInch) {
        return ::MulDiv(dc->GetDeviceCaps(length), kTenthsPerInch, dc->GetDeviceCaps(dotsPerInch));
    };
    const CSize sheet(tenths(PHYSICALWIDTH, LOGPIXELSX), tenths(PHYSICALHEIGHT, LOGPIXELSY));
    if (sheet.cx < 1 || sheet.cy < 1) return std::nullopt;
    return sheet;
}

bool FillPaperSize(DEVMODE& mode, CDC* dc) {
    const bool hasSize = mode.dmPaperWidth != 0 && mode.dmPaperLength != 0;
    if (hasSize || PaperSizeOf(mode.dmPaperSize)) return true;
    const std::optional<CSize> sheet = SheetOf(dc);
    if (!sheet) return false;
    constexpr LONG kLongest = std::numeric_limits<short>::max();
    mode.dmPaperWidth = static_cast<short>(std::min(sheet->cx, kLongest));
    mode.dmPaperLength = static_cast<short>(std::min(sheet->cy, kLongest));
    return true;
}

}  // namespace qel
