#include "qellib10/platform/json/json_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace qel {
namespace {

using Json = nlohmann::json;

// Builds the tree from what the parser meets. A call that returns false ends the parsing.
class Builder {
public:
    explicit Builder(std::string& error) : m_error(error) {}

    bool null() { return Add({}); }
    bool boolean(bool value) { return Add(JsonValue::Boolean(value)); }
    bool number_integer(Json::number_integer_t value) { return Add(JsonValue::Number(std::int64_t{value})); }
    bool number_unsigned(Json::number_unsigned_t value) { return AddNumber(std::to_string(value)); }
    // The parser has put the decimal point of the locale into it.
    bool number_float(Json::number_float_t /*value*/, std::string written) {
        const std::size_t point = written.find_first_not_of("+-0123456789eE");
        if (point != std::string::npos) written[point] = '.';
        return AddNumber(std::move(written));
    }
    bool string(std::string& value) { return Add(JsonValue::Text(value)); }
    bool binary(Json::binary_t& /*value*/) { return false; }
    bool start_object(std::size_t /*count*/) { return Open(JsonValue::Kind::kObject); }
    bool end_object() { return Close(); }
    bool start_array(std::size_t /*count*/) { return Open(JsonValue::Kind::kList); }
    bool end_array() { return Close(); }

    bool key(std::string& name) {
        if (!m_names.back().insert(name).second) return Refuse("the name \"" + name + "\" is there twice");
        m_open.back()->members.emplace_back(std::move(name), JsonValue{});
        return Count();
    }

    bool parse_error(std::size_t position, const std::string& /*token*/, const Json::exception& failure) {
        // Its own sentence after "[json.exception...]".
        const std::string_view sentence = failure.what();
        const std::size_t start = sentence.find("] ");
        m_error = std::string(start != std::string_view::npos ? sentence.substr(start + 2) : sentence) + " (byte " +
                  std::to_string(position) + ')';
        return false;
    }

    JsonValue Whole() { return std::move(m_root); }

private:
    bool Refuse(std::string error) {
        m_error = std::move(error);
        return false;
    }

    // Where the next value goes; what is open does not move while something below it is.
    JsonValue& Place() {
        if (m_open.empty()) return m_root;
        JsonValue& open = *m_open.back();
        if (open.kind == JsonValue::Kind::kObject) return open.members.back().second;
        return open.items.emplace_back();
    }

    // Each takes a few hundred bytes of memory for as few as two of the text.
    bool Count() { return ++m_count <= JsonValue::kMostValues || Refuse("there are too many values"); }

    bool Add(JsonValue value) {
        Place() = std::move(value);
        return Count();
    }

    bool AddNumber(std::string digits) {
        JsonValue number;
        number.kind = JsonValue::Kind::kNumber;
        number.text = std::move(digits);
        return Add(std::move(number));
    }

    bool Open(JsonValue::Kind kind) {
        if (m_open.size() == JsonValue::kDeepest) return Refuse("lists and objects are nested too deeply");
        JsonValue& place = Place();
        place.kind = kind;
        m_open.push_back(&place);
        m_names.emplace_back();
        return Count();
    }

    bool Close() {
        m_open.pop_back();
        m_names.pop_back();
        return true;
    }

    std::string& m_error;
    JsonValue m_root;
    std::vector<JsonValue*> m_open;
    std::vector<std::unordered_set<std::string>> m_names;  // of the open objects
    std::size_t m_count = 0;
};

void Write(const JsonValue& value, std::size_t level, std::string& out);

// What is not UTF-8 becomes U+FFFD.
void WriteText(std::string_view text, std::string& out) {
    out += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <class Elements, class WriteElement> void WriteEach(const Elements& elements, char first, char last,
                                                             std::size_t level, std::string& out, WriteElement write) {
    if (elements.empty()) {
        out += {first, last};
        return;
    }
    out += first;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        out += (i > 0 ? ",\n" : "\n") + std::string(2 * (level + 1), ' ');
        write(elements[i]);
    }
    out += '\n' + std::string(2 * level, ' ') + last;
}

void Write(const JsonValue& value, std::size_t level, std::string& out) {
    switch (value.kind) {
        case JsonValue::Kind::kNull:
            out += "null";
            return;
        case JsonValue::Kind::kBoolean:
            out += value.isTrue ? "true" : "false";
            return;
        case JsonValue::Kind::kNumber:
            out += value.text;
            return;
        case JsonValue::Kind::kText:
            WriteText(value.text, out);
            return;
        case JsonValue::Kind::kList:
            WriteEach(value.items, '[', ']', level, out, [&](const auto& item) { Write(item, level + 1, out); });
            return;
        case JsonValue::Kind::kObject:
            WriteEach(value.members, '{', '}', level, out, [&](const auto& member) {
                WriteText(member.first, out);
                out += ": ";
                Write(member.second, level + 1, out);
            });
            return;
    }
}

template <class Number> JsonValue NumberOf(Number value) {
    std::array<char, 32> digits;
    JsonValue number;
    number.kind = JsonValue::Kind::kNumber;
    number.text = {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
    return number;
}

template <class Number> std::optional<Number> NumberIn(const JsonValue& value) {
    Number number = {};
    const char *const first = value.text.data(), *const last = first + value.text.size();
    const bool isNumber = value.kind == JsonValue::Kind::kNumber;
    const auto [end, error] = std::from_chars(first, last, number);
    return isNumber && error == std::errc() && end == last ? std::optional(number) : std::nullopt;
}

}  // namespace

JsonValue JsonValue::Boolean(bool value) {
    JsonValue boolean;
    boolean.kind = Kind::kBoolean;
    boolean.isTrue = value;
    return boolean;
}

JsonValue JsonValue::Number(std::int64_t value) { return NumberOf(value); }
// Without a sign of zero, which readers of JSON do not keep.
JsonValue JsonValue::Number(double value) { return std::isfinite(value) ? NumberOf(value + 0.0) : JsonValue{}; }

JsonValue JsonValue::Text(std::string_view value) {
    JsonValue result;
    result.kind = Kind::kText;
    result.text = value;
    return result;
}

JsonValue JsonValue::List() {
    JsonValue list;
    list.kind = Kind::kList;
    return list;
}

JsonValue JsonValue::Object() {
    JsonValue object;
    object.kind = Kind::kObject;
    return object;
}

JsonValue& JsonValue::Set(std::string_view name, JsonValue value) {
    members.emplace_back(name, std::move(value));
    return *this;
}

const JsonValue* JsonValue::Find(std::string_view name) const {
    const auto found = std::ranges::find_if(members, [&](const auto& member) { return member.first == name; });
    return found != members.end() ? &found->second : nullptr;
}

std::optional<double> JsonValue::Double() const { return NumberIn<double>(*this); }
std::optional<std::int64_t> JsonValue::Integer() const { return NumberIn<std::int64_t>(*this); }

std::string JsonValue::Dump() const {
    std::string out;
    Write(*this, 0, out);
    return out + '\n';
}

std::optional<JsonValue> JsonValue::Parse(std::string_view json, std::string& error) {
    if (json.size() > kLongest) {
        error = "the text is too long";
        return {};
    }
    Builder builder(error);
    if (!Json::sax_parse(json, &builder)) return {};
    return builder.Whole();
}

}  // namespace qel
