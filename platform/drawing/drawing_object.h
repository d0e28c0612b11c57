#pragma once

#include <memory>
#include <variant>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/drawing/pixel_buffer.h"

class CGdiObject;

namespace qel {

/// Drawing objects as a context holds them: shared, so that an object deleted while it is selected can still be drawn
/// with.
struct PenObject {
    int style = PS_SOLID;
    int width = 1;  ///< logical units; 0: one device unit; negative: its absolute value
    COLORREF color = 0;
};
struct BrushObject {
    LOGBRUSH description{};
};
struct FontObject {
    LOGFONT description{};
};
struct RegionObject {
    CRect box;  ///< normalised; without area it hides everything
};
struct BitmapObject {
    std::shared_ptr<PixelBuffer> pixels;
};

using DrawingObject = std::variant<PenObject, BrushObject, FontObject, RegionObject, BitmapObject>;

/// Each handle has one object until it is deleted; a handle is never used twice. Any thread.
HGDIOBJ AddDrawingObject(DrawingObject object);
/// The object, or null if the handle is not ours, or no longer valid.
std::shared_ptr<const DrawingObject> FindDrawingObject(HGDIOBJ handle);
/// @return false for an unknown handle, and for a stock object
bool RemoveDrawingObject(HGDIOBJ handle);
/// A stock object; null for an unknown number.
HGDIOBJ StockObject(int number);

/// The framework object of a handle, so that a selection can return the one selected before.
void SetOwner(HGDIOBJ handle, CGdiObject* owner);
CGdiObject* FindOwner(HGDIOBJ handle);

/// The object as @p T, or null if the handle is unknown or of another kind. It keeps the whole object alive.
template <class T> std::shared_ptr<const T> FindObject(HGDIOBJ handle) {
    std::shared_ptr<const DrawingObject> found = FindDrawingObject(handle);
    const T* const object = found ? std::get_if<T>(found.get()) : nullptr;
    return object != nullptr ? std::shared_ptr<const T>(std::move(found), object) : nullptr;
}

}  // namespace qel
