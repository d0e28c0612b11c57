#include "qellib10/graph/back_buffer_dc.h"

#include <string_view>
#include <utility>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/operation.h"

namespace {

constexpr std::string_view kNotCreated = "it was not created";

}  // namespace

int CBackBufferDC::Create(int width, int height, HDC target) {
    qel::Operation operation("CBackBufferDC::Create");
    if (m_hMemDC != nullptr) return operation.Failed(qel::FailureKind::kState, "", "it was created already");
    m_hMemDC = ::CreateCompatibleDC(target);
    return operation.Ended(m_hMemDC != nullptr && Resize(width, height) ? 1 : 0);
}

int CBackBufferDC::Resize(int width, int height) {
    qel::Operation operation("CBackBufferDC::Resize");
    if (m_hMemDC == nullptr) return operation.Failed(qel::FailureKind::kState, "", kNotCreated);
    DropBitmap();
    m_hBitmap = ::CreateBitmap(width, height, 1, static_cast<UINT>(::GetDeviceCaps(m_hMemDC, BITSPIXEL)), nullptr);
    if (m_hBitmap == nullptr) return operation.Ended(0);
    m_hOldBitmap = static_cast<HBITMAP>(::SelectObject(m_hMemDC, m_hBitmap));
    return operation.Ended(1);
}

int CBackBufferDC::Destroy() {
    if (m_hMemDC == nullptr) return 0;
    DropBitmap();
    return ::DeleteDC(std::exchange(m_hMemDC, nullptr));
}

void CBackBufferDC::DropBitmap() {
    if (m_hBitmap == nullptr) return;
    ::SelectObject(m_hMemDC, std::exchange(m_hOldBitmap, nullptr));
    ::DeleteObject(std::exchange(m_hBitmap, nullptr));
}

CSize CBackBufferDC::GetSize() const {
    BITMAP bitmap;
    if (::GetObject(m_hBitmap, sizeof(bitmap), &bitmap) == 0) return {};
    return {bitmap.bmWidth, bitmap.bmHeight};
}

int CBackBufferDC::FillSolidRect(RECT* rect, unsigned long color) {
    qel::Operation operation("CBackBufferDC::FillSolidRect");
    if (m_hMemDC == nullptr) return operation.Failed(qel::FailureKind::kState, "", kNotCreated);
    const COLORREF before = ::SetBkColor(m_hMemDC, static_cast<COLORREF>(color));
    ::ExtTextOut(m_hMemDC, 0, 0, ETO_OPAQUE, rect, nullptr, 0, nullptr);
    ::SetBkColor(m_hMemDC, before);
    return operation.Ended(1);
}
