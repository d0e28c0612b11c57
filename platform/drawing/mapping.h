#pragma once

#include <algorithm>
#include <limits>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/drawing/shape.h"

namespace qel {

/// The nearest 32-bit number.
inline LONG Kept(LONGLONG value) noexcept {
    return static_cast<LONG>(
        std::clamp<LONGLONG>(value, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

/// Maps logical coordinates to the device: device = (logical - window origin) * viewport extent / window extent +
/// viewport origin, rounded to nearest and limited to 32 bits.
class Mapping {
public:
    explicit Mapping(const SIZE& dotsPerInch) : m_dotsPerInch(dotsPerInch) {}

    int Mode() const noexcept { return m_nMode; }
    /// @return false for an unknown mode
    bool SetMode(int mode) noexcept;

    POINT WindowOrigin() const noexcept { return m_windowOrigin; }
    POINT ViewportOrigin() const noexcept { return m_viewportOrigin; }
    SIZE WindowExtent() const noexcept { return m_windowExtent; }
    SIZE ViewportExtent() const noexcept { return m_viewportExtent; }
    void SetWindowOrigin(const POINT& origin) noexcept;
    void SetViewportOrigin(const POINT& origin) noexcept;
    /// Extents are used only in the two free modes, and are never 0. @return whether it was set
    bool SetWindowExtent(const SIZE& extent) noexcept;
    bool SetViewportExtent(const SIZE& extent) noexcept;

    // Points by value, in a register: reading a point that was just stored as two halves is slow.
    POINT ToDevice(POINT logical) const noexcept { return m_isShift ? Shifted(logical) : Scaled(logical); }
    /// The same between pixels, not rounded.
    ShapePoint ToExactDevice(const ShapePoint& logical) const noexcept;
    /// Device units for a logical unit, not negative: of both directions the geometric mean.
    double UnitLength() const noexcept;
    /// Whether ToDevice changes nothing.
    bool IsSame() const noexcept {
        return m_isShift && m_windowOrigin.x == m_viewportOrigin.x && m_windowOrigin.y == m_viewportOrigin.y;
    }
    POINT ToLogical(POINT device) const noexcept;
    /// A length in device units, not negative.
    int WidthToDevice(int width) const noexcept;
    int HeightToDevice(int height) const noexcept;
    /// A length in device units as logical units, not negative.
    int WidthToLogical(int width) const noexcept;
    int HeightToLogical(int height) const noexcept;

private:
    POINT Shifted(POINT logical) const noexcept {
        return {Kept(LONGLONG{logical.x} - m_windowOrigin.x + m_viewportOrigin.x),
                Kept(LONGLONG{logical.y} - m_windowOrigin.y + m_viewportOrigin.y)};
    }
    POINT Scaled(POINT logical) const noexcept;
    void KeepShape() noexcept;
    void Changed() noexcept;

    SIZE m_dotsPerInch;
    int m_nMode = MM_TEXT;
    POINT m_windowOrigin{0, 0};
    POINT m_viewportOrigin{0, 0};
    SIZE m_windowExtent{1, 1};
    SIZE m_viewportExtent{1, 1};
    bool m_isShift = true;  // extents of 1: in this common case a sum is enough
};

}  // namespace qel
