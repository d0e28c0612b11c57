#include "qellib10/platform/json/json_value.h"

#include "../support/test.h"

using qel::JsonValue;

TEST(JsonValue, IsWrittenAsItWasRead) {
    const std::string text =
        "{\n  \"a\": 1.20e-300,\n  \"b\": [\n    -7,\n    18446744073709551615,\n    true,\n    null\n  ],\n"
        "  \"\": {},\n  \"\\\"\": \"試料\\n\",\n  \"e\": []\n}\n";
    std::string error;
    const std::optional<JsonValue> value = JsonValue::Parse(text, error);
    ASSERT_TRUE(value) << error;
    EXPECT_EQ(value->Dump(), text);
    EXPECT_EQ(value->Find("a")->Double(), 1.2e-300);
    EXPECT_EQ(value->Find("b")->items[0].Integer(), -7);
    EXPECT_FALSE(value->Find("b")->items[1].Integer());
    EXPECT_EQ(value->Find("c"), nullptr);
}

TEST(JsonValue, BadTextsAreRefusedWithTheirPlace) {
    for (const std::string& text : {std::string(), std::string("{"), std::string("{\"a\":1,\"a\":2}"),
                                    std::string("[1,]"), std::string("01"), std::string("\"\xFF\""), std::string("NaN"),
                                    std::string("1 2"), std::string(100, '[') + std::string(100, ']')}) {
        std::string error;
        EXPECT_FALSE(JsonValue::Parse(text, error)) << text;
        EXPECT_NE(error, "") << text;
    }
}
