#include "qellib10/platform/drawing/dc.h"

#include <memory>
#include <string_view>
#include <utility>

#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/operation.h"

namespace {

constexpr COLORREF kNoColor = 0xFFFFFFFF;

CString TextOf(const char* text, int length) {
    if (text == nullptr) return CString();
    return length < 0 ? CString(text) : CString(text, length);
}

int KindOf(const CRect& clip) { return clip.IsRectEmpty() ? NULLREGION : SIMPLEREGION; }

// A step of a document, which is above 0 when it succeeds; what no one gave a reason for came out of turn.
template <class Body> int Step(const char* name, const std::shared_ptr<qel::DeviceContext>& output, Body&& body,
                               std::string_view outOfTurn = "not the next step of a document") {
    qel::Operation operation(name);
    const int result = output ? body() : -1;
    operation.Ended(result > 0, qel::FailureKind::kState, outOfTurn);
    return result;
}

}  // namespace

CDC::CDC() = default;

CDC::~CDC() {
    DeleteDC();
    for (const auto& [handle, object] : m_mapObject) object->m_hObject = nullptr;
}

BOOL CDC::CreateCompatibleDC(CDC* dc) {
    qel::Operation operation("CDC::CreateCompatibleDC");
    if (m_hDC != nullptr) return operation.Failed(qel::FailureKind::kState, "", qel::kContextInUse);
    return operation.Ended(Attach(::CreateCompatibleDC(dc != nullptr ? dc->m_hDC : nullptr)));
}

BOOL CDC::Attach(HDC dc) {
    if (dc == nullptr) return 0;
    qel::Operation operation("CDC::Attach");
    if (m_hDC != nullptr) return operation.Failed(qel::FailureKind::kState, "", qel::kContextInUse);
    auto context = qel::FindDeviceContext(dc);
    if (!context) return operation.Failed(qel::FailureKind::kArgument, "", "not a device context");
    m_hDC = m_hAttribDC = dc;
    m_pOutput = m_pAttributes = std::move(context);
    return operation.Ended(1);
}

HDC CDC::Detach() {
    m_pOutput = m_pAttributes = nullptr;
    m_hAttribDC = nullptr;
    return std::exchange(m_hDC, nullptr);
}

BOOL CDC::DeleteDC() { return m_hDC != nullptr && ::DeleteDC(Detach()); }

void CDC::SetAttribDC(HDC dc) {
    m_pAttributes = qel::FindDeviceContext(dc);
    m_hAttribDC = m_pAttributes ? dc : nullptr;
}

void CDC::ReleaseAttribDC() { SetAttribDC(nullptr); }

void CDC::SetOutputDC(HDC dc) {
    m_pOutput = qel::FindDeviceContext(dc);
    m_hDC = m_pOutput ? dc : nullptr;
}

void CDC::ReleaseOutputDC() { SetOutputDC(nullptr); }

BOOL CDC::IsPrinting() const { return m_pAttributes && m_pAttributes->DeviceCaps(TECHNOLOGY) == DT_RASPRINTER; }

int CDC::GetDeviceCaps(int index) const { return m_pAttributes ? m_pAttributes->DeviceCaps(index) : 0; }

int CDC::SaveDC() {
    if (!m_pOutput) return 0;
    if (m_pAttributes && m_pAttributes != m_pOutput) m_pAttributes->Save();
    return m_pOutput->Save();
}

BOOL CDC::RestoreDC(int saved) {
    if (!m_pOutput) return 0;
    if (m_pAttributes && m_pAttributes != m_pOutput) m_pAttributes->Restore(saved);
    return m_pOutput->Restore(saved);
}

// Selects in both contexts; returns the output's object.
template <class Object> Object* CDC::Select(Object* object) {
    if (object == nullptr || !m_pOutput) return nullptr;
    const HGDIOBJ handle = object->GetSafeHandle();
    if (m_pAttributes && m_pAttributes != m_pOutput) m_pAttributes->Select(handle);
    return ObjectOf<Object>(m_pOutput->Select(handle));
}

