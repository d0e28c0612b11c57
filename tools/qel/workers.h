#pragma once

#include <cstddef>
#include <functional>

namespace tool {

/// Processors of this machine, at least 1.
unsigned Processors();

/// Calls @p work for each number below @p count, in up to @p jobs threads; a terminal shows how far it is.
void ForEachAtOnce(std::size_t count, unsigned jobs, const std::function<void(std::size_t number)>& work);

}  // namespace tool
