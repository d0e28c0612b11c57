#pragma once

// What the object preloaded into a test program (failing_calls.cpp) can do to it. A program finds both by dlsym.
enum class CallFailure { kEio, kEnospc, kEintr, kShort };

extern "C" {
/// From now on the @p number-th call fails, of those that can fail so, once. 0: none.
void FailCall(CallFailure failure, int number);
/// How many calls are left until one fails; 0 once it has.
int CallsLeft();
}
