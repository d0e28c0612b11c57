#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/drawing/column_reducer.h"
#include "qellib10/platform/drawing/document_sink.h"
#include "qellib10/platform/drawing/surface.h"

namespace qel {

/// A picture as SVG 1.1, whose texts stay texts. The document has one page; the same drawing gives the same bytes.
class SvgSurface : public Surface {
public:
    SvgSurface(const CSize& size, int dotsPerInch, std::unique_ptr<DocumentSink> sink);
    ~SvgSurface() override;

    int DeviceCaps(int index) const override;
    void SetInk(const Ink& ink) override;
    void MoveTo(const POINT& to) override;
    void LineTo(const POINT& to) override;
    void Rectangle(const CRect& box) override;
    void Arc(const CRect& box, const POINT& start, const POINT& end) override;
    void FillRect(const CRect& box, const LOGBRUSH& brush) override;
    void InvertRect(const CRect& box) override;
    void Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
              const CRect* box) override;
    void Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) override;
    void Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale, int quarterTurns,
               COLORREF color) override;
    void CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) override;
    void Flush() override;
    int StartDoc(const CString& name) override;
    int StartPage() override;
    int EndPage() override;
    int EndDoc() override;
    int AbortDoc() override;

private:
    enum class Stage { kNone, kDocument, kPage, kPageDone };

    void Element(std::string_view nameAndAttributes, std::string_view content = {}, const CRect* box = nullptr);
    void Stroke(const std::string& name, const std::string& geometry);
    void TextElement(const TextFont& font, const TextLine& line, const std::string& place, double scale, COLORREF color,
                     const CRect* box);
    std::string Reference(const std::string& element, const std::string& rest);
    std::string ClipReference(const CRect* box);
    std::string HatchReference(const LOGBRUSH& brush);
    std::string StrokeAttributes(COLORREF color) const;
    std::string Whole() const;

    CSize m_size;
    int m_nDotsPerInch;
    std::unique_ptr<DocumentSink> m_pSink;
    Stage m_stage = Stage::kNone;
    CString m_szName;
    std::string m_definitions;
    std::string m_body;
    std::map<std::string, std::size_t> m_mapDefinition;  // the numbers of clips and hatches, from 1
    Ink m_ink;
    std::vector<CPoint> m_aryPoint;  // of the polyline being drawn
    ColumnReducer m_reducer;
    CPoint m_at;
};

}  // namespace qel
