#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"

/// A picture off the screen with a context to draw on it. An application draws here and copies to the screen, so that
/// nobody sees half a drawing.
///
/// An assigned or copied object has the same handles, on purpose: only one of them is to be destroyed, and handles that
/// the other still has are refused from then on.
class QELLIB10_API CBackBufferDC {
public:
    CBackBufferDC() = default;
    CBackBufferDC(const CBackBufferDC&) = default;
    CBackBufferDC& operator=(const CBackBufferDC&) = default;
    ~CBackBufferDC() { Destroy(); }

    /// A context like @p target (null: like the screen) with a picture of that size.
    /// @return 0 when there is a context already or none can be made, else as Resize
    int Create(int width, int height, HDC target);
    /// A new picture, black, in place of the old one.
    /// @return 0 without a context, or when there can be no picture of that size (1 to 32767 a side); the old one is
    ///   gone then, too
    int Resize(int width, int height);
    /// @return 0 without a context
    int Destroy();

    CSize GetSize() const;  ///< 0, 0 without a picture
    /// Fills without changing the background colour. @return 0 without a context
    int FillSolidRect(RECT* rect, unsigned long color);

    operator HDC() const { return m_hMemDC; }

private:
    void DropBitmap();

    HDC m_hMemDC = nullptr;
    HBITMAP m_hBitmap = nullptr;
    HBITMAP m_hOldBitmap = nullptr;
};
