#include "qellib10/platform/drawing/text_font.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "qellib10/platform/drawing/font_alias.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
    void operator()(PangoFontMetrics* metrics) const { pango_font_metrics_unref(metrics); }
    void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};
template <class Object> using Owned = std::unique_ptr<Object, Unref>;

// Larger glyphs would each be a picture of many megabytes.
constexpr double kHighestEm = 4096;
constexpr int kWidestBox = 1 << 20;  // device units: the range of Pango's fixed point numbers

Owned<PangoContext> NewContext() {
    // Each thread has its own font map.
    Owned<PangoContext> context(pango_font_map_create_context(pango_cairo_font_map_get_default()));
    const Owned<cairo_font_options_t> options(cairo_font_options_create());
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    // Grey: sub-pixel colours would not fit the paper, and would be too many for a palette.
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context.get(), options.get());
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    pango_context_set_language(context.get(),
                               pango_language_from_string(CodePage() == kCodePageJapanese ? "ja" : "en"));
    return context;
}

int Rounded(int pangoUnits) { return (pangoUnits + PANGO_SCALE / 2) / PANGO_SCALE; }

std::string FaceOf(const LOGFONT& font) {
    return ToUtf8(std::string_view(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE)));
}

std::string WithoutControls(std::string_view utf8, bool keepsLineEnds) {
    std::string clean(utf8);
    for (char& c : clean) {
        const bool isControl = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        if (isControl && !(keepsLineEnds && (c == '\n' || c == '\r'))) c = ' ';
    }
    return clean;
}

// Everything that a font depends on.
struct FontKey {
    FontKey(const LOGFONT& font, int deviceHeight)
        : face(font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE)),
          weight(font.lfWeight),
          look{font.lfItalic != 0, font.lfUnderline != 0, font.lfStrikeOut != 0},
          height(deviceHeight),
          codePage(CodePage()) {}
    bool operator==(const FontKey&) const = default;

    std::string face;
    LONG weight;
    std::array<bool, 3> look;
    int height;
    unsigned codePage;
};

