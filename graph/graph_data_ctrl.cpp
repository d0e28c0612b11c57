#include "qellib10/graph/graph_data_ctrl.h"

CGraphDataCtrl::~CGraphDataCtrl() = default;
