#pragma once

// What the object preloaded into a test program (failing_calls.cpp) can do to it. A program finds them by dlsym.
enum class CallFailure { kEio, kEnospc, kEintr, kShort };

extern "C" {
/// From now on the @p number-th call fails, of those that can fail so, once. 0: none.
void FailCall(CallFailure failure, int number);
/// The same, and every later one that can fail so fails too.
void FailCallsFrom(CallFailure failure, int number);
/// How many calls are left until one fails; 0 once it has.
int CallsLeft();
/// From now on @p watcher is called after each call that may have changed what the disk holds, with -1, and after
/// each that has flushed a file or a folder, with its descriptor. Null: no more.
void WatchDisk(void (*watcher)(int flushed));
}
