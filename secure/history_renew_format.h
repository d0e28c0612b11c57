#pragma once

#include <string_view>

// What a renewal record begins with in an archive; see CHistoryRenewInfo for the rest.
namespace qel {

inline constexpr std::string_view kRenewalTag = "HistoryRenewInfo";
inline constexpr std::string_view kRenewalVersion = "1.00";

}  // namespace qel