template <class Object> Object* CDC::ObjectOf(HGDIOBJ handle) const {
    if (handle == nullptr) return nullptr;
    if (auto* const owner = dynamic_cast<Object*>(qel::FindOwner(handle))) return owner;
    if (const auto known = m_mapObject.find(handle); known != m_mapObject.end())
        return static_cast<Object*>(known->second.get());
    const auto made = m_mapObject.emplace(handle, std::make_unique<Object>()).first;
    made->second->m_hObject = handle;  // once it is in the map: the destructor takes it out again, nobody deletes it
    return static_cast<Object*>(made->second.get());
}

CPen* CDC::SelectObject(CPen* pen) { return Select(pen); }

CBrush* CDC::SelectObject(CBrush* brush) { return Select(brush); }

CFont* CDC::SelectObject(CFont* font) { return Select(font); }

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    if (bitmap == nullptr || !m_pOutput) return nullptr;
    return ObjectOf<CBitmap>(m_pOutput->Select(bitmap->GetSafeHandle()));
}

CPen* CDC::GetCurrentPen() const { return m_pOutput ? ObjectOf<CPen>(m_pOutput->State().pen.handle) : nullptr; }

CBrush* CDC::GetCurrentBrush() const { return m_pOutput ? ObjectOf<CBrush>(m_pOutput->State().brush.handle) : nullptr; }

CFont* CDC::GetCurrentFont() const { return m_pOutput ? ObjectOf<CFont>(m_pOutput->State().font.handle) : nullptr; }

CBitmap* CDC::GetCurrentBitmap() const {
    return m_pOutput ? ObjectOf<CBitmap>(m_pOutput->State().bitmap.handle) : nullptr;
}

CGdiObject* CDC::SelectStockObject(int number) {
    CPen pen;
    CBrush brush;
    CFont font;
    const auto select = [&](CGdiObject& object) { return object.CreateStockObject(number); };
    if (number >= WHITE_BRUSH && number <= NULL_BRUSH && select(brush)) return Select(&brush);
    if (number >= WHITE_PEN && number <= NULL_PEN && select(pen)) return Select(&pen);
    if (number == SYSTEM_FONT && select(font)) return SelectObject(&font);
    return nullptr;
}

namespace {

// Sets one value in both contexts of a pair. @return the output's former value
template <class Value> Value SetInBoth(qel::DeviceContext* output, qel::DeviceContext* attributes,
                                       Value qel::DrawState::*member, Value value, Value onFailure) {
    if (output == nullptr) return onFailure;
    if (attributes != nullptr && attributes != output) attributes->Change().*member = value;
    return std::exchange(output->Change().*member, value);
}

template <class Value> Value Get(const qel::DeviceContext* context, Value qel::DrawState::*member, Value onFailure) {
    return context != nullptr ? context->State().*member : onFailure;
}

}  // namespace

COLORREF CDC::SetTextColor(COLORREF color) {
    return SetInBoth(Output(), Attributes(), &qel::DrawState::textColor, color, kNoColor);
}

COLORREF CDC::SetBkColor(COLORREF color) {
    return SetInBoth(Output(), Attributes(), &qel::DrawState::backColor, color, kNoColor);
}

int CDC::SetBkMode(int mode) {
    if (mode != TRANSPARENT && mode != OPAQUE) return 0;
    return SetInBoth(Output(), Attributes(), &qel::DrawState::backMode, mode, 0);
}

UINT CDC::SetTextAlign(UINT align) {
    return SetInBoth(Output(), Attributes(), &qel::DrawState::textAlign, align, kNoColor);
}

COLORREF CDC::GetTextColor() const { return Get(Attributes(), &qel::DrawState::textColor, kNoColor); }

COLORREF CDC::GetBkColor() const { return Get(Attributes(), &qel::DrawState::backColor, kNoColor); }

