#include "qellib10/graph/graph_data_ctrl.h"

#include <utility>

#include "qellib10/graph/point_list.h"

CGraphDataCtrl::CGraphDataCtrl() : m_aryData(std::make_unique<qel::PointList>()) {}

CGraphDataCtrl::CGraphDataCtrl(const CGraphDataCtrl& other)
    : m_xAxis(other.m_xAxis),
      m_yAxis(other.m_yAxis),
      m_nViewMode(other.m_nViewMode),
      m_lineStyle(other.m_lineStyle),
      m_barStyle(other.m_barStyle),
      m_aryData(std::make_unique<qel::PointList>(*other.m_aryData)),
      m_nPlotflg(other.m_nPlotflg) {}

CGraphDataCtrl& CGraphDataCtrl::operator=(const CGraphDataCtrl& other) {
    auto points = std::make_unique<qel::PointList>(*other.m_aryData);
    m_xAxis = other.m_xAxis;
    m_yAxis = other.m_yAxis;
    m_nViewMode = other.m_nViewMode;
    m_lineStyle = other.m_lineStyle;
    m_barStyle = other.m_barStyle;
    m_aryData = std::move(points);
    m_nPlotflg = other.m_nPlotflg;
    return *this;
}

CGraphDataCtrl::~CGraphDataCtrl() = default;

void CGraphDataCtrl::AddData(const CGraphData& data) { m_aryData->Add(data); }

void CGraphDataCtrl::InitializeData() { m_aryData->Clear(); }

std::span<const CGraphData> CGraphDataCtrl::GetData() const { return m_aryData->Points(); }
