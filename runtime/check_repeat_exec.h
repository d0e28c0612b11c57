#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// Tells an application whether another instance of it runs already.
///
///     CCheckRepeatExec instance;  // lives as long as the application
///     if (instance.CheckRepeatExecute("titrator")) return 0;
///
/// The mark of an instance is a mutex of that name; that it exists counts, nobody ever owns it. Names are as for
/// CMemoryMappedFile. A killed instance leaves no mark. The mark is the process's own: a program that goes on in a
/// forked child asks there. Copies share the mark, and the first of them to go takes it away.
class QELLIB10_API CCheckRepeatExec {
public:
    CCheckRepeatExec() = default;
    CCheckRepeatExec(const CCheckRepeatExec&) = default;
    CCheckRepeatExec& operator=(const CCheckRepeatExec&) = default;
    /// Takes back the mark of the last name that was free, unless another process has it too.
    virtual ~CCheckRepeatExec();

    /// 1 when an instance, this process included, has the mark @p name, and also when that cannot be known: nobody is
    /// the first whose mark cannot be set, as for a name that cannot be one. Otherwise
    /// 0, and the mark is set; it stays until the process ends when a further name is asked for. Two instances that
    /// start at the same moment may both get 0; so does everybody for null and the empty name, which mark nothing.
    int CheckRepeatExecute(const char* name);

private:
    HANDLE m_hMutex = nullptr;
};