int CDC::GetBkMode() const { return Get(Attributes(), &qel::DrawState::backMode, 0); }

UINT CDC::GetTextAlign() const { return Get(Attributes(), &qel::DrawState::textAlign, kNoColor); }

namespace {

// Changes the mapping of both contexts of a pair; returns what @p change returns for the output.
template <class Change> auto ChangeMapping(qel::DeviceContext* output, qel::DeviceContext* attributes, Change change) {
    using Result = decltype(change(output->Change().mapping));
    if (output == nullptr) return Result();
    if (attributes != nullptr && attributes != output) change(attributes->Change().mapping);
    return change(output->Change().mapping);
}

// Sets one part of the mapping; what it was is the result.
template <class Value, class Get, class Set>
Value ExchangeMapping(qel::DeviceContext* output, qel::DeviceContext* attributes, Get get, Set set, Value value) {
    return ChangeMapping(output, attributes, [&](qel::Mapping& mapping) {
        const Value before = (mapping.*get)();
        (mapping.*set)(value);
        return before;
    });
}

}  // namespace

int CDC::SetMapMode(int mode) {
    return ChangeMapping(Output(), Attributes(), [mode](qel::Mapping& mapping) {
        const int before = mapping.Mode();
        return mapping.SetMode(mode) ? before : 0;
    });
}

int CDC::GetMapMode() const { return m_pAttributes ? m_pAttributes->State().mapping.Mode() : 0; }

CPoint CDC::SetViewportOrg(int x, int y) {
    return ExchangeMapping(Output(), Attributes(), &qel::Mapping::ViewportOrigin, &qel::Mapping::SetViewportOrigin,
                           CPoint(x, y));
}

CSize CDC::SetViewportExt(int cx, int cy) {
    return ExchangeMapping(Output(), Attributes(), &qel::Mapping::ViewportExtent, &qel::Mapping::SetViewportExtent,
                           CSize(cx, cy));
}

CPoint CDC::SetWindowOrg(int x, int y) {
    return ExchangeMapping(Output(), Attributes(), &qel::Mapping::WindowOrigin, &qel::Mapping::SetWindowOrigin,
                           CPoint(x, y));
}

CSize CDC::SetWindowExt(int cx, int cy) {
    return ExchangeMapping(Output(), Attributes(), &qel::Mapping::WindowExtent, &qel::Mapping::SetWindowExtent,
                           CSize(cx, cy));
}

CPoint CDC::GetViewportOrg() const { return m_pAttributes ? m_pAttributes->State().mapping.ViewportOrigin() : POINT(); }

CSize CDC::GetViewportExt() const { return m_pAttributes ? m_pAttributes->State().mapping.ViewportExtent() : SIZE(); }

CPoint CDC::GetWindowOrg() const { return m_pAttributes ? m_pAttributes->State().mapping.WindowOrigin() : POINT(); }

CSize CDC::GetWindowExt() const { return m_pAttributes ? m_pAttributes->State().mapping.WindowExtent() : SIZE(); }

void CDC::LPtoDP(POINT* points, int count) const {
    if (!m_pAttributes || points == nullptr) return;
    for (int i = 0; i < count; ++i) points[i] = m_pAttributes->State().mapping.ToDevice(points[i]);
}

