#pragma once

#include <string>
#include <vector>

#include "qellib10/graph/curve_field.h"

namespace qel {

/// A note with its place.
struct PlacedNote {
    std::size_t index;  ///< in Chart::notes
    PlacedLabel label;
    ShapePoint at;  ///< what it points to
};

/// Places notes near their points, so that they overlap no other text and as few curves as possible.
std::vector<PlacedNote> PlaceNotes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                   const ChartBox& plot, const CurveField& field, TakenBoxes& taken);

}  // namespace qel
