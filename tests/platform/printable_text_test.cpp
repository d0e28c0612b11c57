#include "qellib10/platform/text/printable_text.h"

#include "../support/test.h"

using namespace std::string_view_literals;

TEST(PrintableText, HasNoControlCharactersAndOnlyUtf8) {
    for (const auto& [text, shown, isUtf8] : Cases<std::string_view, std::string_view, bool>{
             {"", "", true},
             {"a\0\t\r\n\x1B[2J\x7F~"sv, "a?????[2J?~", true},
             {"\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0", "??????\xC2\xA0", true},
             {"\xC3\xA9\xE6\xB8\xA9\xF0\x9D\x84\x9E", "\xC3\xA9\xE6\xB8\xA9\xF0\x9D\x84\x9E", true},
             {"a\xE2\x80\xAE"
              "b\xE2\x80\xA8\xE2\x81\xA9",
              "a???b??????", true},                   // order reversed, end of a line
             {"\xEF\xBF\xBD", "\xEF\xBF\xBD", true},  // the replacement character itself
             {"a\x9B\xFF"
              "b",
              "a??b", false},
             {"\xC0\x9B\xE0\x80\x9B\xF0\x80\x80\x9B", "?????????", false},  // longer than needed
             {"\xED\xA0\x80\xF4\x90\x80\x80", "???????", false},            // a surrogate, and above U+10FFFF
             {"\xE6\xB8"
              "a\xF0\x9D\x84",
              "??a???", false},  // cut characters
         }) {
        EXPECT_EQ(qel::PrintableText(text), shown);
        EXPECT_EQ(qel::IsUtf8(text), isUtf8) << shown;
    }
}
