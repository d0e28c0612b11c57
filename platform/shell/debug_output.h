#pragma once

#include "qellib10/platform/export.h"

/// Sends a line for developers to the debugger's output: to the hook below, else to what the environment's
/// QELLIB10_DEBUG_OUTPUT says (`stderr`, `syslog` or `none`). Without it, to the standard error output while a debugger
/// is attached, else nowhere. Errors are ignored. Safe from any thread.
/// @param text in the process's code page; null: nothing happens
QELLIB10_API void OutputDebugStringA(const char* text);

namespace qel {

using DebugOutputHook = void (*)(const char* text);

/// Sets who receives the texts of OutputDebugStringA from now on; null: as the environment says.
/// @return the former hook
QELLIB10_API DebugOutputHook SetDebugOutputHook(DebugOutputHook hook) noexcept;

}  // namespace qel
