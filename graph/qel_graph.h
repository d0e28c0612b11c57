#pragma once

#include <array>
#include <vector>

#include "qellib10/graph/graph_data_ctrl.h"
#include "qellib10/platform/drawing/dc.h"

class CQelPrintJobQueueData;
namespace qel {
struct DataScale;
}

/// Draws up to 512 series of measured points (index 0 to 511) as curves in a frame with grid lines, values at the ends
/// of the axes and dimensions, on any surface. The curve on the screen, in a picture and in a printed report come from
/// the same object. So what a person signs is what was seen, and no point is lost on the way: thinning changes no
/// pixel.
///
/// @code
/// CQelGraph graph;  // series 0 is shown, from 0 to 100 on both axes
/// graph.SetXDimStr(0, "mL");
/// graph.SetXMaxRange(0, 25);
/// for (int i = 0; i <= 250; ++i) graph.AddData(0, i / 10.0, 60 + i % 7);
/// CDC dc;
/// CBitmap picture;
/// if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(400, 300, 1, 32, nullptr)) return;
/// dc.SelectObject(&picture);
/// graph.SetDrawSize(400, 300);
/// graph.GraphDraw(&dc, 0, 0);
/// @endcode
///
/// View modes, how texts and values are placed, reversed axes, and what drawing costs: docs/graphs.md.
///
/// Setters return 1, or 0 for a series index outside 0 to 511; getters -1 for it. The order of the virtual operations
/// is fixed. A graph is used by one thread at a time. Nothing is copied for drawing; a copy of a graph has all its
/// points.
///
/// Kept for layouts in the field: an axis whose minimum is above its maximum has its texts, but its curve is not drawn
/// (docs/graphs.md shows how to reverse one); all axes of one side share the space of the largest text.
///
/// Settings and GraphDraw are in qel_graph.cpp, frame, grid and texts in qel_graph_frame.cpp, the areas and places of
/// values in qel_graph_layout.cpp, curves and bars in qel_graph_series.cpp, marks, fitted lines and the cross in
/// qel_graph_marks.cpp, single strokes in qel_graph_primitives.cpp, GetPrintJob in qel_graph_print.cpp.
class QELLIB10_API CQelGraph {
public:
    CQelGraph();
    CQelGraph(const CQelGraph&) = default;
    CQelGraph& operator=(const CQelGraph&) = default;
    virtual ~CQelGraph();

    /// Resets series @p series to a line with x texts below, y texts left, ranges 0 to 100; points and pens stay. A
    /// negative index does so with series 0, hides all others, without texts and with the same ranges, and sets
    /// margins, label spaces, divisions and the draw size style to their defaults, the draw size to 0 x 0.
    /// @return 0 for 512 and more
    virtual int InitializeParameter(int series);
    /// Removes the points of the series; a negative index removes those of all. @return 0 for 512 and more
    virtual int InitializeData(int series);
    virtual int AddData(int series, double x, double y);

    /// Size of the whole drawing with texts and margins; absolute values are used.
    virtual void SetDrawSize(int width, int height);
    /// Draws everything, with the corner of the drawing at @p x, @p y. Afterwards the surface has its former pen,
    /// brush, font and colours, and no clip.
    /// @return what the last visible series returned (a line 1, bars 0, a recorder 1); @p y if there is none
    virtual int GraphDraw(CDC* dc, int x, int y);

    // Further drawing over a series. Each of these draws only within the area and returns 0 for a bad index.

    /// A mark at a point: a square for @p shape 2, else a circle, with half-size @p size. While a job is recorded, the
    /// size is converted from the screen's resolution (coordinate mode 1: from 1/1440 inch) to the job's. In a job
    /// without a resolution (0) it becomes 0 and is invisible: set the resolution of the job's page style first.
    /// @param rect receives the box, with the larger y edge as its top; may be null
    /// @return 0 without a surface
    virtual int MarkDraw(CDC* dc, int series, double x, double y, int shape, unsigned long color, int size,
                         CRect* rect);
    /// A fitted curve from @p xFrom to @p xTo: y = c0 + c1 x + c2 x^2 + c3 x^3 + c4 x^4 + c5 x^5, with one point per
    /// unit of the area's width, with a solid pen.
    /// @return 0 without a surface
    virtual int FitLineDraw(CDC* dc, int series, double xFrom, double xTo, double c0, double c1, double c2, double c3,
                            double c4, double c5, unsigned long color, int width);
    /// A straight line between two points with a solid pen. @return 0 without a surface
    virtual int FreeLineDraw(CDC* dc, int series, double x1, double y1, double x2, double y2, unsigned long color,
                             int width);
    /// A cross over the whole area by inverting pixels; a second one at the same point removes it. @return 0
    virtual int DrawCrossPoint(CDC* dc, int series, double x, double y);

    /// Records the graph into the job: SetDrawSize with the size of @p rect and GraphDraw at its corner, on @p dc or,
    /// without one, on the job's selected printer or else a new context of its printer. Each point becomes a command
    /// with its coordinates on the surface. Nothing is recorded without a job, or without both @p dc and a printer.
    ///
    /// If the block is drawn with an offset, texts that follow in the job are not drawn, because a clip that was
    /// removed with an offset hides everything: add them before. Bars are filled with the brush of the surface that the
    /// job is drawn on.
    /// @return 0, always
    virtual int GetPrintJob(CQelPrintJobQueueData* job, const CRect& rect, CDC* dc);

