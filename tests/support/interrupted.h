#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "environment_scope.h"
#include "failing_calls.h"
#include "temp_folder.h"
#include "test.h"

// Operations that are interrupted. Each system call of an operation fails once, in each way that it can: the operation
// may still succeed; else it returns its failure, and what it works on is as it was or as it was to be. And the power
// fails after each call. Nothing else is left either time.

/// A folder with the files that an operation finds, in memory: there a flush costs nothing.
class Place : public TempFolder {
public:
    Place();

    enum class About { kNames, kSizes, kBytes };
    /// Names and access rights of the files, and what is asked for about each, but for the file @p ignored.
    std::string Files(About about, const std::string& ignored = "") const;

private:
    EnvironmentScope m_registry{"QELLIB10_REGISTRY_DIR", Posix().c_str()};
    EnvironmentScope m_state{"QELLIB10_STATE_DIR", Posix().c_str()};
    EnvironmentScope m_temporary{"TMPDIR", Posix().c_str()};

public:
    const CString a = Path("a"), b = Path("b"), c = Path("c"), tree = Path("x/y");  // a: "new", b: "former"
};

using At = const Place&;

inline std::string Bytes(At at) { return at.Files(Place::About::kBytes); }
inline std::string BytesButA(At at) { return at.Files(Place::About::kBytes, "a"); }
inline std::string Sizes(At at) { return at.Files(Place::About::kSizes); }
inline std::string Names(At at) { return at.Files(Place::About::kNames); }
inline void Nothing(At) {}

/// What a power cut leaves.
enum class Cut {
    kNewOnceDone,   // the old or the new, and the new once the operation has returned
    kOldOrNew,      // that nothing is flushed may undo it
    kOnlyOnceDone,  // written in place: anything, but the new once the operation has returned
    kAnything,
};

struct Operation {
    const char* name;
    std::function<int(At)> run;            // 0 or CFileException: it has failed
    std::function<std::string(At)> state;  // what is there, as far as that must be whole
    std::function<void(At)> prepare = Nothing;
    bool mayBePart = false;  // it goes on from where it was: after a failure a part may be done
    Cut cut = Cut::kNewOnceDone;
    std::function<std::string(At)> stateAfterCut = state;
};

void PrintTo(const Operation& operation, std::ostream* out);
inline std::string NameOf(const testing::TestParamInfo<Operation>& operation) { return operation.param.name; }
/// Those that a power cut must not harm, but for those of the kind @p without.
std::vector<Operation> WithPromise(std::span<const Operation> operations, Cut without = Cut::kAnything);

class Interrupted : public testing::TestWithParam<Operation> {
protected:
    static void SetUpTestSuite();
    void SetUp() override;
    bool Run(const Place& place) const;

    decltype(&FailCall) m_fail = nullptr;
    decltype(&FailCallsFrom) m_failFrom = nullptr;
    decltype(&CallsLeft) m_left = nullptr;
    decltype(&WatchDisk) m_watch = nullptr;
};
class FailingCalls : public Interrupted {};
class DeadDisks : public Interrupted {};
class PowerCuts : public Interrupted {};
