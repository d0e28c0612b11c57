#include <ctime>

#include "../../tools/qel/csv_time.h"
#include "../support/test.h"

// A curve over time would have a step, or a part twice, where the clock was changed.
TEST(CsvTime, LocalTimesFollowTheChangesOfClocks) {
    const EnvironmentScope zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    ::tzset();
    for (const auto& [texts, hours, counts] : Cases<std::vector<const char*>, const char*, const char*>{
             {{"2026-03-29 01:30", "2026-03-29 02:30", "2026-03-29 03:30"}, "00:30 none 01:30", "1 0"},
             {{"2026-10-25 01:30", "2026-10-25 02:30:00.5", "2026-10-25 02:30:00.7", "2026-10-25 02:30:00.2",
               "2026-10-25 03:00"},
              "23:30 00:30 00:30 01:30 02:00",
              "0 3"},
             {{"2026-10-25 03:30", "2026-10-25 02:45", "2026-10-25 02:15", "2026-10-25 02:45", "2026-10-25 02:15"},
              "02:30 01:45 01:15 00:45 00:15",
              "0 4"},
             {{"2026-10-25T02:30+02", "2026-10-25T02:30+0100", "2026-10-25T02:30+01:00"}, "00:30 01:30 01:30", "0 0"},
             {{"2026-10-25T02:30+1", "2026-10-25T02:30+01:", "2026-02-30", "2026-03-29T02"},
              "none none none none",
              "0 0"},
         }) {
        tool::TimeReader reader(false);
        std::string read;
        for (const char* text : texts) {
            const auto time = reader.Read(text);
            const std::time_t seconds = time ? static_cast<std::time_t>(*time) : 0;
            char hour[8] = {};
            std::strftime(hour, sizeof hour, "%H:%M", std::gmtime(&seconds));
            read += (read.empty() ? "" : " ") + std::string(time ? hour : "none");
        }
        EXPECT_EQ(read, hours) << texts.front();
        EXPECT_EQ(std::to_string(reader.Skipped()) + ' ' + std::to_string(reader.Repeated()), counts) << texts.front();
    }
}
