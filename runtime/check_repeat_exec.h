#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// Finds out whether another instance of an application is running. Two instances that drive one instrument, or write
/// one set of files, disturb each other; the second one asks here and ends.
///
/// @code
/// static CCheckRepeatExec instance;  // lives as long as the application
/// if (instance.CheckRepeatExecute("titrator")) return;
/// @endcode
///
/// An instance is marked by a mutex of that name; only its existence matters, nobody ever owns it. Names are as for
/// CMemoryMappedFile. A killed instance leaves no mark. The mark belongs to the process: a program that continues in a
/// forked child must call this in the child. Copies share the mark, and the first of them to be destroyed removes it.
class QELLIB10_API CCheckRepeatExec {
public:
    CCheckRepeatExec() = default;
    CCheckRepeatExec(const CCheckRepeatExec&) = default;
    CCheckRepeatExec& operator=(const CCheckRepeatExec&) = default;
    /// Removes the mark of the last name that was free, unless another process has it too.
    virtual ~CCheckRepeatExec();

    /// 1 if an instance, including this process, has the mark @p name, and also if that cannot be determined: nobody is
    /// the first if its mark cannot be set, for example for an invalid name or without memory. Otherwise 0, and the
    /// mark is set; if another name is checked later, it stays until the process ends. Null and the empty name always
    /// give 0 and mark nothing.
    ///
    /// Kept: two instances that start at the same moment may both get 0, because the mark is looked for first and set
    /// then. Where two must never run, open a file with CFile::modeCreate, modeNoTruncate, modeReadWrite and
    /// shareExclusive, and keep it open: that is one step, so exactly one succeeds.
    int CheckRepeatExecute(const char* name);

private:
    HANDLE m_hMutex = nullptr;
};
