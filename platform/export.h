#pragma once

/// Marks what a shared library exports; everything else is hidden.
#define QELLIB10_API __attribute__((visibility("default")))
/// Marks what a library exports for our others alone, which have its version: no header of it is installed.
#define QELLIB10_INTERNAL_API __attribute__((visibility("default")))
