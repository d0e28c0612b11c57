#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/drawing/shape.h"

namespace qel {

/// Everything that a chart draws goes through here: onto a surface, or as commands into a job. Both have the same
/// coordinates, rounded to what a command keeps, so that a chart and its job have the same pixels.
class ChartCanvas {
public:
    /// @param dc or @p job is null
    ChartCanvas(CDC* dc, CQelPrintJobQueueData* job, double dotsPerInch, double scale)
        : m_pDC(dc), m_pJob(job), m_dotsPerInch(dotsPerInch), m_scale(scale) {}

    /// Device units of a length in points.
    double Units(double points) const noexcept { return points * m_scale * m_dotsPerInch / 72; }
    std::vector<double> Lengths(std::span<const double> points) const;
    LabelSize Measure(std::string_view text, const LabelStyle& style) const;
    /// See ShortenedLabel.
    std::string Shortened(std::string_view text, const LabelStyle& style, double width) const;

    void Shape(std::span<const ShapePoint> corners, const ShapeStyle& style);
    void Fill(const ChartBox& box, COLORREF color, double opacity = 1);
    void Label(const ShapePoint& start, std::string_view text, const LabelStyle& style);
    /// A horizontal or vertical line of whole pixels, at least one wide.
    void Straight(const ShapePoint& from, const ShapePoint& to, COLORREF color, double points,
                  std::span<const double> dashes = {});

    /// Limits drawing to the pixels that the box touches, until the next EndClip.
    void Clip(const ChartBox& box);
    void EndClip();

private:
    CDC* m_pDC;
    CQelPrintJobQueueData* m_pJob;
    LabelStyle Scaled(LabelStyle style) const;

    double m_dotsPerInch;
    double m_scale;  ///< of all lengths in points
};

}  // namespace qel
