#include "qellib10/graph/graph_data_ctrl.h"

CGraphDataCtrl::~CGraphDataCtrl() = default;

void CGraphDataCtrl::InitializeData() { std::vector<CGraphData>().swap(m_aryData); }
