#include "qellib10/platform/text/code_page.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "qellib10/platform/text/best_fit.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/page_table.h"
#include "qellib10/platform/text/secret_utf8.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr bool IsKnown(UINT page) {
    return page == kCodePageJapanese || page == kCodePageLatin1 || page == kCodePageUtf8;
}

UINT PageOfEnvironment() {
    const char* value = std::getenv("QELLIB10_CODEPAGE");
    const UINT page = value != nullptr ? static_cast<UINT>(std::strtoul(value, nullptr, 10)) : 0;
    return IsKnown(page) ? page : kCodePageJapanese;
}

std::atomic<UINT>& CurrentPage() {
    static std::atomic<UINT> page = PageOfEnvironment();
    return page;
}

// Text is read as a run of ASCII, which is copied unchanged, then one other character, then a run again. A reader
// provides these two steps for one encoding, a writer uses them for another.

// UTF-8 or UTF-16.
template <typename View> class Reader {
public:
    explicit Reader(View text) : m_text(text) {}

    bool AtEnd() const { return m_at == m_text.size(); }
    bool AtAscii() const { return static_cast<std::make_unsigned_t<typename View::value_type>>(m_text[m_at]) < 0x80; }
    View TakeAscii() {
        const std::size_t begin = std::exchange(m_at, EndOfAscii(m_text, m_at));
        return m_text.substr(begin, m_at - begin);
    }
    char32_t Take() { return NextCharacter(m_text, m_at); }

protected:
    View m_text;
    std::size_t m_at = 0;
};

class PageReader : public Reader<std::string_view> {
public:
    PageReader(std::string_view text, const PageTable& table) : Reader(text), m_table(table) {}

    char32_t Take() {
        const auto byte = static_cast<unsigned char>(m_text[m_at++]);
        if (!IsLeadByte(byte, m_table.page)) return m_table.singles[byte];
        if (AtEnd()) return kInvalidPair;
        const auto trail = static_cast<unsigned char>(m_text[m_at]);
        // A byte that cannot be a trail byte is a character of its own, so that no quote, bracket or line end is ever
        // swallowed.
        if (trail < 0x40 || trail == 0x7F || trail > 0xFC) return kInvalidPair;
        ++m_at;
        const char16_t character = m_table.pairs[byte * 256U + trail];
        return character != 0 ? character : kInvalidPair;
    }

private:
    static constexpr char32_t kInvalidPair = 0x30FB;  // KATAKANA MIDDLE DOT, the platform's substitute

    const PageTable& m_table;
};

// A growing text that is extended through pointers.
template <typename String> class Output {
public:
    using Unit = typename String::value_type;

    explicit Output(std::size_t sizeHint) : m_text(sizeHint, Unit{}) {}

    template <typename View> void PutAscii(View run) { MoveTo(std::copy(run.begin(), run.end(), Reserve(run.size()))); }
    String Result() {
        m_text.resize(m_size);
        return std::move(m_text);
    }

protected:
    // The end, with space for @p units.
    Unit* Reserve(std::size_t units) {
        if (m_text.size() - m_size < units) m_text.resize(std::max(m_text.size() * 2, m_size + units));
        return m_text.data() + m_size;
    }
    void MoveTo(Unit* end) { m_size = static_cast<std::size_t>(end - m_text.data()); }

private:
    String m_text;
    std::size_t m_size = 0;
};

// UTF-8 or UTF-16.
template <typename String> class Writer : public Output<String> {
public:
    using Output<String>::Output;

    void Put(char32_t character) { this->MoveTo(WriteCharacter(this->Reserve(kMaxUnits), character)); }
};

// What is written for a character missing in the page: the best fit, else `?`; or a numeric character reference.
enum class Missing { BestFit, Reference };

class PageWriter : public Output<std::string> {
public:
    PageWriter(std::size_t sizeHint, const PageTable& table, Missing missing)
        : Output(sizeHint), m_table(table), m_missing(missing) {}

    void Put(char32_t character) {
        const unsigned code = character < m_table.codes.size() ? m_table.codes[character] : 0;
        if (code != 0) {
            PutCode(code);
        } else if (m_missing == Missing::Reference) {
            PutAscii("&#" + std::to_string(static_cast<unsigned>(character)) + ";");
        } else if (const unsigned fit = BestFit(character, m_table.page); fit != 0) {
            PutCode(fit);
        } else {
            PutAscii(std::string_view(character > 0xFFFF ? "??" : "?"));  // one per UTF-16 unit, like the platform
        }
    }

private:
    void PutCode(unsigned code) {
        char* end = Reserve(2);
        if (code > 0xFF) *end++ = static_cast<char>(code >> 8);
        *end++ = static_cast<char>(code & 0xFF);
        MoveTo(end);
    }

    const PageTable& m_table;
    Missing m_missing;
};

template <typename From, typename To> auto Convert(From from, To to) {
    while (!from.AtEnd()) {
        if (from.AtAscii()) {
            to.PutAscii(from.TakeAscii());
        } else {
            to.Put(from.Take());
        }
    }
    return to.Result();
}

template <typename To> auto FromPage(std::string_view text, std::size_t sizeHint) {
    const UINT page = CodePage();
    if (page == kCodePageUtf8) return Convert(Reader(text), To(sizeHint));
    return Convert(PageReader(text, TableOfPage(page)), To(sizeHint));
}

template <typename View> std::string ToPage(View text, Missing missing) {
    const UINT page = CodePage();
    if (page == kCodePageUtf8) return Convert(Reader(text), Writer<std::string>(text.size()));
    return Convert(Reader(text), PageWriter(text.size(), TableOfPage(page), missing));
}

}  // namespace

UINT CodePage() noexcept { return CurrentPage().load(std::memory_order_relaxed); }

bool SetCodePage(UINT page) noexcept {
    if (!IsKnown(page)) return false;
    CurrentPage() = page;
    return true;
}

std::string ToUtf8(std::string_view text) { return FromPage<Writer<std::string>>(text, text.size()); }
std::u16string ToUtf16(std::string_view text) { return FromPage<Writer<std::u16string>>(text, text.size()); }
std::string SecretToUtf8(std::string_view text) {
    // A byte gives 3 at most, and Put asks for room for 4. A text of fewer than 16 would be within the object that
    // moves.
    return FromPage<Writer<std::string>>(text, text.size() * 3 + 32);
}
std::string FromUtf8(std::string_view utf8) { return ToPage(utf8, Missing::BestFit); }
std::string FromUtf8WithReferences(std::string_view utf8) { return ToPage(utf8, Missing::Reference); }
std::string FromUtf16(std::u16string_view utf16) { return ToPage(utf16, Missing::BestFit); }

}  // namespace qel
