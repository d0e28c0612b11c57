#include "qellib10/runtime/check_repeat_exec.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>

#include "../support/child_process.h"
#include "../support/shared_state.h"

TEST(CheckRepeatExec, TheFirstKeepsTheNameAsLongAsItLives) {
    const std::string name = NameOfOurOwn("instance");
    const auto ask = [](const std::string& asked) { return CCheckRepeatExec().CheckRepeatExecute(asked.c_str()); };
    std::optional<CCheckRepeatExec> instance(std::in_place);
    EXPECT_EQ(instance->CheckRepeatExecute(name.c_str()), 0);
    EXPECT_EQ(instance->CheckRepeatExecute(name.c_str()), 1);
    EXPECT_EQ(InChild([&] { return ask(name); }), 1);
    EXPECT_EQ(ask(name), 1);  // and closing what was opened took nothing away

    const CCheckRepeatExec copy(*instance);
    instance.reset();
    EXPECT_EQ(InChild([&] { return ask(name); }), 0);
    for (const char* bad : {"", "a\\b", ""}) EXPECT_EQ(ask(bad), 0);
}

TEST(CheckRepeatExec, AKilledInstanceLeavesNoMark) {
    const std::string name = NameOfOurOwn("killed");
    auto& isMarked = SharedWithChildren<std::atomic<bool>>();
    ChildProcess instance([&] {
        CCheckRepeatExec check;
        if (check.CheckRepeatExecute(name.c_str()) != 0) return 1;
        // A process made by this one does not have its mark.
        const ChildProcess bystander([&] {
            isMarked = true;
            return ::sleep(5);
        });
        return ::pause();
    });
    while (!isMarked) ::usleep(200);
    EXPECT_EQ(CCheckRepeatExec().CheckRepeatExecute(name.c_str()), 1);
    instance.Kill();
    EXPECT_EQ(CCheckRepeatExec().CheckRepeatExecute(name.c_str()), 0);
}
