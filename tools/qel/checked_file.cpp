#include "checked_file.h"

namespace tool {

Json FileJson(const CheckedFile& file) {
    const FileReport& report = file.report;
    Json json{{"file", file.path},
              {"finding", NameOf(report.finding)},
              {"status", static_cast<int>(report.finding)},
              {"kind", report.kind},
              {"sealed", report.isSealed},
              {"guid", report.guid},
              {"sealVersion", report.sealVersion},
              {"sealedAs", report.sealedAs},
              {"size", report.size ? Json(*report.size) : Json(nullptr)},
              {"versions", Json::array()},
              {"detail", report.detail}};
    for (const DamagedVersion& version : report.damaged)
        json["versions"].push_back({{"number", version.number}, {"byte", version.byte}, {"size", version.size}});
    return json;
}

}  // namespace tool
