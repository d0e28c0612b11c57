#pragma once

#include <string>
#include <vector>

#include "qellib10/graph/curve_field.h"

namespace qel {

/// A note or the label of a limit with its place.
struct PlacedNote {
    std::size_t index;  ///< in Chart::notes or Chart::limits
    PlacedLabel label;
    ShapePoint at;  ///< of a note: what it points to
};

/// Places texts over the plot, so that they overlap no other text and as few curves as possible. What does not fit is
/// named in @p leftOut.
std::vector<PlacedNote> PlaceLimitLabels(const Chart& chart, const ChartCanvas& canvas,
                                         const std::vector<AxisLayout>& axes, const ChartBox& plot,
                                         const CurveField& field, TakenBoxes& taken, std::vector<std::string>& leftOut);
std::vector<PlacedNote> PlaceNotes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                   const ChartBox& plot, const CurveField& field, TakenBoxes& taken,
                                   std::vector<std::string>& leftOut);

}  // namespace qel
