#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/gdi_object.h"

namespace qel {

/// Widths of texts in one font, which is selected on the surface only while a text is measured.
class TableText {
public:
    /// @param tenths tenths of a point
    TableText(CDC& dc, const std::string& face, int tenths, int dotsPerInch);

    /// In tenths of a millimetre, rounded up.
    int WidthOf(std::string_view text) const { return DotsOf(text) * 254 / m_dotsPerInch + 1; }
    /// Of the widest part between semicolons.
    int WidthOfParts(std::string_view text) const;
    /// The lines of @p text; broken after blanks, or within a word that is too long.
    std::vector<std::string> Wrapped(std::string_view text, int width) const;
    /// The part of @p text that fits in @p dots of the surface; "..." at its end means that there is more.
    std::string Fitting(std::string_view text, int dots) const;

private:
    int DotsOf(std::string_view text) const;

    CDC& m_dc;
    int m_dotsPerInch;
    CFont m_font;
};

}  // namespace qel
