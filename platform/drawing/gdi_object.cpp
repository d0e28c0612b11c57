#include "qellib10/platform/drawing/gdi_object.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include "qellib10/platform/drawing/drawing_object.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kHasHandle = "it has a handle already", kNull = "a null pointer";

constexpr bool IsDepth(UINT bitsPixel) {
    return bitsPixel == 1 || bitsPixel == 4 || bitsPixel == 8 || bitsPixel == 16 || bitsPixel == 24 || bitsPixel == 32;
}

BITMAP DescriptionOf(const BitmapObject& bitmap) {
    const int width = bitmap.pixels->Width();
    bitmap.pixels->Settle();
    return {0, width, bitmap.pixels->Height(), width * 4, 1, 32, bitmap.pixels->Row(0)};
}

LOGPEN DescriptionOf(const PenObject& pen) { return {static_cast<UINT>(pen.style), {pen.width, 0}, pen.color}; }

LOGBRUSH DescriptionOf(const BrushObject& brush) { return brush.description; }

LOGFONT DescriptionOf(const FontObject& font) { return font.description; }

template <class Object, class Record> BOOL Describe(HGDIOBJ handle, Record* record) {
    const auto object = FindObject<Object>(handle);
    if (!object || record == nullptr) return 0;
    *record = DescriptionOf(*object);
    return 1;
}

// An operation that makes an object for @p owner, which must have none.
template <class Object> BOOL Make(const char* operation, CGdiObject& owner, Object&& object) {
    Operation running(operation);
    if (owner.GetSafeHandle() != nullptr) return running.Failed(FailureKind::kState, "", kHasHandle);
    return running.Ended(owner.Attach(AddDrawingObject(std::forward<Object>(object))));
}

}  // namespace
}  // namespace qel

CGdiObject::~CGdiObject() { DeleteObject(); }

BOOL CGdiObject::Attach(HGDIOBJ object) {
    if (object == nullptr) return 0;
    qel::Operation running("CGdiObject::Attach");
    if (m_hObject != nullptr) return running.Failed(qel::FailureKind::kState, "", qel::kHasHandle);
    m_hObject = object;
    qel::SetOwner(object, this);
    return running.Ended(1);
}

