#pragma once

#include <string_view>

namespace qel {

/// Whether an SI prefix before a unit multiplies it: "g/L" and "Pa·s" become "kg/L" and "mPa·s". "m²" and "s⁻¹" do not,
/// since a prefix belongs to what is raised to a power; "mV" and "kg" have one already, and "°C", "%" and an empty
/// unit, which would read as metres, take none.
bool TakesPrefix(std::string_view unit);

}  // namespace qel
