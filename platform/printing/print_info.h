#pragma once

#include "qellib10/platform/printing/print_dialog.h"

/// What an application's loop over pages, on paper or as a preview, tells the code that draws one.
struct QELLIB10_API CPrintInfo {
    CPrintInfo();
    ~CPrintInfo();
    CPrintInfo(const CPrintInfo&) = delete;
    CPrintInfo& operator=(const CPrintInfo&) = delete;

    UINT GetMinPage() const { return m_nMinPage; }  ///< the first page that there is
    void SetMinPage(UINT page) { m_nMinPage = page; }
    UINT GetMaxPage() const { return m_nMaxPage; }  ///< the last one; 0xFFFF when that is not known beforehand
    void SetMaxPage(UINT page) { m_nMaxPage = page; }
    UINT GetFromPage() const { return m_nMinPage; }  ///< the first one to be drawn: dialogs offer all pages
    UINT GetToPage() const { return m_nMaxPage; }

    CPrintDialog* m_pPD;           ///< printer and settings; owned, deleted with this object
    BOOL m_bPreview = 0;           ///< the pages are shown, not printed
    BOOL m_bDirect = 0;            ///< without a dialog
    BOOL m_bContinuePrinting = 1;  ///< 0 ends the loop
    UINT m_nCurPage = 1;           ///< the page to be drawn, counted from 1
    UINT m_nNumPreviewPages = 0;   ///< shown side by side; 0: the application's choice
    CString m_strPageDesc;         ///< how a page's number is shown
    void* m_lpUserData = nullptr;  ///< the application's
    CRect m_rectDraw;              ///< the drawable area of the page

private:
    UINT m_nMinPage = 1;
    UINT m_nMaxPage = 0xFFFF;
};
