#include "../support/interrupted.h"

#include "qellib10/print/queue_data.h"

namespace {

int Save(At at, int lines) {
    CQelPrintJobQueueData job;
    for (int i = 0; i < lines; ++i) job.AddMillimetreCommandLine({i, 0, 2 * i, 100});
    return job.SaveJobFile(at.Path("job"));
}
int Load(At at) {
    CQelPrintJobQueueData job;
    const int loaded = job.LoadJobFile(at.Path("job"));
    EXPECT_EQ(job.GetBlock().GetCommandCount(), loaded != 0 ? 40 : 0);
    return loaded;
}
void Old(At at) { Save(at, 40); }

const Operation kOperations[] = {
    {"JobSave", [](At at) { return Save(at, 60); }, Bytes, Old},
    {"JobSaveNew", [](At at) { return Save(at, 60); }, Bytes},
    {"JobLoad", Load, Bytes, Old, false, Cut::kAnything},
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Print, FailingCalls, testing::ValuesIn(kOperations), NameOf);
INSTANTIATE_TEST_SUITE_P(Print, DeadDisks, testing::ValuesIn(WithPromise(kOperations, Cut::kOnlyOnceDone)), NameOf);
INSTANTIATE_TEST_SUITE_P(Print, PowerCuts, testing::ValuesIn(WithPromise(kOperations)), NameOf);
