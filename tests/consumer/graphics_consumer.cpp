// What a program does that makes pictures without a window: a graph in memory.
#include <qellib10/graphics.h>

int main() {
    CDC dc;
    CBitmap picture;
    if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(200, 100, 1, 32, nullptr)) return 1;
    dc.SelectObject(&picture);
    CQelGraph graph;
    graph.SetDrawSize(200, 100);
    const CRect mark({190, 0}, CSize(10, 10));
    const bool isDrawn = graph.GraphDraw(&dc, 0, 0);
    dc.FillSolidRect(&mark, RGB(192, 0, 0));
    return isDrawn && dc.GetPixel(195, 5) == RGB(192, 0, 0) ? 0 : 1;
}
