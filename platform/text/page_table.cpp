#include "qellib10/platform/text/page_table.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/converter.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr unsigned kCharacters = 0x10000;

// The bytes that the platform maps but the system's converters do not: in 1252 the control characters with the same
// number, in 932 one control character and four private ones.
constexpr char16_t PlatformCharacter(unsigned byte, UINT page) {
    if (page == kCodePageLatin1 || byte == 0x80) return static_cast<char16_t>(byte);
    return static_cast<char16_t>(byte == 0xA0 ? 0xF8F0 : 0xF8F1 + (byte - 0xFD));
}

class PageTableReader {
public:
    PageTableReader(UINT page, const char* name) : m_decode("UTF-16LE", name), m_encode(name, "UTF-16LE") {
        m_table.page = page;
        m_table.codes.resize(kCharacters);
    }

    PageTable Read() {
        for (unsigned byte = 0; byte < 0x100; ++byte) {
            if (IsLeadByte(static_cast<unsigned char>(byte), m_table.page)) {
                ReadPairs(byte);
            } else {
                m_table.singles[byte] =
                    Decode({static_cast<char>(byte)}).value_or(PlatformCharacter(byte, m_table.page));
                AddCode(m_table.singles[byte], byte);
            }
        }
        return std::move(m_table);
    }

private:
    void ReadPairs(unsigned lead) {
        m_table.pairs.resize(kCharacters);
        for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
            const auto character = Decode({static_cast<char>(lead), static_cast<char>(trail)});
            if (!character) continue;
            m_table.pairs[lead * 256 + trail] = *character;
            AddCode(*character, lead * 256 + trail);
        }
    }

    // Some characters have several codes; the converter chooses which one is written, and it chooses like the platform.
    void AddCode(char16_t character, unsigned code) {
        const char units[] = {static_cast<char>(character & 0xFF), static_cast<char>(character >> 8)};
        const auto bytes = m_encode.Convert({units, sizeof units});
        if (bytes) {
            code = 0;
            for (const char byte : *bytes) code = code * 256 + static_cast<unsigned char>(byte);
        }
        m_table.codes[character] = static_cast<std::uint16_t>(code);
    }

    std::optional<char16_t> Decode(const std::string& bytes) {
        const auto units = m_decode.Convert(bytes);
        if (!units || units->size() != 2) return std::nullopt;
        const auto at = [&](std::size_t i) { return static_cast<unsigned char>((*units)[i]); };
        return static_cast<char16_t>(at(0) | at(1) << 8);
    }

    Converter m_decode;
    Converter m_encode;
    PageTable m_table;
};

using KeptTable = std::atomic<const PageTable*>;

// Held while a table is read. Not the lock of a function-local object: a child that is forked meanwhile would wait for
// it forever.
ForkSafeLock& ReadingLock() {
    static ForkSafeLock& lock = *new ForkSafeLock;
    return lock;
}
[[maybe_unused]] const ForkSafeLock& theLockIsMadeAtLoad = ReadingLock();

// Never freed: the destructors of static objects may still convert text.
const PageTable& TableIn(KeptTable& kept, UINT page, const char* converterName) {
    const PageTable* table = kept.load(std::memory_order_acquire);
    if (table == nullptr) {
        const std::lock_guard guard(ReadingLock());
        table = kept.load(std::memory_order_relaxed);
        if (table == nullptr) {
            table = new PageTable(PageTableReader(page, converterName).Read());
            kept.store(table, std::memory_order_release);
        }
    }
    return *table;
}

constinit KeptTable theLatin1Table = nullptr;
constinit KeptTable theJapaneseTable = nullptr;

}  // namespace

const PageTable& TableOfPage(UINT page) {
    return page == kCodePageLatin1 ? TableIn(theLatin1Table, page, "CP1252")
                                   : TableIn(theJapaneseTable, kCodePageJapanese, "CP932");
}

}  // namespace qel
