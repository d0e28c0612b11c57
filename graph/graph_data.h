#pragma once

/// One measured point. The points of a series are next to each other in memory, 16 bytes each.
class CGraphData {
public:
    CGraphData() = default;  ///< 0, 0
    CGraphData(double x, double y) : m_dX(x), m_dY(y) {}

    void InitializeData() { *this = CGraphData(); }
    void SetData(double x, double y) { *this = CGraphData(x, y); }

    void SetXData(const double& x) { m_dX = x; }
    void SetYData(const double& y) { m_dY = y; }
    const double& GetXData() const { return m_dX; }
    const double& GetYData() const { return m_dY; }

private:
    double m_dX = 0.0;
    double m_dY = 0.0;
};
