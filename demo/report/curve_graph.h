#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "demo/curve/csv_table.h"

namespace titration {

/// A titration curve: the measured points, their slope on a separate axis at the right, and the end point as a circle
/// with a cross. Grid lines are at round numbers, which are written at each.
///
/// All texts come before the first line, so that a print job of the graph can be drawn anywhere on a page: removing the
/// limit to the draw area in a job that was moved hides what follows.
class CurveGraph : public CQelGraph {
public:
    /// @param dotsPerInch of the surface that the graph will be drawn on
    CurveGraph(const Curve& curve, const qel::EndPoint& endPoint, const std::string& volumeName,
               const std::string& signalName, int dotsPerInch);

    int GraphDraw(CDC* dc, int x, int y) override;

private:
    enum Series : int { kSlope, kSignal };

    struct Axis {
        std::string title;
        COLORREF color;
        qel::AxisSteps steps;

        CSize Largest(CDC* dc) const;
    };

    int Dots(int hundredthsOfMillimetre) const { return hundredthsOfMillimetre * m_dotsPerInch / 2540; }
    void AddSeries(Series series, const Axis& axis, const qel::CurvePoints& points, int lineWidth);
    void ReserveTextMargins(CDC* dc);
    void DrawTexts(CDC* dc);
    void DrawEndPoint(CDC* dc);

    const qel::EndPoint m_endPoint;
    const int m_dotsPerInch;
    Axis m_volume, m_signal, m_slope;
};

}  // namespace titration
