#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// The terminator of a serial line, as settings store it and as people read it.
class QELLIB10_API CRSControlCode {
public:
    virtual ~CRSControlCode();

    /// Changes the stored form of @p text in place: "$0d" and "$0D" become "[CR]", "$0a" and "$0A" become "[LF]",
    /// everything else stays. An empty text becomes string 27010 of the library's own table ("None"), whatever tables
    /// the application has. Text of any length is converted completely.
    static void ConvertDisplay(CString& text);
};