    // The layout: margins outside the texts, space between texts and area (X vertically, Y horizontally), device units.
    const int& GetLeftMargin() const { return m_nLeftMargin; }
    void SetLeftMargin(const int& margin) { m_nLeftMargin = margin; }
    const int& GetTopMargin() const { return m_nTopMargin; }
    void SetTopMargin(const int& margin) { m_nTopMargin = margin; }
    const int& GetRightMargin() const { return m_nRightMargin; }
    void SetRightMargin(const int& margin) { m_nRightMargin = margin; }
    const int& GetBottomMargin() const { return m_nBottomMargin; }
    void SetBottomMargin(const int& margin) { m_nBottomMargin = margin; }
    const int& GetLabelSpaceX() const { return m_nLabelSpaceX; }
    void SetLabelSpaceX(const int& space) { m_nLabelSpaceX = space; }
    const int& GetLabelSpaceY() const { return m_nLabelSpaceY; }
    void SetLabelSpaceY(const int& space) { m_nLabelSpaceY = space; }
    /// Number of parts into which grid lines divide the axes; 1 and less: no grid lines, more than the area has units:
    /// one per unit.
    const int& GetDivX() const { return m_nDivX; }
    void SetDivX(const int& divisions) { m_nDivX = divisions; }
    const int& GetDivY() const { return m_nDivY; }
    void SetDivY(const int& divisions) { m_nDivY = divisions; }
    /// 1: the area is made square, in the middle of its space.
    const int& GetDrawSizeStyle() const { return m_nDrawSizeStyle; }
    void SetDrawSizeStyle(const int& style) { m_nDrawSizeStyle = style; }
    /// Pen of the grid lines.
    const CLineGraphStyle& GetAxisStyle() const { return m_axisStyle; }
    void SetAxisStyle(const CLineGraphStyle& style) { m_axisStyle = style; }
    /// Pen of the outline, which runs along the edges of the area. If it is wider than 1, half of it is outside, even
    /// outside the drawing if margins and label spaces are smaller; it is drawn before the texts, which stay readable
    /// on it. Make the label spaces larger than half its width to keep both apart.
    const CLineGraphStyle& GetFrameStyle() const { return m_frameStyle; }
    void SetFrameStyle(const CLineGraphStyle& style) { m_frameStyle = style; }

    // The series.
    int SetXMinRange(int series, double range);
    int SetXMaxRange(int series, double range);
    int SetYMinRange(int series, double range);
    int SetYMaxRange(int series, double range);
    int SetXDimStr(int series, const CString& text);
    int SetYDimStr(int series, const CString& text);
    int SetXLabelViewMode(int series, int viewMode);  ///< 0 none, 1 above, 2 below, 3 left, 4 right of the area
    int SetYLabelViewMode(int series, int viewMode);
    /// The whole style, including its view mode.
    int SetXRangeStyle(int series, const CAxisStyle& style);
    int SetYRangeStyle(int series, const CAxisStyle& style);
    int GetXRangeStyle(int series, CAxisStyle* style) const;  ///< 1; -1 also for a null @p style
    int GetYRangeStyle(int series, CAxisStyle* style) const;
    int SetGraphViewMode(int series, int viewMode);
    int GetGraphViewMode(int series) const;
    int SetGraphPlotflg(int series, int plotflg);
    int GetGraphPlotflg(int series) const;
    int SetLineGraphStyle(int series, const CLineGraphStyle& style);
    CLineGraphStyle GetLineGraphStyle(int series) const;  ///< the default style for a bad index
    int SetBarGraphStyle(int series, const CBarGraphStyle& style);
    CBarGraphStyle GetBarGraphStyle(int series) const;  ///< the default style for a bad index

protected:
    static constexpr int kSeries = 512;
    enum : int { kViewHidden, kViewLine, kViewBar, kViewRecorder, kViewRecorderFromRight };
    enum : int { kLabelNone, kLabelAbove, kLabelBelow, kLabelLeft, kLabelRight };

    // Distances from the area's left edge and from its top edge (coordinate mode 1: bottom edge), within 65530. NaN
    // gives -65530. In modes other than 0 and 1 the number itself.
    int DataToXPixel(double x, int series) const;
    int DataToYPixel(double y, int series) const;
    /// The values at a position on the surface.
    /// @return 0 outside the area, whose right and bottom edges are not included; 1 without values in coordinate modes
    /// other than 0 and 1
    int GetValueFromPos(int series, int px, int py, double* x, double* y) const;

