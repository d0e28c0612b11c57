#include "qellib10/platform/printing/paper_form.h"

#include <cups/cups.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "qellib10/platform/printing/device_mode.h"

namespace qel {
namespace {

constexpr PaperForm kLetter{"na_letter_8.5x11in"}, kLedger{"na_ledger_11x17in"}, kA4{"iso_a4_210x297mm"},
    kFoolscap{"na_foolscap_8.5x13in"};

// By code, from 1.
constexpr PaperForm kForms[] = {
    kLetter,
    kLetter,
    kLedger,
    {"na_ledger_11x17in", true},
    {"na_legal_8.5x14in"},
    {"na_invoice_5.5x8.5in"},
    {"na_executive_7.25x10.5in"},
    {"iso_a3_297x420mm"},
    kA4,
    kA4,
    {"iso_a5_148x210mm"},
    {"jis_b4_257x364mm", false, "iso_b4_250x353mm"},
    {"jis_b5_182x257mm"},
    kFoolscap,
    {"na_quarto_8.5x10.83in"},
    {"na_10x14_10x14in"},
    kLedger,
    kLetter,
    {"na_number-9_3.875x8.875in"},
    {"na_number-10_4.125x9.5in"},
    {"na_number-11_4.5x10.375in"},
    {"na_number-12_4.75x11in"},
    {"na_number-14_5x11.5in"},
    {"na_c_17x22in"},
    {"na_d_22x34in"},
    {"na_e_34x44in"},
    {"iso_dl_110x220mm"},
    {"iso_c5_162x229mm"},
    {"iso_c3_324x458mm"},
    {"iso_c4_229x324mm"},
    {"iso_c6_114x162mm"},
    {"iso_c6c5_114x229mm"},
    {"iso_b4_250x353mm"},
    {"iso_b5_176x250mm"},
    {"iso_b6_125x176mm", true},
    {"om_italian_110x230mm"},
    {"na_monarch_3.875x7.5in"},
    {"na_personal_3.625x6.5in"},
    {"na_fanfold-us_11x14.875in", true},
    {"na_fanfold-eur_8.5x12in"},
    kFoolscap,
};

constexpr int kTolerance = 100;  // a millimetre

bool IsSameSize(const SIZE& a, const SIZE& b) {
    return std::abs(LONGLONG{a.cx} - b.cx) <= kTolerance && std::abs(LONGLONG{a.cy} - b.cy) <= kTolerance;
}

}  // namespace

const PaperForm* FindPaperForm(int code) noexcept {
    return code >= 1 && code <= static_cast<int>(std::size(kForms)) ? &kForms[code - 1] : nullptr;
}

std::optional<int> PaperFormOf(const SIZE& sheet) {
    const auto found = std::ranges::find_if(kForms, [&](const PaperForm& form) {
        const auto medium = StandardMedium(form.medium);
        return !form.isTurned && medium && IsSameSize(medium->size, sheet);
    });
    if (found == std::end(kForms)) return std::nullopt;
    return static_cast<int>(found - std::begin(kForms)) + 1;
}

std::optional<Medium> StandardMedium(const char* name) {
    const pwg_media_t* const media = ::pwgMediaForPWG(name);
    if (media == nullptr || media->width < 1 || media->length < 1) return std::nullopt;
    return Medium{name, {media->width, media->length}};
}

std::vector<Medium> MediaOfForms() {
    std::vector<Medium> media;
    for (const PaperForm& form : kForms) {
        auto medium = StandardMedium(form.medium);
        if (medium && std::ranges::find(media, medium->name, &Medium::name) == media.end()) {
            media.push_back(std::move(*medium));
        }
    }
    return media;
}

const Medium* FindMedium(std::span<const Medium> media, const SIZE& size) {
    const Medium* best = nullptr;
    const auto margins = [](const Medium& medium) {
        return medium.margins.left + medium.margins.top + medium.margins.right + medium.margins.bottom;
    };
    for (const Medium& medium : media) {
        if (!IsSameSize(medium.size, size)) continue;
        if (best == nullptr || margins(medium) > margins(*best)) best = &medium;
    }
    return best;
}

void SetPaper(DEVMODE& mode, const SIZE& sheet) {
    const std::optional<int> code = PaperFormOf(sheet);
    const auto tenths = [](LONG hundredths) { return static_cast<short>(std::clamp(hundredths / 10, 0, 0x7FFF)); };
    mode.dmFields &= ~(DM_PAPERWIDTH | DM_PAPERLENGTH);
    mode.dmFields |= DM_PAPERSIZE;
    mode.dmPaperSize = static_cast<short>(code.value_or(DMPAPER_USER));
    mode.dmPaperWidth = mode.dmPaperLength = 0;
    if (code) return;
    mode.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
    mode.dmPaperWidth = tenths(sheet.cx);
    mode.dmPaperLength = tenths(sheet.cy);
}

}  // namespace qel
