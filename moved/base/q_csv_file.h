#pragma once

// Kept: applications include CQCSVFile by this path.
#include "qellib10/file/q_csv_file.h"
