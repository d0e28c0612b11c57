#pragma once

#include <memory>
#include <string_view>

#include "qellib10/platform/drawing/shape.h"
#include "qellib10/platform/drawing/text_font.h"

namespace qel {

/// A line of a label, measured in one large size of its font and scaled from there, so that its proportions are the
/// same at every resolution.
struct LabelText {
    LabelText(std::string_view utf8, const LabelStyle& style, double dotsPerInch);

    std::shared_ptr<const TextFont> font;
    TextLine line;
    double scale;  ///< device units for a unit of the font
};

}  // namespace qel
