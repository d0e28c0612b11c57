#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qellib10/graph/qel_graph.h"

inline constexpr COLORREF kWhite = RGB(255, 255, 255), kRed = RGB(255, 0, 0);

/// A white picture to draw on.
struct Canvas {
    explicit Canvas(int width = 400, int height = 300) {
        EXPECT_TRUE(dc.CreateCompatibleDC(nullptr));
        EXPECT_TRUE(bitmap.CreateBitmap(width, height, 1, 32, nullptr));
        dc.SelectObject(&bitmap);
        const RECT all{0, 0, width, height};
        dc.FillSolidRect(&all, kWhite);
    }
    std::vector<DWORD> Pixels() {
        BITMAP size;
        bitmap.GetBitmap(&size);
        std::vector<DWORD> pixels(static_cast<std::size_t>(size.bmWidth) * static_cast<std::size_t>(size.bmHeight));
        dc.GetPixel(0, 0);  // all is drawn
        bitmap.GetBitmapBits(static_cast<DWORD>(pixels.size() * 4), pixels.data());
        return pixels;
    }
    int Count(COLORREF color) {
        const DWORD pixel = GetRValue(color) << 16U | GetGValue(color) << 8U | GetBValue(color);
        return static_cast<int>(std::ranges::count(Pixels(), pixel));
    }

    CDC dc;
    CBitmap bitmap;
};

/// A graph without texts whose area can be seen, and its mode set.
struct OpenGraph : CQelGraph {
    explicit OpenGraph(int coordinateMode = 0) {
        m_nCoordinateMode = coordinateMode;
        InitializeParameter(-1);
        SetDrawSize(400, 300);
        SetXLabelViewMode(0, 0);
        SetYLabelViewMode(0, 0);
    }
    using CQelGraph::BarDraw;
    using CQelGraph::DataToXPixel;
    using CQelGraph::DataToYPixel;
    using CQelGraph::GetDrawArea;
    using CQelGraph::GetValueFromPos;
    using CQelGraph::LineDraw;
    using CQelGraph::m_rectDrawArea;
    using CQelGraph::RecorderDrawX;
};
