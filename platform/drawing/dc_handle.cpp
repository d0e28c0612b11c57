#include "qellib10/platform/drawing/bitmap_surface.h"
#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/operation.h"

HDC CreateCompatibleDC(HDC dc) {
    qel::Operation operation("CreateCompatibleDC");
    SIZE dotsPerInch{qel::kScreenDotsPerInch, qel::kScreenDotsPerInch};
    if (dc != nullptr) {
        const auto model = qel::FindDeviceContext(dc);
        if (!model) return operation.Ended<HDC>(nullptr, qel::FailureKind::kArgument, "not a device context");
        dotsPerInch = {model->DeviceCaps(LOGPIXELSX), model->DeviceCaps(LOGPIXELSY)};
    }
    return operation.Ended(
        qel::AddDeviceContext(std::make_shared<qel::DeviceContext>(std::make_unique<qel::BitmapSurface>(dotsPerInch))));
}

BOOL DeleteDC(HDC dc) { return qel::RemoveDeviceContext(dc); }

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    const auto context = qel::FindDeviceContext(dc);
    return context ? context->Select(object) : nullptr;
}

int GetDeviceCaps(HDC dc, int index) {
    const auto context = qel::FindDeviceContext(dc);
    return context ? context->DeviceCaps(index) : 0;
}

BOOL GetViewportOrgEx(HDC dc, POINT* origin) {
    const auto context = qel::FindDeviceContext(dc);
    if (!context || origin == nullptr) return 0;
    *origin = context->State().mapping.ViewportOrigin();
    return 1;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    CDC context;
    if (!context.Attach(dc)) return 0xFFFFFFFF;
    const COLORREF before = context.SetBkColor(color);
    context.Detach();
    return before;
}

BOOL ExtTextOut(HDC dc, int x, int y, UINT options, const RECT* rect, const char* text, UINT length,
                const int* spacing) {
    CDC context;
    if (!context.Attach(dc)) return 0;
    const BOOL result = context.ExtTextOut(x, y, options, rect, text, length, spacing);
    context.Detach();
    return result;
}
