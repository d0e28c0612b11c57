#include "verified.h"

TEST_F(Verified, DamageOfTheLatestResultIsFound) {
    ExpectFound({
        {"method.xml", Flip(20), "FAILED: method.xml: "},
        {"variables.qel", Flip(40), "FAILED: variables.qel: not sealed, or changed since"},
        {"result.csv", FlipIn("49.6"), "FAILED: result.csv: is not the table of that result"},
        {"report.txt", FlipIn("37 points"), "FAILED: report.txt: has "},
    });
}

TEST_F(Verified, DamageOfAnEarlierResultIsFound) {
    ExpectFound({
        {"method-1.xml", nullptr, "FAILED: version 1 in results.hcf: method-1.xml: file not found"},
        {"trace-1.json", nullptr, "FAILED: trace-1.json: file not found"},
        {"trace-1.json", Cut(100), "FAILED: trace-1.json: "},
        {"curve-1.csv", Flip(300), "FAILED: curve-1.csv: has "},
        {"version-1/variables.qel", Flip(100), "FAILED: version-1/variables.qel: has "},
        {"version-1/variables.qel", nullptr, "FAILED: version-1/variables.qel: file not found"},
    });
}
