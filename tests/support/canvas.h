#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "qellib10/platform/drawing/dc.h"

inline constexpr COLORREF kWhite = RGB(255, 255, 255), kRed = RGB(255, 0, 0);

/// A white picture and what is drawn on it.
struct Canvas {
    explicit Canvas(int width = 40, int height = 30) {
        EXPECT_TRUE(dc.CreateCompatibleDC(nullptr));
        EXPECT_TRUE(bitmap.CreateBitmap(width, height, 1, 32, nullptr));
        dc.SelectObject(&bitmap);
        const RECT all{0, 0, width, height};
        dc.FillSolidRect(&all, kWhite);
    }

    /// The box of all pixels for whose color @p wanted holds; empty without one.
    template <class Wanted> CRect Box(Wanted wanted) {
        BITMAP size;
        bitmap.GetBitmap(&size);
        CRect box(size.bmWidth, size.bmHeight, 0, 0);
        for (int y = 0; y < size.bmHeight; ++y) {
            for (int x = 0; x < size.bmWidth; ++x) {
                if (!wanted(At(x, y))) continue;
                box = CRect(std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                            std::max(box.bottom, y + 1));
            }
        }
        return box.IsRectEmpty() ? CRect() : box;
    }
    CRect Ink() {
        return Box([](COLORREF color) { return color != kWhite; });
    }
    COLORREF At(int x, int y) {
        const CPoint origin = dc.GetViewportOrg();
        return dc.GetPixel(x - origin.x, y - origin.y);
    }
    std::vector<DWORD> Pixels() {
        BITMAP size;
        bitmap.GetBitmap(&size);
        std::vector<DWORD> pixels(static_cast<std::size_t>(size.bmWidth) * static_cast<std::size_t>(size.bmHeight));
        bitmap.GetBitmapBits(static_cast<DWORD>(pixels.size() * 4), pixels.data());
        return pixels;
    }
    long Count(COLORREF color) {
        const DWORD pixel = GetRValue(color) << 16U | GetGValue(color) << 8U | GetBValue(color);
        return std::ranges::count(Pixels(), pixel);
    }
    std::string Row(int y, int from, int to) {
        std::string row;
        for (int x = from; x < to; ++x) row += At(x, y) == kWhite ? '.' : At(x, y) == kRed ? 'r' : '#';
        return row;
    }

    CDC dc;
    CBitmap bitmap;
};

inline void ExpectBox(const CRect& box, const CRect& expected) {
    EXPECT_TRUE(box == expected) << box.left << ' ' << box.top << ' ' << box.right << ' ' << box.bottom;
}
