#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <new>
#include <string>

/// A new object that forked children of the test share with it; it goes with the last of them.
template <class State> State& SharedWithChildren() {
    void* place = ::mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) throw std::bad_alloc();
    return *new (place) State();
}

/// A name of an object that no other test program running beside this one has.
inline std::string NameOfOurOwn(const std::string& name) { return "test" + std::to_string(::getpid()) + "-" + name; }
