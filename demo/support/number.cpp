#include "demo/support/number.h"

#include <qellib10/qellib10.h>

namespace titration {

std::optional<int> ParseWholeNumber(std::string_view text) {
    const auto number = qel::ReadWholeNumber<int>(qel::Trimmed(text));
    return number && *number >= 0 ? number : std::nullopt;
}

std::string Counted(long long count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace titration
