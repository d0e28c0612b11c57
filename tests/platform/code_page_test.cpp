#include "qellib10/platform/text/code_page.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <thread>
#include <vector>

#include "../support/code_page_scope.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/text/converter.h"
#include "qellib10/platform/text/multibyte.h"

using namespace std::string_literals;

namespace {

unsigned CodeOf(const std::string& bytes) {
    unsigned code = 0;
    for (const char byte : bytes) code = code * 256 + static_cast<unsigned char>(byte);
    return code;
}

// FNV-1a over 16-bit values, high byte first.
class Digest {
public:
    void Add(unsigned value) {
        for (const unsigned byte : {value >> 8, value & 0xFF}) m_hash = (m_hash ^ byte) * 0x100000001B3;
    }
    std::uint64_t Value() const { return m_hash; }

private:
    std::uint64_t m_hash = 0xCBF29CE484222325;
};

}  // namespace

TEST(CodePage, MapsTheWholeJapaneseTableBothWays) {
    const CodePageScope japanese(932);
    Digest digest;
    int mapped = 0;
    int notBack = 0;
    const auto visit = [&](const std::string& bytes) {
        const std::u16string text = qel::ToUtf16(bytes);
        if (text.size() != 1 || (text == u"\u30FB" && bytes != "\x81\x45"))
            return;  // U+30FB marks what is no character
        const std::string back = qel::FromUtf16(text);
        ++mapped;
        notBack += back != bytes;
        digest.Add(CodeOf(bytes));
        digest.Add(text[0]);
        EXPECT_EQ(qel::FromUtf8(qel::ToUtf8(bytes)), back);
    };
    for (int first = 0; first < 256; ++first) {
        const char lead = static_cast<char>(first);
        if (!qel::IsLeadByte(static_cast<unsigned char>(first))) {
            visit({lead});
            continue;
        }
        for (int trail = 0; trail < 256; ++trail) visit({lead, static_cast<char>(trail)});
    }
    EXPECT_EQ(mapped, 9795 + 5);
    EXPECT_EQ(notBack, 398);                           // duplicates; the number that the platform documents
    EXPECT_EQ(digest.Value(), 0xFD00D9EE443554FBULL);  // of an independent codec made from the published table
}

TEST(CodePage, WritesThePlatformsChoiceAmongSeveralCodes) {
    const CodePageScope japanese(932);
    struct Case {
        const char *bytes, *written;
    };
    for (const Case& c :
         {Case{"\x87\x90\x87\x91\x87\x92\x87\x9C", "\x81\xE0\x81\xDF\x81\xE7\x81\xBE"},  // JIS before NEC
          Case{"\xFA\x4A\xFA\x53\xFA\x58", "\x87\x54\x87\x5D\x87\x8A"},                  // NEC before IBM
          Case{"\xED\x40\xEE\xEC\xEE\xEF\xEE\xFC", "\xFA\x5C\xFC\x4B\xFA\x40\xFA\x57"},  // IBM first
          Case{"\xFA\x54\xEE\xF9\xFA\x5B", "\x81\xCA\x81\xCA\x81\xE6"}}) {
        EXPECT_EQ(qel::FromUtf16(qel::ToUtf16(c.bytes)), c.written);
    }
}

TEST(CodePage, MapsTheBytesThatConvertersLeaveOut) {
    struct Case {
        UINT page;
        const char* bytes;
        std::u16string_view characters;
    };
    for (const Case& c : {Case{932, "\x80\xA0\xFD\xFE\xFF", u"\x0080\xF8F0\xF8F1\xF8F2\xF8F3"},
                          Case{1252, "\x81\x8D\x8F\x90\x9D\x80\xE4", u"\x0081\x008D\x008F\x0090\x009D\u20AC\x00E4"}}) {
        SCOPED_TRACE(c.page);
        const CodePageScope page(c.page);
        EXPECT_EQ(qel::ToUtf16(c.bytes), c.characters);
        EXPECT_EQ(qel::FromUtf16(c.characters), c.bytes);
    }
}

