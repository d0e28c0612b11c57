#include "qellib10/print/command_list.h"

#include <bit>
#include <cstring>
#include <type_traits>

namespace qel {
namespace {

// The first word: the kind in the lowest bits, then one bit for each number and for the colour, the font and the text.
constexpr int kKindBits = 4;
constexpr std::uint32_t kKindMask = (1U << kKindBits) - 1;
constexpr std::uint32_t kNumbersMask = 0x7FF;
constexpr std::uint32_t kHasColor = 1U << 16, kHasFont = 1U << 17, kHasText = 1U << 18;
static_assert(CQelPrintJobCommand::kLabel <= kKindMask);

constexpr LOGFONT kNoFont = {};

static_assert(std::has_unique_object_representations_v<LOGFONT>, "fonts are compared by their bytes");
bool IsSame(const LOGFONT& a, const LOGFONT& b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

}  // namespace

void CommandList::Add(const CQelPrintJobCommand& command) {
    static_assert(kNumbersMask == (1U << kNumbers.size()) - 1);
    const std::size_t begin = m_aryWord.size();
    auto fields = static_cast<std::uint32_t>(command.m_nKind);
    m_aryWord.push_back(fields);
    for (std::size_t i = 0; i < kNumbers.size(); ++i) {
        const int number = command.*kNumbers[i];
        if (number == 0) continue;
        fields |= 1U << (kKindBits + i);
        m_aryWord.push_back(static_cast<std::uint32_t>(number));
    }
    if (command.m_color != 0) {
        fields |= kHasColor;
        m_aryWord.push_back(command.m_color);
    }
    if (!IsSame(command.m_font, kNoFont)) {
        fields |= kHasFont;
        // A job's texts come in runs with the same font.
        if (m_aryFont.empty() || !IsSame(m_aryFont.back(), command.m_font)) m_aryFont.push_back(command.m_font);
        m_aryWord.push_back(static_cast<std::uint32_t>(m_aryFont.size() - 1));
    }
    if (!command.m_szText.IsEmpty()) {
        fields |= kHasText;
        m_aryText.push_back(command.m_szText);
        m_aryWord.push_back(static_cast<std::uint32_t>(m_aryText.size() - 1));
    }
    m_aryWord[begin] = fields;
    ++m_nCount;
}

std::size_t CommandList::Read(std::size_t position, CQelPrintJobCommand& command) const {
    const std::uint32_t* word = &m_aryWord[position];
    const std::uint32_t fields = *word++;
    command.Initialize();
    command.m_nKind = static_cast<int>(fields & kKindMask);
    for (std::uint32_t left = fields >> kKindBits & kNumbersMask; left != 0; left &= left - 1) {
        command.*kNumbers[static_cast<std::size_t>(std::countr_zero(left))] = static_cast<int>(*word++);
    }
    if ((fields & kHasColor) != 0) command.m_color = *word++;
    if ((fields & kHasFont) != 0) command.m_font = m_aryFont[*word++];
    if ((fields & kHasText) != 0) command.m_szText = m_aryText[*word++];
    return static_cast<std::size_t>(word - m_aryWord.data());
}

}  // namespace qel