HGDIOBJ CGdiObject::Detach() {
    if (m_hObject != nullptr) qel::SetOwner(m_hObject, nullptr);
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() { return m_hObject != nullptr && ::DeleteObject(Detach()); }

BOOL CGdiObject::CreateStockObject(int number) {
    qel::Operation running("CGdiObject::CreateStockObject");
    const HGDIOBJ stock = GetStockObject(number);
    if (stock == nullptr) return running.Failed(qel::FailureKind::kArgument, "", "no stock object has this number");
    if (m_hObject != nullptr) return running.Failed(qel::FailureKind::kState, "", qel::kHasHandle);
    m_hObject = stock;
    return running.Ended(1);
}

int CGdiObject::GetObject(int size, void* record) const { return ::GetObject(m_hObject, size, record); }

BOOL CPen::CreatePen(int style, int width, COLORREF color) {
    return qel::Make("CPen::CreatePen", *this, qel::PenObject{style, width, color});
}

BOOL CPen::CreatePenIndirect(const LOGPEN* pen) {
    qel::Operation running("CPen::CreatePenIndirect");
    const bool isMade = pen != nullptr && CreatePen(static_cast<int>(pen->lopnStyle), pen->lopnWidth.x, pen->lopnColor);
    return running.Ended(isMade, qel::FailureKind::kArgument, qel::kNull);
}

BOOL CPen::GetLogPen(LOGPEN* pen) const { return qel::Describe<qel::PenObject>(m_hObject, pen); }

BOOL CBrush::CreateSolidBrush(COLORREF color) {
    return qel::Make("CBrush::CreateSolidBrush", *this, qel::BrushObject{{BS_SOLID, color, 0}});
}

BOOL CBrush::CreateHatchBrush(int hatch, COLORREF color) {
    return qel::Make("CBrush::CreateHatchBrush", *this, qel::BrushObject{{BS_HATCHED, color, hatch}});
}

BOOL CBrush::CreateBrushIndirect(const LOGBRUSH* brush) {
    constexpr const char* kOperation = "CBrush::CreateBrushIndirect";
    return brush != nullptr ? qel::Make(kOperation, *this, qel::BrushObject{*brush}) : qel::RefuseNull(kOperation);
}

BOOL CBrush::GetLogBrush(LOGBRUSH* brush) const { return qel::Describe<qel::BrushObject>(m_hObject, brush); }

BOOL CFont::CreateFontIndirect(const LOGFONT* font) {
    constexpr const char* kOperation = "CFont::CreateFontIndirect";
    return font != nullptr ? qel::Make(kOperation, *this, qel::FontObject{*font}) : qel::RefuseNull(kOperation);
}

BOOL CFont::CreateFont(int height, int width, int escapement, int orientation, int weight, BYTE italic, BYTE underline,
                       BYTE strikeOut, BYTE charSet, BYTE outPrecision, BYTE clipPrecision, BYTE quality,
                       BYTE pitchAndFamily, const char* face) {
    LOGFONT font{height,    width,   escapement,   orientation,   weight,  italic,         underline,
                 strikeOut, charSet, outPrecision, clipPrecision, quality, pitchAndFamily, {}};
    if (face != nullptr) qel::CopyBounded(font.lfFaceName, face, LF_FACESIZE - 1);
    return qel::Make("CFont::CreateFont", *this, qel::FontObject{font});
}

BOOL CFont::GetLogFont(LOGFONT* font) const { return qel::Describe<qel::FontObject>(m_hObject, font); }

BOOL CRgn::CreateRectRgn(int left, int top, int right, int bottom) {
    CRect box(left, top, right, bottom);
    box.NormalizeRect();
    return qel::Make("CRgn::CreateRectRgn", *this, qel::RegionObject{box});
}

BOOL CRgn::CreateRectRgnIndirect(const RECT* rect) {
    qel::Operation running("CRgn::CreateRectRgnIndirect");
    const bool isMade = rect != nullptr && CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
    return running.Ended(isMade, qel::FailureKind::kArgument, qel::kNull);
}

int CRgn::GetRgnBox(RECT* box) const {
    const auto region = qel::FindObject<qel::RegionObject>(m_hObject);
    if (!region || box == nullptr) return 0;
    *box = region->box;
    return region->box.IsRectEmpty() ? NULLREGION : SIMPLEREGION;
}

BOOL CRgn::PtInRegion(const POINT& point) const {
    CRect box;
    return GetRgnBox(&box) != 0 && box.PtInRect(point);
}

BOOL CBitmap::CreateBitmap(int width, int height, UINT planes, UINT bitsPixel, const void* bits) {
    qel::Operation running("CBitmap::CreateBitmap");
    if (m_hObject != nullptr) return running.Failed(qel::FailureKind::kState, "", qel::kHasHandle);
    return running.Ended(Attach(::CreateBitmap(width, height, planes, bitsPixel, bits)));
}

BOOL CBitmap::CreateCompatibleBitmap(CDC*, int width, int height) {
    qel::Operation running("CBitmap::CreateCompatibleBitmap");
    return running.Ended(CreateBitmap(width, height, 1, 32, nullptr));
}

BOOL CBitmap::GetBitmap(BITMAP* description) const { return qel::Describe<qel::BitmapObject>(m_hObject, description); }

namespace {

std::span<std::byte> SettledBytes(const CBitmap& bitmap) {
    const auto object = qel::FindObject<qel::BitmapObject>(bitmap.GetSafeHandle());
    if (!object) return {};
    qel::PixelBuffer& pixels = *object->pixels;
    pixels.Settle();
    const std::size_t count = std::size_t(pixels.Width()) * std::size_t(pixels.Height());
    return std::as_writable_bytes(std::span(pixels.Row(0), count));
}

// The first @p size bytes, or all that there are, for a copy to or from @p bits; none when the operation fails.
std::span<std::byte> BytesToCopy(const char* operation, const CBitmap& bitmap, DWORD size, const void* bits) {
    qel::Operation running(operation);
    const auto bytes = SettledBytes(bitmap);
    if (bytes.empty()) {
        running.Failed(qel::FailureKind::kState, "", "no bitmap");
        return {};
    }
    running.Ended(bits != nullptr, qel::FailureKind::kArgument, qel::kNull);
    return bits != nullptr ? bytes.first(std::min<std::size_t>(size, bytes.size())) : std::span<std::byte>();
}

}  // namespace

DWORD CBitmap::GetBitmapBits(DWORD size, void* bits) const {
    const auto bytes = BytesToCopy("CBitmap::GetBitmapBits", *this, size, bits);
    std::ranges::copy(bytes, static_cast<std::byte*>(bits));
    return static_cast<DWORD>(bytes.size());
}

DWORD CBitmap::SetBitmapBits(DWORD size, const void* bits) {
    const auto bytes = BytesToCopy("CBitmap::SetBitmapBits", *this, size, bits);
    std::copy_n(static_cast<const std::byte*>(bits), bytes.size(), bytes.begin());
    return static_cast<DWORD>(bytes.size());
}

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPixel, const void* bits) {
    qel::Operation operation("CreateBitmap");
    const auto refuse = [&](qel::FailureKind kind, std::string_view text) {
        operation.Failed(kind, "", text);
        return nullptr;
    };
    if (planes != 1 || !qel::IsDepth(bitsPixel) || (bits != nullptr && bitsPixel != 32))
        return refuse(qel::FailureKind::kArgument, "a depth that no bitmap has");
    if (!qel::PixelBuffer::IsSize(width, height))
        return refuse(qel::FailureKind::kArgument, "a size that no bitmap has");
    std::shared_ptr<qel::PixelBuffer> pixels = qel::PixelBuffer::Create(width, height);
    if (!pixels) return refuse(qel::FailureKind::kMemory, "out of memory");
    if (bits != nullptr) std::memcpy(pixels->Row(0), bits, std::size_t(width) * std::size_t(height) * 4);
    return operation.Ended(static_cast<HBITMAP>(qel::AddDrawingObject(qel::BitmapObject{std::move(pixels)})));
}

int GetObject(HGDIOBJ object, int size, void* record) {
    const auto found = qel::FindDrawingObject(object);
    if (!found || record == nullptr) return 0;
    return std::visit(
        [&]<class Object>(const Object& kind) {
            if constexpr (std::is_same_v<Object, qel::RegionObject>) {
                return 0;
            } else {
                const auto description = qel::DescriptionOf(kind);
                if (size < static_cast<int>(sizeof(description))) return 0;
                std::memcpy(record, &description, sizeof(description));
                return static_cast<int>(sizeof(description));
            }
        },
        *found);
}

BOOL DeleteObject(HGDIOBJ object) { return qel::RemoveDrawingObject(object); }

HGDIOBJ GetStockObject(int number) { return qel::StockObject(number); }
