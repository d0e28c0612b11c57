#pragma once

#include <clocale>  // locale_t too, on this system

namespace qel {

/// The C locale, for calls that otherwise use the locale of the process.
/// @throws std::bad_alloc when the system cannot create it.
locale_t CLocale();

}  // namespace qel
