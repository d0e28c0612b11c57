#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/drawing/drawing_types.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// One line of a text, ready to be drawn.
struct TextLine {
    std::string text;  ///< UTF-8, without control characters
    int width = 0;     ///< advance in device units, trailing blanks included
    int inkWidth = 0;  ///< without trailing blanks: used for centring
};

/// A font in its size on a device. Everything is measured without hinting, so that all back ends agree. A font belongs
/// to one thread.
class TextFont {
public:
    /// @param description face and style; its height is ignored
    /// @param height device units: below 0 the em height, above 0 that of a cell; not 0
    static std::shared_ptr<const TextFont> Create(const LOGFONT& description, int height);
    /// The same, but returns one of the last few fonts that this thread got here if it fits: creating one takes as long
    /// as drawing several texts.
    static std::shared_ptr<const TextFont> Kept(const LOGFONT& description, int height);
    virtual ~TextFont() = default;

    int Ascent() const noexcept { return m_nAscent; }
    int Descent() const noexcept { return m_nDescent; }
    /// Of a line: ascent and descent, each rounded.
    int Height() const noexcept { return m_nAscent + m_nDescent; }
    int AverageWidth() const noexcept { return m_nAverageWidth; }
    /// For back ends that write texts by name.
    double EmHeight() const noexcept { return m_em; }
    const std::string& Families() const noexcept { return m_families; }  ///< separated by commas
    bool IsBold() const noexcept { return m_isBold; }
    bool IsItalic() const noexcept { return m_isItalic; }
    bool IsUnderlined() const noexcept { return m_isUnderlined; }
    bool IsStruckOut() const noexcept { return m_isStruckOut; }

    /// A whole text as one line; control characters become blanks.
    virtual TextLine Line(std::string_view utf8) const = 0;
    enum class Break { kNone, kWord, kWordOrCharacter };
    /// A text of paragraphs (separated by LF, CR or both), broken into lines of @p width device units.
    virtual std::vector<TextLine> Lines(std::string_view utf8, int width, Break breaking) const = 0;
    /// Draws a line with the current source; its baseline starts at x, y.
    virtual void Show(cairo_t* cairo, const TextLine& line, double x, double y) const = 0;

protected:
    int m_nAscent = 0;
    int m_nDescent = 0;
    int m_nAverageWidth = 0;
    double m_em = 0;
    std::string m_families;
    bool m_isBold = false;
    bool m_isItalic = false;
    bool m_isUnderlined = false;
    bool m_isStruckOut = false;
};

}  // namespace qel
