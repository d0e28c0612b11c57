#pragma once

// What every test needs.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "cases.h"
#include "code_page_scope.h"
#include "environment_scope.h"
#include "line.h"
#include "temp_folder.h"
#include "words.h"
