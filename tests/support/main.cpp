#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef __SANITIZE_THREAD__
// Children that are forked beside living threads end without having joined them.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() { return "report_thread_leaks=0"; }
#endif

// The entry of every test program. Each program runs a second time with QELLIB10_TEST_LOCALE naming a locale whose
// decimal sign is a comma: no text, number or file of ours may follow it.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (const char* name = std::getenv("QELLIB10_TEST_LOCALE")) {
        if (std::setlocale(LC_ALL, name) == nullptr || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
            std::fprintf(stderr, "%s is not a locale with a decimal comma\n", name);
            return 2;
        }
    }
    return RUN_ALL_TESTS();
}