    // The layout
    /// What the texts of the axes of one side need along that side, including the space after each text.
    struct SideUse {
        LONGLONG first = 0;  ///< at the left or upper end
        LONGLONG last = 0;   ///< at the right or lower end
        LONGLONG dims = 0;
        int axes = 0;
    };
    /// One per label view mode.
    using SideUses = std::array<SideUse, 5>;
    void GetDrawArea(CDC* dc, int x, int y);
    void GetDrawAreaSub(int viewMode, const CSize& size, CRect& space) const;
    CSize GetAxisViewSizeMax(CDC* dc, const CAxisStyle& axis) const;
    CSize GetAxisLabelViewSize(CDC* dc, const CAxisStyle& axis) const;
    CSize GetAxisDimViewSize(CDC* dc, const CAxisStyle& axis) const;

    // Drawing
    void FrameDraw(CDC* dc, int x, int y);
    /// @param isReversed the axis starts at the right end of a horizontal side
    void FrameDrawSub(CDC* dc, const CAxisStyle& axis, SideUses& used, const SideUses& counts, bool isReversed);
    void DrawAxisFormattedValueMin(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isReversed);
    void DrawAxisFormattedValueMax(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isReversed);
    void DrawAxisDimStr(CDC* dc, const CAxisStyle& axis, SideUses& used, const SideUses& counts);
    void AxisDraw(CDC* dc);
    int LineDraw(CDC* dc, int series);
    int PlotLineDraw(CDC* dc, int series);
    int BarDraw(CDC* dc, int series);
    int RecorderDrawX(CDC* dc, int series, int variant);

    // All drawing goes through these functions. Each draws on the surface and records the same into the attached job;
    // without a surface they do nothing.
    void DCMoveTo(CDC* dc, int x, int y);
    void DCLineTo(CDC* dc, int x, int y);
    void DCPolylineTo(CDC* dc, const POINT* points, int count);  ///< records a line to each point
    void DCRectangle(CDC* dc, int left, int top, int right, int bottom);
    void DCArc(CDC* dc, int left, int top, int right, int bottom, int startX, int startY, int endX, int endY);
    /// @param size tenths of a point; 0: the surface's default size
    /// @param align 0 left, 1 centre, 2 right in a box of @p width and @p height; only used if those are not -1
    void DCTextOut(CDC* dc, int x, int y, const char* face, int size, unsigned long color, const char* text, int align,
                   int width, int height);
    /// Creates the pen. @return the one that was selected
    CPen* DCCreateAndSelectPen(CDC* dc, CPen* pen, int style, int width, unsigned long color);
    /// Creates the region of the area, including its right and bottom edges, and limits drawing to it; null: no limit.
    void DCClipDrawArea(CDC* dc, CRgn* region);

    std::vector<CGraphDataCtrl> m_aryGraph;  // always 512
    int m_nDrawWidth = 0, m_nDrawHeight = 0;
    CRect m_rectDrawArea;  // less than 2^30 from 0
    /// 0: device pixels, y downward; 1: metric units of 1/1440 inch (MM_TWIPS), y upward. A derived class sets it, then
    /// calls InitializeParameter(-1) for the margins of that mode.
    int m_nCoordinateMode = 0;
    CQelPrintJobQueueData* m_pPrintJob = nullptr;  // attached while a job is recorded, not owned
    int m_nLeftMargin, m_nTopMargin, m_nRightMargin, m_nBottomMargin;
    int m_nLabelSpaceX, m_nLabelSpaceY;
    int m_nDivX, m_nDivY;
    int m_nDrawSizeStyle;
    CLineGraphStyle m_axisStyle;
    CLineGraphStyle m_frameStyle;

private:
    enum class Trace { kLine, kSteps, kStepsFromRight };
    class PenInArea;
    struct Side;

    static bool IsSeries(int series) { return series >= 0 && series < kSeries; }
    CGraphDataCtrl* Find(int series) { return IsSeries(series) ? &m_aryGraph[static_cast<unsigned>(series)] : nullptr; }
    const CGraphDataCtrl* Find(int series) const {
        return IsSeries(series) ? &m_aryGraph[static_cast<unsigned>(series)] : nullptr;
    }
    template <class Step> int Change(int series, const Step& step);
    void ResetSeries(CGraphDataCtrl& series, int xLabel, int yLabel, int viewMode);

    qel::DataScale ScaleOf(const CGraphDataCtrl& series, bool isFromRight = false) const;
    bool IsFrameWide() const;
    void OutlineDraw(CDC* dc);
    void GridDraw(CDC* dc);       ///< within the area
    void GridLinesDraw(CDC* dc);  ///< within the current clip
    static CRect InclusiveArea(const CDC& dc, CRect area);
    Side SideOf(int viewMode) const;
    int TextDistance(int viewMode, int space) const;
    void DrawAxisValue(CDC* dc, const CAxisStyle& axis, SideUses& used, bool isMaximum, bool isFirst);
    static bool IsMaximumFirst(const CAxisStyle& axis, bool isReversed);
    int CurveDraw(CDC* dc, const CGraphDataCtrl& series, Trace trace);
    bool IsOfData() const { return m_nCoordinateMode == 0 || m_nCoordinateMode == 1; }
    CRect MarkBox(const POINT& center, int halfSize) const;
    int HalfSizeOnSurface(int size) const;
    template <class Set> void Record(const Set& set);
    void MarkShapeDraw(CDC* dc, const CRect& box, int shape);
};
