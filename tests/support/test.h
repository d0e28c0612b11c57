#pragma once

// What every test needs.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cases.h"
