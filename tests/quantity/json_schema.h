#pragma once

#include <algorithm>
#include <string>

#include "qellib10/platform/json/json_value.h"

/// What is wrong with @p value by @p schema, with its path; empty if nothing is. It knows type, enum, required,
/// properties without others, items and $ref below $defs: what our schemas are made of.
class JsonSchema {
public:
    explicit JsonSchema(const std::string& text) {
        std::string error;
        m_root = qel::JsonValue::Parse(text, error).value();
    }

    std::string Objection(const qel::JsonValue& value) const { return Against(m_root, value, ""); }

private:
    using Json = qel::JsonValue;

    std::string Against(const Json& schema, const Json& value, const std::string& path) const {
        if (const Json* const reference = schema.Find("$ref"))
            return Against(*m_root.Find("$defs")->Find(reference->text.substr(8)), value, path);
        const Json* const type = schema.Find("type");
        if (type != nullptr && !IsOfType(*type, value)) return path + " has another type";
        const Json* const words = schema.Find("enum");
        if (words != nullptr && std::ranges::find(words->items, value) == words->items.end())
            return path + " is no such word";
        if (const Json* const required = schema.Find("required"))
            for (const Json& name : required->items)
                if (value.Find(name.text) == nullptr) return path + '/' + name.text + " is missing";
        for (const auto& [name, member] : value.members) {
            const Json* const of = schema.Find("properties")->Find(name);
            if (of == nullptr) return path + '/' + name + " is not in the schema";
            if (const std::string objection = Against(*of, member, path + '/' + name); !objection.empty())
                return objection;
        }
        for (const Json& item : value.items)
            if (const std::string objection = Against(*schema.Find("items"), item, path + "/-"); !objection.empty())
                return objection;
        return {};
    }

    static bool IsOfType(const Json& type, const Json& value) {
        if (!type.items.empty())
            return std::ranges::any_of(type.items, [&](const Json& each) { return IsOfType(each, value); });
        switch (value.kind) {
            case Json::Kind::kNull:
                return type.text == "null";
            case Json::Kind::kBoolean:
                return type.text == "boolean";
            case Json::Kind::kNumber:
                return type.text == "number" || (type.text == "integer" && value.Integer());
            case Json::Kind::kText:
                return type.text == "string";
            case Json::Kind::kList:
                return type.text == "array";
            default:
                return type.text == "object";
        }
    }

    qel::JsonValue m_root;
};
