#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <qellib10/qellib10.h>

namespace tool {

/// The points of a curve as they are read, in 16 bytes each, with errors 24. Where they are more than a picture can
/// show, they are thinned while they are read.
///
/// Of a line, the range of x that was read so far is divided into some hundred thousand columns, each much narrower
/// than a pixel, and of the points that follow each other in one column the first, the last, the lowest and the highest
/// are kept. Of marks, x and y are divided into cells, each much smaller than a mark, and the first point in each cell
/// is kept. Columns and cells are powers of two wide and start at a multiple of that, so that wider ones hold whole
/// ones of before.
class CurvePoints {
public:
    enum class Thinned { kLine, kMarks, kNot };
    struct Drawn {
        Thinned thinned = Thinned::kLine;
        bool hasErrors = false;
        bool isLogX = false, isLogY = false;
        std::optional<std::pair<double, double>> xRange = {};  ///< of the picture, the lower end first
        std::size_t most = 1u << 21;  ///< points before they are thinned; of lines, columns are an eighth
    };

    explicit CurvePoints(const Drawn& drawn) : m_drawn(drawn), m_most(drawn.most) {}

    /// A point that cannot be drawn is a gap; gaps that follow each other become one.
    /// @param error of y, up and down
    void Add(double x, double y, double error = 0);
    std::size_t Count() const noexcept { return m_points.size(); }
    /// The points and errors; this has none afterwards.
    void GiveTo(qel::ChartSeries& series);

private:
    void Thin();
    void ThinLine();
    void ThinMarks();
    void Keep(std::size_t point, std::size_t& kept);
    double PlaceOf(const CGraphData& point) const;
    double ErrorAt(std::size_t point) const { return m_drawn.hasErrors ? m_errors[point] : 0; }

    Drawn m_drawn;
    std::vector<CGraphData> m_points;
    std::vector<double> m_errors;  // of each point, if there are any
    std::size_t m_most;            // points before they are thinned again
};

}  // namespace tool
