#pragma once

#include <string>
#include <string_view>

// What a renewal record begins with in an archive; see CHistoryRenewInfo for the rest.
namespace qel {

inline constexpr std::string_view kRenewalTag = "HistoryRenewInfo";
inline constexpr std::string_view kRenewalVersion = "1.00";

/// Both as they are stored: each text after one byte with its length.
inline std::string RenewalHead() {
    std::string head;
    for (const std::string_view text : {kRenewalTag, kRenewalVersion}) {
        head += static_cast<char>(text.size());
        head += text;
    }
    return head;
}

}  // namespace qel
