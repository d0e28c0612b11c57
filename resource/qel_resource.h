#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// Texts that applications offer for selection: units of results and names of instrument models. They come from the
/// string tables, in the current language (qel::SetTableLanguage) and the process's code page; an application's table
/// with the same ids replaces them. Safe from any thread.
class QELLIB10_API CQELResource {
public:
    virtual ~CQELResource();

    /// The ids of units start at qel::kFirstUnitId, without gaps.
    static int GetUnitCount();
    /// The unit's text, for example mol/L; empty if @p id is not a unit's.
    static CString GetUnitText(UINT id);
    /// The first unit whose text is @p text, byte by byte; -1 if there is none.
    static int GetUnitID(const char* text);

    static int GetModelCount();
    /// The display name of model @p index (from 0); empty outside 0 to GetModelCount() - 1.
    static CString GetModelName(int index);
};
