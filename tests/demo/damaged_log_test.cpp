#include "verified.h"

TEST_F(Verified, DamageOfTheLogIsFound) {
    const Damage withoutTheSecond = [](std::string& log) { log.resize(log.rfind('[', log.rfind("registered"))); };
    ExpectFound({
        {"titration.log", FlipIn("49.6"),
         "FAILED: version 1 in results.hcf: has ACIDITY = 49.6 g/L, and titration.log ACIDITY = 59.6 g/L"},
        {"titration.log", Cut(200), "FAILED: titration.log: its last line is cut"},
        {"titration.log", withoutTheSecond, "FAILED: titration.log: mentions 1 version, and there are 2"},
        {"titration.log", FlipIn("2"), "is earlier than the one before"},
        {"titration.log", [](std::string& log) { --log.at(1); }, "FAILED: titration.log: starts with "},
        {"titration.log", [](std::string& log) { log.erase(0, log.find('[', 1)); },
         "FAILED: titration.log: starts with "},
        {"titration.log", FlipIn("previewed"), "FAILED: page-1.png: titration.log does not mention it"},
        {"titration.log", FlipIn("printed"), "FAILED: Titration reports.pdf: titration.log does not mention it"},
    });
}
