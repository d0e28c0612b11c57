#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// Texts that applications offer for choice: units of results and names of instrument models. They come from the string
/// tables, in the current language (qel::SetTableLanguage) and the process's code page, so a table of the application
/// that holds the same ids replaces them. Safe from any thread.
class QELLIB10_API CQELResource {
public:
    virtual ~CQELResource();

    /// Units have the ids from qel::kFirstUnitId on, without a gap.
    static int GetUnitCount();
    /// The unit's text, such as mol/L; the empty text for an @p id that is no unit's.
    static CString GetUnitText(UINT id);
    /// The first unit whose text is @p text, byte by byte; -1 when there is none.
    static int GetUnitID(const char* text);

    static int GetModelCount();
    /// The display name of model @p index (from 0); the empty text outside 0 to GetModelCount() - 1.
    static CString GetModelName(int index);
};
