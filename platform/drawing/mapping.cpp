#include "qellib10/platform/drawing/mapping.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace qel {
namespace {

// Rounded to nearest, halves away from zero; extents are never 0. A distance beyond 32 bits counts as the longest one.
LONGLONG Scale(LONGLONG distance, LONG numerator, LONG denominator) noexcept {
    LONGLONG product = LONGLONG{Kept(distance)} * numerator;
    LONGLONG divisor = denominator;
    if (divisor < 0) {
        product = -product;
        divisor = -divisor;
    }
    return (product < 0 ? product - divisor / 2 : product + divisor / 2) / divisor;
}

// Logical units per inch of the modes with a fixed unit.
int UnitsPerInch(int mode) noexcept {
    switch (mode) {
        case MM_LOMETRIC:
            return 254;
        case MM_HIMETRIC:
            return 2540;
        case MM_LOENGLISH:
            return 100;
        case MM_HIENGLISH:
            return 1000;
        case MM_TWIPS:
            return 1440;
        default:
            return 0;
    }
}

}  // namespace

bool Mapping::SetMode(int mode) noexcept {
    if (mode < MM_TEXT || mode > MM_ANISOTROPIC) return false;
    if (mode == MM_TEXT) {
        m_windowExtent = m_viewportExtent = {1, 1};
    } else if (const int units = UnitsPerInch(mode); units != 0) {
        m_windowExtent = {units, units};
        m_viewportExtent = {m_dotsPerInch.cx, -m_dotsPerInch.cy};
    } else if (mode == MM_ISOTROPIC && m_nMode != MM_ISOTROPIC) {
        // Starts with tenths of a millimetre, like the framework.
        m_windowExtent = {254, 254};
        m_viewportExtent = {m_dotsPerInch.cx, -m_dotsPerInch.cy};
    }
    m_nMode = mode;
    Changed();
    return true;
}

void Mapping::SetWindowOrigin(const POINT& origin) noexcept {
    m_windowOrigin = origin;
    Changed();
}

void Mapping::SetViewportOrigin(const POINT& origin) noexcept {
    m_viewportOrigin = origin;
    Changed();
}

bool Mapping::SetWindowExtent(const SIZE& extent) noexcept {
    if (m_nMode < MM_ISOTROPIC || extent.cx == 0 || extent.cy == 0) return false;
    m_windowExtent = extent;
    KeepShape();
    Changed();
    return true;
}

bool Mapping::SetViewportExtent(const SIZE& extent) noexcept {
    if (m_nMode < MM_ISOTROPIC || extent.cx == 0 || extent.cy == 0) return false;
    m_viewportExtent = extent;
    KeepShape();
    Changed();
    return true;
}

// In the mode of equal units the longer of both scales is adjusted.
void Mapping::KeepShape() noexcept {
    if (m_nMode != MM_ISOTROPIC) return;
    const double across = std::abs(double(m_viewportExtent.cx) / m_windowExtent.cx);
    const double down = std::abs(double(m_viewportExtent.cy) / m_windowExtent.cy);
    const auto shrunk = [](LONG extent, double by) {
        const LONG length = std::max(1, Kept(std::llround(std::abs(double(extent)) * by)));
        return extent < 0 ? -length : length;
    };
    if (across > down) m_viewportExtent.cx = shrunk(m_viewportExtent.cx, down / across);
    if (down > across) m_viewportExtent.cy = shrunk(m_viewportExtent.cy, across / down);
}

void Mapping::Changed() noexcept {
    m_isShift =
        m_windowExtent.cx == 1 && m_windowExtent.cy == 1 && m_viewportExtent.cx == 1 && m_viewportExtent.cy == 1;
}

POINT Mapping::Scaled(POINT logical) const noexcept {
    return {Kept(Scale(LONGLONG{logical.x} - m_windowOrigin.x, m_viewportExtent.cx, m_windowExtent.cx) +
                 m_viewportOrigin.x),
            Kept(Scale(LONGLONG{logical.y} - m_windowOrigin.y, m_viewportExtent.cy, m_windowExtent.cy) +
                 m_viewportOrigin.y)};
}

ShapePoint Mapping::ToExactDevice(const ShapePoint& logical) const noexcept {
    return {(logical.x - m_windowOrigin.x) * m_viewportExtent.cx / m_windowExtent.cx + m_viewportOrigin.x,
            (logical.y - m_windowOrigin.y) * m_viewportExtent.cy / m_windowExtent.cy + m_viewportOrigin.y};
}

double Mapping::UnitLength() const noexcept {
    return std::sqrt(
        std::fabs(double(m_viewportExtent.cx) / m_windowExtent.cx * m_viewportExtent.cy / m_windowExtent.cy));
}

POINT Mapping::ToLogical(POINT device) const noexcept {
    return {
        Kept(Scale(LONGLONG{device.x} - m_viewportOrigin.x, m_windowExtent.cx, m_viewportExtent.cx) + m_windowOrigin.x),
        Kept(Scale(LONGLONG{device.y} - m_viewportOrigin.y, m_windowExtent.cy, m_viewportExtent.cy) +
             m_windowOrigin.y)};
}

int Mapping::WidthToDevice(int width) const noexcept {
    return Kept(std::abs(Scale(width, m_viewportExtent.cx, m_windowExtent.cx)));
}

int Mapping::HeightToDevice(int height) const noexcept {
    return Kept(std::abs(Scale(height, m_viewportExtent.cy, m_windowExtent.cy)));
}

int Mapping::WidthToLogical(int width) const noexcept {
    return Kept(std::abs(Scale(width, m_windowExtent.cx, m_viewportExtent.cx)));
}

int Mapping::HeightToLogical(int height) const noexcept {
    return Kept(std::abs(Scale(height, m_windowExtent.cy, m_viewportExtent.cy)));
}

}  // namespace qel
