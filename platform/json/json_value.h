#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qellib10/platform/export.h"

namespace qel {

/// A JSON text (RFC 8259) as a tree. Numbers stay as they are written, so no digit is lost; members stay in their
/// order.
struct QELLIB10_INTERNAL_API JsonValue {
    enum class Kind { kNull, kBoolean, kNumber, kText, kList, kObject };

    static constexpr std::size_t kLongest = 64 << 20;  ///< bytes
    static constexpr std::size_t kDeepest = 64;        ///< lists and objects in each other
    static constexpr std::size_t kMostValues = 2'000'000;

    Kind kind = Kind::kNull;
    bool isTrue = false;
    std::string text;  ///< UTF-8; of a number its digits
    std::vector<JsonValue> items;
    std::vector<std::pair<std::string, JsonValue>> members;

    static JsonValue Boolean(bool value);
    static JsonValue Number(std::int64_t value);
    /// With the fewest digits that read back as the same; null where it is not finite.
    static JsonValue Number(double value);
    static JsonValue Text(std::string_view value);
    static JsonValue List();
    static JsonValue Object();

    /// Adds a member at the end, for objects that are being made.
    JsonValue& Set(std::string_view name, JsonValue value);
    /// The member; null if there is none or this is no object.
    const JsonValue* Find(std::string_view name) const;
    /// As a double; nothing where it is no number or too large.
    std::optional<double> Double() const;
    std::optional<std::int64_t> Integer() const;

    /// Two blanks per level, one member per line; ends with a line end.
    std::string Dump() const;
    /// @return nothing where the text is not JSON in UTF-8, has a name twice in an object, or is too long or too deep;
    /// @p error then says what and where
    static std::optional<JsonValue> Parse(std::string_view json, std::string& error);

    friend bool operator==(const JsonValue&, const JsonValue&) = default;
};

}  // namespace qel
