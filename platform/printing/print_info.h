#pragma once

#include "qellib10/platform/printing/print_dialog.h"

/// What an application's page loop, on paper or as a preview, passes to the code that draws a page.
struct QELLIB10_API CPrintInfo {
    CPrintInfo();
    ~CPrintInfo();
    CPrintInfo(const CPrintInfo&) = delete;
    CPrintInfo& operator=(const CPrintInfo&) = delete;

    UINT GetMinPage() const { return m_nMinPage; }  ///< the first page of the document
    void SetMinPage(UINT page) { m_nMinPage = page; }
    UINT GetMaxPage() const { return m_nMaxPage; }  ///< the last page; 0xFFFF if not known in advance
    void SetMaxPage(UINT page) { m_nMaxPage = page; }
    UINT GetFromPage() const { return m_nMinPage; }  ///< the first page to draw: dialogs offer all pages
    UINT GetToPage() const { return m_nMaxPage; }

    CPrintDialog* m_pPD;           ///< printer and settings; owned, deleted with this object
    BOOL m_bPreview = 0;           ///< the pages are shown, not printed
    BOOL m_bDirect = 0;            ///< without a dialog
    BOOL m_bContinuePrinting = 1;  ///< 0 ends the loop
    UINT m_nCurPage = 1;           ///< the page to be drawn, counted from 1
    UINT m_nNumPreviewPages = 0;   ///< shown next to each other; 0: the application decides
    CString m_strPageDesc;         ///< the text that shows the page number
    void* m_lpUserData = nullptr;  ///< for the application
    CRect m_rectDraw;              ///< the drawable area of the page

private:
    UINT m_nMinPage = 1;
    UINT m_nMaxPage = 0xFFFF;
};
