#pragma once

#include <string>

#include "calculation.h"
#include "csv_table.h"
#include "end_point.h"
#include "settings.h"

namespace titration {

/// What was measured and what came out of it, one fact a line.
std::string Report(const std::string& settingsFile, const Settings& settings, const std::string& dataFile,
                   const Curve& curve, const EndPoint& endPoint, const Result& result);

}  // namespace titration