void CDC::LPtoDP(RECT* rect) const {
    if (rect == nullptr) return;
    POINT corners[] = {{rect->left, rect->top}, {rect->right, rect->bottom}};
    LPtoDP(corners, 2);
    *rect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

void CDC::DPtoLP(POINT* points, int count) const {
    if (!m_pAttributes || points == nullptr) return;
    for (int i = 0; i < count; ++i) points[i] = m_pAttributes->State().mapping.ToLogical(points[i]);
}

void CDC::DPtoLP(RECT* rect) const {
    if (rect == nullptr) return;
    POINT corners[] = {{rect->left, rect->top}, {rect->right, rect->bottom}};
    DPtoLP(corners, 2);
    *rect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

int CDC::SelectClipRgn(CRgn* region) {
    if (!m_pOutput) return 0;
    if (region == nullptr) {
        m_pOutput->Change().clip.reset();
        return SIMPLEREGION;
    }
    const auto object = qel::FindObject<qel::RegionObject>(region->GetSafeHandle());
    if (!object) return 0;
    m_pOutput->Change().clip = object->box;
    return KindOf(object->box);
}

int CDC::GetClipBox(RECT* box) const {
    if (!m_pOutput || box == nullptr) return 0;
    const qel::DrawState& state = m_pOutput->State();
    CRect clip(0, 0, m_pOutput->DeviceCaps(HORZRES), m_pOutput->DeviceCaps(VERTRES));
    if (state.clip) clip.IntersectRect(clip, *state.clip);
    const POINT topLeft = state.mapping.ToLogical({clip.left, clip.top});
    const POINT bottomRight = state.mapping.ToLogical({clip.right, clip.bottom});
    *box = {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
    return KindOf(clip);
}

int CDC::IntersectClipRect(int left, int top, int right, int bottom) {
    if (!m_pOutput) return 0;
    CRect clip = m_pOutput->ToDevice({left, top, right, bottom});
    if (const std::optional<CRect>& before = m_pOutput->State().clip) clip.IntersectRect(clip, *before);
    m_pOutput->Change().clip = clip;
    return KindOf(clip);
}

CPoint CDC::MoveTo(int x, int y) {
    if (!m_pOutput) return CPoint();
    const CPoint before = m_pOutput->State().position;
    m_pOutput->MoveTo({x, y});
    return before;
}

CPoint CDC::GetCurrentPosition() const { return m_pOutput ? m_pOutput->State().position : POINT(); }

BOOL CDC::LineTo(int x, int y) {
    if (!m_pOutput) return 0;
    m_pOutput->LineTo({x, y});
    return 1;
}

BOOL CDC::Polyline(const POINT* points, int count) {
    if (!m_pOutput || points == nullptr || count < 2) return 0;
    const POINT before = m_pOutput->State().position;
    m_pOutput->MoveTo(points[0]);
    m_pOutput->LinesTo({points + 1, static_cast<std::size_t>(count) - 1});
    m_pOutput->MoveTo(before);
    return 1;
}

BOOL CDC::PolylineTo(const POINT* points, int count) {
    if (!m_pOutput || points == nullptr || count < 1) return 0;
    m_pOutput->LinesTo({points, static_cast<std::size_t>(count)});
    return 1;
}

BOOL CDC::Rectangle(int left, int top, int right, int bottom) {
    if (!m_pOutput) return 0;
    m_pOutput->Rectangle({left, top, right, bottom});
    return 1;
}

BOOL CDC::Arc(int left, int top, int right, int bottom, int startX, int startY, int endX, int endY) {
    if (!m_pOutput) return 0;
    m_pOutput->Arc({left, top, right, bottom}, {startX, startY}, {endX, endY});
    return 1;
}

void CDC::FillRect(const RECT* rect, CBrush* brush) {
    LOGBRUSH description;
    if (!m_pOutput || rect == nullptr || brush == nullptr || !brush->GetLogBrush(&description)) return;
    m_pOutput->FillRect(*rect, description);
}

void CDC::FillSolidRect(const RECT* rect, COLORREF color) {
    SetBkColor(color);
    if (m_pOutput && rect != nullptr) m_pOutput->FillRect(*rect, {BS_SOLID, color, 0});
}

void CDC::InvertRect(const RECT* rect) {
    if (m_pOutput && rect != nullptr) m_pOutput->InvertRect(*rect);
}

BOOL CDC::BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY, DWORD operation) {
    qel::Operation running("CDC::BitBlt");
    if (source == nullptr || operation != SRCCOPY)
        return running.Failed(qel::FailureKind::kArgument, "", "no source, or not a copy");
    if (!m_pOutput || !source->m_pOutput) return running.Failed(qel::FailureKind::kState, "", "no device context");
    const BOOL isCopied = m_pOutput->Copy({x, y}, {width, height}, *source->m_pOutput, {sourceX, sourceY});
    return running.Ended(isCopied, qel::FailureKind::kState, "the source has no pixels");
}

COLORREF CDC::GetPixel(int x, int y) const {
    if (!m_pOutput) return kNoColor;
    const qel::PixelBuffer* const pixels = m_pOutput->Flushed().Pixels();
    const POINT at = m_pOutput->State().mapping.ToDevice({x, y});
    if (pixels == nullptr || at.x < 0 || at.y < 0 || at.x >= pixels->Width() || at.y >= pixels->Height())
        return kNoColor;
    const std::uint32_t pixel = pixels->Row(at.y)[at.x];
    return RGB(pixel >> 16, pixel >> 8, pixel);
}

COLORREF CDC::SetPixel(int x, int y, COLORREF color) { return SetPixelV(x, y, color) ? GetPixel(x, y) : kNoColor; }

BOOL CDC::SetPixelV(int x, int y, COLORREF color) {
    if (!m_pOutput) return 0;
    m_pOutput->FillDevicePixel(m_pOutput->State().mapping.ToDevice({x, y}), color);
    return 1;
}

BOOL CDC::TextOut(int x, int y, const char* text, int length) {
    if (!m_pOutput || text == nullptr) return 0;
    m_pOutput->TextOut({x, y}, TextOf(text, length));
    return 1;
}

BOOL CDC::ExtTextOut(int x, int y, UINT options, const RECT* rect, const char* text, UINT length, const int*) {
    if (!m_pOutput) return 0;
    if (rect != nullptr && (options & ETO_OPAQUE) != 0) {
        m_pOutput->FillRect(*rect, {BS_SOLID, m_pOutput->State().backColor, 0});
    }
    if (text == nullptr || length == 0) return 1;
    const std::optional<CRect> before = m_pOutput->State().clip;
    if ((options & ETO_CLIPPED) != 0) IntersectClipRect(rect);
    const BOOL result = TextOut(x, y, text, static_cast<int>(length));
    m_pOutput->Change().clip = before;
    return result;
}

int CDC::DrawText(const char* text, int length, RECT* rect, UINT format) {
    if (!m_pOutput || text == nullptr || rect == nullptr) return 0;
    CRect box(*rect);
    const int height = m_pOutput->DrawTextBox(TextOf(text, length), box, format);
    if ((format & DT_CALCRECT) != 0) *rect = box;
    return height;
}

CSize CDC::GetTextExtent(const char* text, int length) const {
    return m_pAttributes ? m_pAttributes->TextExtent(TextOf(text, length)) : CSize();
}

CSize CDC::GetOutputTextExtent(const CString& text) const { return m_pOutput ? m_pOutput->TextExtent(text) : CSize(); }

BOOL CDC::GetTextMetrics(TEXTMETRIC* metrics) const {
    if (!m_pAttributes || metrics == nullptr) return 0;
    *metrics = m_pAttributes->TextMetrics();
    return 1;
}

int CDC::StartDoc(const char* name) {
    return Step("CDC::StartDoc", m_pOutput, [&] { return m_pOutput->Flushed().StartDoc(name); });
}

int CDC::StartPage() {
    return Step("CDC::StartPage", m_pOutput, [&] { return m_pOutput->BeginPage(); });
}

int CDC::EndPage() {
    return Step("CDC::EndPage", m_pOutput, [&] { return m_pOutput->Flushed().EndPage(); });
}

int CDC::EndDoc() {
    return Step("CDC::EndDoc", m_pOutput, [&] { return m_pOutput->Flushed().EndDoc(); });
}

int CDC::AbortDoc() {
    return Step(
        "CDC::AbortDoc", m_pOutput, [&] { return m_pOutput->Flushed().AbortDoc(); }, "no document is open");
}