TEST(CodePage, WritesTheBestFitOfWhatThePageLacks) {
    std::u16string latin;
    for (char16_t character = 0xA1; character <= 0xFF; ++character) latin += character;
    // Those with a code of their own are § ¨ ° ± ´ ¶ × ÷; nothing is close to ¤ ¼ ½ ¾.
    const char* const fitted =
        "!\x81\x91\x81\x92?\\|\x81\x98\x81\x4E"
        "ca\x81\xE1\x81\xCA-R\x81\x50\x81\x8B\x81\x7D"
        "23\x81\x4C\x83\xCA\x81\xF7"
        "\x81\x45\x81\x43"
        "1o\x81\xE2????AAAAAAACEEEEIIIIDNOOOOO\x81\x7EOUUUUYTsaaaaaaaceeeeiiiidnooooo\x81\x80ouuuuyty";
    struct Case {
        UINT page;
        std::u16string_view text;
        std::string_view expected;
    };
    for (const Case& c : {Case{932, latin, fitted}, Case{932, u"\u3094\u2014\u2212", "\x83\x94\x81\x5C\x81\x7C"},
                          Case{932, u"\u20AC\U0001F600\xD800\uFFFD", "?????"},  // ? for each unit
                          Case{1252, u"\u03BC\uFF21\uFF5E\u0141\u2212\u2113",
                               "\xB5"
                               "A~L-l"},
                          Case{1252, u"\u221E\u2264\u30BD\U0001F600", "?????"},
                          Case{65001, u"\u20AC\U0001F600\xDC00", "\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD"}}) {
        SCOPED_TRACE(c.expected);
        const CodePageScope page(c.page);
        EXPECT_EQ(qel::FromUtf16(c.text), c.expected);
    }
}

TEST(CodePage, KeepsEveryByteThatIsNoPartOfABrokenCharacter) {
    struct Case {
        UINT page;
        std::string_view bytes;
        const char* utf8;
    };
    for (const Case& c : {Case{932, "\x83\"x", "\u30FB\"x"},  // no trail byte: it stands for itself
                          Case{932, "\x83\r\n", "\u30FB\r\n"},
                          Case{932, "\x85\x40|\x83\x7F", "\u30FB|\u30FB\x7F"},  // possible but unassigned: one for both
                          Case{932, "a\x83", "a\u30FB"}, Case{932, "\x83\x83\x5C", "\u30E3\\"},  // 83 83 is a character
                          Case{65001, "\xE2\x82(\xC0\x80\xED\xA0\x80", "\uFFFD(\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
                          Case{65001, "\xF4\x90\x80\x80\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"}}) {
        SCOPED_TRACE(c.utf8);
        const CodePageScope page(c.page);
        EXPECT_EQ(qel::ToUtf8(c.bytes), c.utf8);
        EXPECT_EQ(c.page == 65001 ? qel::FromUtf8(c.bytes) : c.utf8, c.utf8);
    }
}

TEST(CodePage, TextOfAnyLengthSurvivesTheWayToUnicodeAndBack) {
    const CodePageScope japanese(932);
    for (std::size_t before = 0; before < 20; ++before) {
        const std::string text = std::string(before, 'a') + "\0\x83\x5C|\xB1"s + std::string(before % 9, '~');
        EXPECT_EQ(qel::FromUtf8(qel::ToUtf8(text)), text);
        EXPECT_EQ(qel::FromUtf16(qel::ToUtf16(text)), text);
    }
}

TEST(CodePage, WritesReferencesWhereNothingMayBeLost) {
    const char* const text = "a\u00E4\u2014\u30BD\U0001F600&";
    const CodePageScope japanese(932);
    EXPECT_EQ(qel::FromUtf8WithReferences(text), "a&#228;&#8212;\x83\x5C&#128512;&");
    const CodePageScope utf8(65001);
    EXPECT_EQ(qel::FromUtf8WithReferences(text), text);
}

TEST(CodePage, ConvertsInManyThreadsFromTheFirstUseOn) {
    const CodePageScope japanese(932);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                wrong += qel::ToUtf8("\x95\x5C\x83") != "\u8868\u30FB" ||
                         qel::FromUtf8("\u8868\u00B5") != "\x95\x5C\x83\xCA";
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(CodePage, RefusesUnknownPages) {
    const UINT before = qel::CodePage();
    EXPECT_FALSE(qel::SetCodePage(1251));
    EXPECT_EQ(qel::CodePage(), before);
}

TEST(Converter, FailsLoudlyWithoutAConverterAndQuietlyOnBadText) {
    try {
        qel::Converter("UTF-8", "NO-SUCH-PAGE");
        FAIL() << "opened";
    } catch (const qel::DataError&) {
        FAIL() << "taken for damaged data";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string_view(error.what()).find("NO-SUCH-PAGE"), std::string_view::npos);
    }
    qel::Converter shifting("ISO-2022-JP", "UTF-8");
    EXPECT_EQ(shifting.Convert("\xFF"), std::nullopt);
    EXPECT_EQ(shifting.Convert("\u30BD"), "\x1B$B%=\x1B(B");  // begins afresh and goes back to ASCII at the end
}
