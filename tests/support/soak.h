#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

// Tests that try the same thing many times, at moments or sizes that chance chooses. scripts/soak runs them again and
// again, each time with another seed, and adds up what they have tried.

inline int NumberFromEnvironment(const char* name, int usual) {
    const char* const number = std::getenv(name);
    return number != nullptr ? std::atoi(number) : usual;
}

/// How often a test tries: as often as is usual for it, or as QELLIB10_SOAK_COUNT says.
inline int SoakCount(int usual) { return NumberFromEnvironment("QELLIB10_SOAK_COUNT", usual); }

/// What a test's random numbers start from: 1, or QELLIB10_SOAK_SEED.
inline unsigned SoakSeed() { return static_cast<unsigned>(NumberFromEnvironment("QELLIB10_SOAK_SEED", 1)); }

/// Adds to what the running test has tried, for the report.
inline void Tried(const std::string& what, int count = 1) {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    if (test == nullptr) return;  // between tests
    for (int i = 0; i < test->result()->test_property_count(); ++i) {
        const testing::TestProperty& known = test->result()->GetTestProperty(i);
        if (known.key() == what) count += std::atoi(known.value());
    }
    testing::Test::RecordProperty(what, count);
}
