#pragma once

#include <string>

#include "calculation.h"
#include "csv_table.h"
#include "end_point.h"
#include "settings.h"

namespace titration {

/// What was measured and what came out of it.
struct Determination {
    std::string settingsFile;
    Settings settings;
    std::string dataFile;
    Curve curve;
    EndPoint endPoint{};
    Result result;
};

}  // namespace titration
