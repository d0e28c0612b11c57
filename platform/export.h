#pragma once

/// Marks what a shared library exports; everything else is hidden.
#define QELLIB10_API __attribute__((visibility("default")))
/// Marks what a library exports only for our other libraries of the same version: its header is not installed.
#define QELLIB10_INTERNAL_API __attribute__((visibility("default")))
