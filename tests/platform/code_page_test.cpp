#include "qellib10/platform/text/code_page.h"

#include <cstdint>
#include <exception>

#include "../support/run_at_once.h"
#include "../support/test.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/text/converter.h"
#include "qellib10/platform/text/multibyte.h"

TEST(CodePage, MapsTheWholeJapaneseTableBothWays) {
    const CodePageScope japanese(932);
    int mapped = 0;
    int notBack = 0;
    std::uint64_t digest = 0xCBF29CE484222325;  // FNV-1a over each sequence and its UTF-8
    for (int first = 0; first < 256; ++first) {
        const bool isLead = qel::IsLeadByte(static_cast<unsigned char>(first));
        for (int trail = 0; trail < (isLead ? 256 : 1); ++trail) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(trail)};
            const std::string sequence = bytes.substr(0, isLead ? 2 : 1);
            const std::u16string text = qel::ToUtf16(sequence);
            if (text.size() != 1 || (text == u"\u30FB" && sequence != "\x81\x45")) continue;  // no character
            ++mapped;
            notBack += qel::FromUtf16(text) != sequence;
            for (const unsigned char byte : sequence + qel::ToUtf8(sequence)) digest = (digest ^ byte) * 0x100000001B3;
        }
    }
    EXPECT_EQ(mapped, 9795 + 5);
    EXPECT_EQ(notBack, 398);                   // duplicates; the number that the platform documents
    EXPECT_EQ(digest, 0x8DD85ABC8ACE3D4DULL);  // of an independent codec made from the published table
}

TEST(CodePage, WritesThePlatformsChoiceAmongSeveralCodes) {
    const CodePageScope japanese(932);
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"\x87\x90\x87\x91\x87\x92\x87\x9C", "\x81\xE0\x81\xDF\x81\xE7\x81\xBE"},  // JIS before NEC
        {"\xFA\x4A\xFA\x53\xFA\x58", "\x87\x54\x87\x5D\x87\x8A"},                  // NEC before IBM
        {"\xED\x40\xEE\xEC\xEE\xEF\xEE\xFC", "\xFA\x5C\xFC\x4B\xFA\x40\xFA\x57"},  // IBM before NEC's copies of it
        {"\xFA\x54\xEE\xF9\xFA\x5B", "\x81\xCA\x81\xCA\x81\xE6"},
    };
    for (const auto& [bytes, written] : cases) EXPECT_EQ(qel::FromUtf16(qel::ToUtf16(bytes)), written);
}

TEST(CodePage, MapsTheBytesThatConvertersLeaveOut) {
    for (const auto& [page, bytes, characters] : Cases<UINT, const char*, std::u16string_view>{
             {932, "\x80\xA0\xFD\xFE\xFF", u"\x0080\xF8F0\xF8F1\xF8F2\xF8F3"},
             {1252, "\x81\x8D\x8F\x90\x9D\x80\xE4", u"\x0081\x008D\x008F\x0090\x009D\u20AC\x00E4"},
         }) {
        const CodePageScope scope(page);
        EXPECT_EQ(qel::ToUtf16(bytes), characters);
        EXPECT_EQ(qel::FromUtf16(characters), bytes);
    }
}

TEST(CodePage, WritesTheBestFitOfCharactersMissingInThePage) {
    std::u16string latin;
    for (char16_t character = 0xA1; character <= 0xFF; ++character) latin += character;
    // Those with a code of their own are § ¨ ° ± ´ ¶ × ÷; nothing is close to ¤ ¼ ½ ¾.
    const char* const fitted =
        "!\x81\x91\x81\x92?\\|\x81\x98\x81\x4E"
        "ca\x81\xE1\x81\xCA-R\x81\x50\x81\x8B\x81\x7D"
        "23\x81\x4C\x83\xCA\x81\xF7"
        "\x81\x45\x81\x43"
        "1o\x81\xE2????AAAAAAACEEEEIIIIDNOOOOO\x81\x7EOUUUUYTsaaaaaaaceeeeiiiidnooooo\x81\x80ouuuuyty";
    for (const auto& [page, text, expected] : Cases<UINT, std::u16string_view, const char*>{
             {932, latin, fitted},
             {932, u"\u3094\u2014\u2212", "\x83\x94\x81\x5C\x81\x7C"},
             {932, u"\u20AC\U0001F600\xD800\uFFFD", "?????"},  // one for each unit
             {1252, u"\u03BC\uFF21\uFF5E\u0141\u2212\u2113",
              "\xB5"
              "A~L-l"},
             {1252, u"\u221E\u2264\u30BD\U0001F600", "?????"},
             {65001, u"\u20AC\U0001F600\xDC00", "\u20AC\U0001F600\uFFFD"},
         }) {
        const CodePageScope scope(page);
        EXPECT_EQ(qel::FromUtf16(text), expected);
    }
}

TEST(CodePage, KeepsEveryByteThatIsNoPartOfABrokenCharacter) {
    for (const auto& [page, bytes, utf8] : Cases<UINT, std::string_view, std::string>{
             {932, "\x83\"x\x83\r\n", "\u30FB\"x\u30FB\r\n"},  // no trail byte: both are characters
             {932, "\x85\x40|\x83\x7F", "\u30FB|\u30FB\x7F"},  // possible but unassigned: one for both
             {932, "\x83\x83\x5C\x83", "\u30E3\\\u30FB"},
             {65001, "\xE2\x82(\xC0\x80\xED\xA0\x80", "\uFFFD(\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
             {65001, "\xF4\x90\x80\x80\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
         }) {
        const CodePageScope scope(page);
        EXPECT_EQ(qel::ToUtf8(bytes), utf8);
        EXPECT_EQ(page == 65001 ? qel::FromUtf8(bytes) : utf8, utf8);
    }
}

TEST(CodePage, WritesReferencesWhereNothingMayBeLost) {
    const char* const text = "a\u00E4\u2014\u30BD\U0001F600&";
    const CodePageScope japanese(932);
    EXPECT_EQ(qel::FromUtf8WithReferences(text), "a&#228;&#8212;\x83\x5C&#128512;&");
    const CodePageScope utf8(65001);
    EXPECT_EQ(qel::FromUtf8WithReferences(text), text);
}

// Children were forked while the first thread to convert was reading the table, and waited for it for ever.
TEST(CodePage, ConvertsInThreadsAndForkedChildrenFromTheFirstUseOn) {
    const CodePageScope japanese(932);
    const auto convert = [](int i) {
        if (i % 2 != 0) ::alarm(10);  // kills a child that hangs
        int wrong = 0;
        for (int round = 0; round < 200; ++round) wrong += qel::FromUtf8(qel::ToUtf8("\x95\x5C|")) != "\x95\x5C|";
        return wrong;
    };
    EXPECT_EQ(RunAtOnce(16, convert), 0);
}

TEST(Converter, ThrowsWithoutAConverterAndReturnsNothingForBadText) {
    try {
        const qel::Converter unknown("UTF-8", "NO-SUCH-PAGE");
        FAIL() << "opened";
    } catch (const std::exception& error) {
        EXPECT_NE(std::string(error.what()).find("NO-SUCH-PAGE"), std::string::npos);
        EXPECT_EQ(dynamic_cast<const qel::DataError*>(&error), nullptr);  // not taken for damaged data
    }
    qel::Converter shifting("ISO-2022-JP", "UTF-8");
    EXPECT_EQ(shifting.Convert("\xFF"), std::nullopt);
    EXPECT_EQ(shifting.Convert("\u30BD"), "\x1B$B%=\x1B(B");  // starts again and goes back to ASCII at the end
}
