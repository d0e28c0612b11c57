#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"

/// An off-screen picture with a context to draw on it. An application draws here and copies the result to the screen,
/// so that half a drawing is never visible.
///
/// An assigned or copied object has the same handles, on purpose: destroy only one of them; the handles that the other
/// still has are refused from then on.
class QELLIB10_API CBackBufferDC {
public:
    CBackBufferDC() = default;
    CBackBufferDC(const CBackBufferDC&) = default;
    CBackBufferDC& operator=(const CBackBufferDC&) = default;
    ~CBackBufferDC() { Destroy(); }

    /// A context like @p target (null: like the screen) with a picture of that size.
    /// @return 0 if there already is a context or none can be created, else like Resize
    int Create(int width, int height, HDC target);
    /// Replaces the picture by a new, black one.
    /// @return 0 without a context, or if a picture of that size is impossible (1 to 32767 per side); the old one is
    /// then deleted too
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
