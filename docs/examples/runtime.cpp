// A worker thread measures into memory that other programs can read, until it is asked to stop.
#include <qellib10/qellib10.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

constexpr DWORD kMeasuring = 1;  // our number for what the worker does
constexpr DWORD kReadAndWrite = 6;

struct Reading {
    int count;
    double potential;  // mV
};

// All programs of a user share their names, so each folder of data has names of its own.
CString InFolder(const char* name) {
    CString folder;
    CQFile::GetCurrentDirectoryA(folder);
    folder.Replace('\\', '/');
    return name + CString(" of ") + folder.Right(200);
}

// Calls @p step with the shared reading, which nobody else can use meanwhile.
template <class Step> bool WithReading(const Step& step) {
    CAutoLockedMemoryMappedFile block;
    if (!block.Open(kReadAndWrite, InFolder("reading"), sizeof(Reading))) return false;
    auto* const reading = static_cast<Reading*>(block.GetDataPtr(2, 0));
    if (reading == nullptr) return false;
    step(*reading);
    block.GetDataPtrUnmap();
    return true;
}

void Measure() {
    const CWorkerThreadCtrl worker(kMeasuring);
    while (!worker.IsStop()) {
        if (!worker.IsPause()) WithReading([](Reading& reading) { reading = {reading.count + 1, 214.5}; });
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

}  // namespace

int main() {
    CCheckRepeatExec instance;
    if (instance.CheckRepeatExecute(InFolder("titrator"))) return 1;
    std::puts("the first instance");

    CMemoryMappedFile keep;  // the block exists as long as anybody has it open
    if (!keep.Open(kReadAndWrite, InFolder("reading"), sizeof(Reading))) return 1;

    std::thread measuring(Measure);
    Reading latest = {};
    while (latest.count < 3)
        if (!WithReading([&latest](const Reading& reading) { latest = reading; })) return 1;
    CWorkerThreadCtrl::StopThread(kMeasuring);
    measuring.join();

    const CString unit = CQELResource::GetUnitText(qel::kFirstUnitId);
    std::printf("%s mV after 3 readings, %d workers left\n",
                static_cast<const char*>(CQVariant::DoubleToStr(latest.potential, 1, 0)),
                CWorkerThreadCtrl::GetThreadCount(kMeasuring));
    std::puts("the first unit is " + unit);
    return 0;
}