class PangoTextFont : public TextFont {
public:
    PangoTextFont(const LOGFONT& font, int height)
        : m_context(NewContext()), m_layout(pango_layout_new(m_context.get())) {
        m_families = FontFamilies(FaceOf(font));
        m_isBold = font.lfWeight >= 600;
        m_isItalic = font.lfItalic != 0;
        m_isUnderlined = font.lfUnderline != 0;
        m_isStruckOut = font.lfStrikeOut != 0;
        m_description.reset(pango_font_description_new());
        pango_font_description_set_family(m_description.get(), m_families.c_str());
        pango_font_description_set_weight(m_description.get(),
                                          font.lfWeight > 0
                                              ? static_cast<PangoWeight>(std::clamp<LONG>(font.lfWeight, 100, 1000))
                                              : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_style(m_description.get(), m_isItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
        SetEm(height < 0 ? -double(height) : EmOfCell(height));
        const Owned<PangoFontMetrics> metrics = Metrics();
        m_nAscent = Rounded(pango_font_metrics_get_ascent(metrics.get()));
        m_nDescent = Rounded(pango_font_metrics_get_descent(metrics.get()));
        m_nAverageWidth = Rounded(pango_font_metrics_get_approximate_char_width(metrics.get()));
        const Owned<PangoAttrList> attributes(pango_attr_list_new());
        // A word that is broken between characters gets no hyphen: it is data, not prose.
        pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
        if (m_isUnderlined) {
            pango_attr_list_insert(attributes.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        }
        if (m_isStruckOut) {
            pango_attr_list_insert(attributes.get(), pango_attr_strikethrough_new(TRUE));
        }
        pango_layout_set_attributes(m_layout.get(), attributes.get());
    }

    TextLine Line(std::string_view utf8) const override { return Measured(WithoutControls(utf8, false)); }

    std::vector<TextLine> Lines(std::string_view utf8, int width, Break breaking) const override {
        const std::string text = WithoutControls(utf8, true);
        PangoLayout* const layout = m_layout.get();
        pango_layout_set_single_paragraph_mode(layout, FALSE);
        pango_layout_set_wrap(layout, breaking == Break::kWordOrCharacter ? PANGO_WRAP_WORD_CHAR : PANGO_WRAP_WORD);
        pango_layout_set_width(layout, breaking == Break::kNone ? -1 : std::clamp(width, 0, kWidestBox) * PANGO_SCALE);
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        std::vector<std::string> pieces;
        for (int i = 0; i < pango_layout_get_line_count(layout); ++i) {
            const PangoLayoutLine* const line = pango_layout_get_line_readonly(layout, i);
            pieces.push_back(
                text.substr(static_cast<std::size_t>(line->start_index), static_cast<std::size_t>(line->length)));
        }
        std::vector<TextLine> lines;
        for (std::string& piece : pieces) lines.push_back(Measured(std::move(piece)));
        return lines;
    }

    void Show(cairo_t* cairo, const TextLine& line, double x, double y) const override {
        Place(line.text);
        cairo_move_to(cairo, x, y);
        pango_cairo_show_layout_line(cairo, pango_layout_get_line_readonly(m_layout.get(), 0));
    }

private:
    void SetEm(double em) {
        m_em = std::clamp(em, 1.0, kHighestEm);
        pango_font_description_set_absolute_size(m_description.get(), m_em * PANGO_SCALE);
        pango_layout_set_font_description(m_layout.get(), m_description.get());
    }

    Owned<PangoFontMetrics> Metrics() const {
        return Owned<PangoFontMetrics>(pango_context_get_metrics(m_context.get(), m_description.get(), nullptr));
    }

    // The em height at which ascent and descent add up to @p height.
    double EmOfCell(int height) {
        SetEm(1000);
        const Owned<PangoFontMetrics> metrics = Metrics();
        const int cell = pango_font_metrics_get_ascent(metrics.get()) + pango_font_metrics_get_descent(metrics.get());
        return cell > 0 ? std::round(height * 1000.0 * PANGO_SCALE / cell) : height;
    }

    void Place(const std::string& text) const {
        pango_layout_set_single_paragraph_mode(m_layout.get(), TRUE);
        pango_layout_set_width(m_layout.get(), -1);
        pango_layout_set_text(m_layout.get(), text.data(), static_cast<int>(text.size()));
    }

    // A picture that is drawn again and again measures its texts only once.
    int WidthOf(const std::string& text) const {
        if (text.empty()) return 0;
        constexpr std::size_t kMost = 1024, kLongest = 256;  // bytes; longer texts are not cached
        if (const auto known = m_widths.find(text); known != m_widths.end()) return known->second;
        Place(text);
        PangoRectangle logical;
        pango_layout_line_get_extents(pango_layout_get_line_readonly(m_layout.get(), 0), nullptr, &logical);
        const int width = Rounded(logical.width);
        if (text.size() > kLongest) return width;
        if (m_widths.size() == kMost) m_widths.clear();
        m_widths.emplace(text, width);
        return width;
    }

    TextLine Measured(std::string text) const {
        TextLine line{std::move(text), 0, 0};
        line.width = line.inkWidth = WidthOf(line.text);
        const std::size_t end = line.text.find_last_not_of(' ') + 1;
        if (end < line.text.size()) line.inkWidth = WidthOf(line.text.substr(0, end));
        return line;
    }

    Owned<PangoContext> m_context;
    Owned<PangoLayout> m_layout;
    Owned<PangoFontDescription> m_description;
    mutable std::unordered_map<std::string, int> m_widths;  // of texts that were measured
};

}  // namespace

std::shared_ptr<const TextFont> TextFont::Create(const LOGFONT& description, int height) {
    return std::make_shared<PangoTextFont>(description, height);
}

std::shared_ptr<const TextFont> TextFont::Kept(const LOGFONT& description, int height) {
    struct Entry {
        FontKey key;
        std::shared_ptr<const TextFont> font;
    };
    constexpr std::size_t kMost = 8;
    thread_local std::vector<Entry> kept;  // the most recent one first
    FontKey key(description, height);
    auto found = std::ranges::find(kept, key, &Entry::key);
    if (found == kept.end()) {
        Entry made{std::move(key), Create(description, height)};
        if (kept.size() == kMost) kept.pop_back();
        found = kept.insert(kept.end(), std::move(made));
    }
    std::rotate(kept.begin(), found, found + 1);
    return kept.front().font;
}

}  // namespace qel
