#include "verified.h"

TEST_F(Verified, DamageOfTheCabinetIsFound) {
    ExpectFound({
        {"results.hcf", Flip(30), "FAILED: results.hcf: a damaged cabinet header"},
        {"results.hcf", Append("x"), "FAILED: results.hcf: has 1 byte after the last version"},
        {"results.hcf", Flip(100), "FAILED: version 1 in results.hcf: the version's data are changed"},
    });
}

TEST_F(Verified, DamageOfRecordsAndUsersIsFound) {
    ExpectFound({
        {"renewals.qel", Flip(130), "FAILED: renewals.qel: has "},
        {"renewals.qel", FlipIn("demo"), "FAILED: users.db: has no user \"eemo\", who registered a version"},
        {"users.db", Flip(20), "FAILED: users.db: "},
        {"users.db", Flip(24), "FAILED: users.db: has "},  // the number of its changes
        {"users.db", nullptr, "FAILED: users.db: unable to open"},
    });
}
