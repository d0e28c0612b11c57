#pragma once

#include "qellib10/platform/printing/print_dialog.h"

/// What an application's loop over pages, on paper or as a preview, tells the code that draws one.
struct QELLIB10_API CPrintInfo {
    CPrintInfo();
    ~CPrintInfo();
    CPrintInfo(const CPrintInfo&) = delete;
    CPrintInfo& operator=(const CPrintInfo&) = delete;

    CPrintDialog* m_pPD;           ///< printer and settings; owned, deleted with this object
    BOOL m_bPreview = 0;           ///< the pages are shown, not printed
    BOOL m_bContinuePrinting = 1;  ///< 0 ends the loop
    UINT m_nCurPage = 1;           ///< the page to be drawn, counted from 1
    CRect m_rectDraw;              ///< the drawable area of the page
};
