#include "demo/method/uncertainties.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"
#include "demo/support/number.h"

namespace titration {
namespace {

using Component = qel::UncertaintyComponent;

constexpr std::string_view kBlanks = " \t", kOfCurve = "curve";

// Takes the text up to @p end, or all of it, without blanks around it.
std::string_view Take(std::string_view& rest, std::string_view end) {
    const std::size_t at = std::min(rest.find(end), rest.size());
    const std::string_view taken = qel::Trimmed(rest.substr(0, at), kBlanks);
    rest = qel::Trimmed(rest.substr(std::min(at + end.size(), rest.size())), kBlanks);
    return taken;
}

std::optional<Component> ComponentOf(std::string_view text) {
    const std::string_view statement = Take(text, ", "), source = text;
    std::string_view rest = statement;
    const std::string_view kind = Take(rest, " ");
    const std::optional<double> number = qel::ReadNumber(Take(rest, " "));
    if (!number) return {};
    const std::string_view letter = Take(rest, " ");
    if (kind == "certificate" && letter == "k") {
        const std::optional<double> factor = qel::ReadNumber(rest);
        return factor ? Component::Certificate(*number, *factor, source) : std::nullopt;
    }
    if (kind == "readings" && letter == "n") {
        const std::optional<int> count = ParseWholeNumber(rest);
        return count ? Component::Readings(*number, static_cast<std::size_t>(*count), source) : std::nullopt;
    }
    if (!letter.empty()) return {};
    if (kind == "standard") return Component::Standard(*number, source);
    if (kind == "rectangular") return Component::Rectangular(*number, source);
    if (kind == "triangular") return Component::Triangular(*number, source);
    return {};
}

}  // namespace

Uncertainties ReadUncertainties(const std::string& text) {
    Uncertainties read;
    std::string_view rest = text;
    do {
        const std::string_view one = Take(rest, ";");
        if (one == kOfCurve && !std::exchange(read.hasThatOfCurve, true)) continue;
        const std::optional<Component> component = ComponentOf(one);
        if (!component)
            throw Failure("\"" + std::string(one) +
                          "\" is not an uncertainty; expected one like \"rectangular 0.03, burette\", with standard, "
                          "rectangular, triangular, certificate (0.002 k 2) or readings (0.012 n 10), or once "
                          "\"curve\" for the end point");
        read.components.push_back(*component);
    } while (!rest.empty());
    return read;
}

}  // namespace titration
