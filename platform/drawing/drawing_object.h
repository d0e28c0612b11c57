#pragma once

#include <memory>
#include <variant>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/drawing/pixel_buffer.h"

class CGdiObject;

namespace qel {

/// Drawing objects as a context holds them: shared, so that one deleted while it is selected goes on drawing.
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

/// Every handle has one object until it is deleted; handles are never given twice. Any thread.
HGDIOBJ AddDrawingObject(DrawingObject object);
/// The object, or null when the handle is none of ours (any more).
std::shared_ptr<const DrawingObject> FindDrawingObject(HGDIOBJ handle);
/// @return false for a handle that is not known, and for one of the objects that are always there
bool RemoveDrawingObject(HGDIOBJ handle);
/// One of the objects that are always there; null for another number.
HGDIOBJ StockObject(int number);

/// The framework object that stands for a handle, so that a selection can give back the one that was selected before.
void SetOwner(HGDIOBJ handle, CGdiObject* owner);
CGdiObject* FindOwner(HGDIOBJ handle);

/// The object as @p T, or null when the handle is unknown or of another kind. It shares the life of the whole.
template <class T> std::shared_ptr<const T> FindObject(HGDIOBJ handle) {
    std::shared_ptr<const DrawingObject> found = FindDrawingObject(handle);
    const T* const object = found ? std::get_if<T>(found.get()) : nullptr;
    return object != nullptr ? std::shared_ptr<const T>(std::move(found), object) : nullptr;
}

}  // namespace qel
