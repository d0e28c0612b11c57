#pragma once

#include <tuple>
#include <vector>

/// The rows of a test's table, for `for (const auto& [x, expected] : cases)`.
template <typename... Fields> using Cases = std::vector<std::tuple<Fields...>>;
