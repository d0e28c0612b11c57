#pragma once

#include "qellib10/platform/text/code_page.h"

/// Puts the process into a code page for the length of a scope.
class CodePageScope {
public:
    explicit CodePageScope(UINT page) : m_previous(qel::CodePage()) { qel::SetCodePage(page); }
    ~CodePageScope() { qel::SetCodePage(m_previous); }
    CodePageScope(const CodePageScope&) = delete;
    CodePageScope& operator=(const CodePageScope&) = delete;

private:
    UINT m_previous;
};
