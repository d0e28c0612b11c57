#include "demo/result/result_file.h"

#include <array>
#include <cstddef>

#include "demo/support/file_step.h"

namespace titration {
namespace {

constexpr DWORD kToTheEnd = 0xFFFFFFFF;
constexpr int kCheckBlock = qel::CheckBlock::kSize;

void Serialize(CCalcVariableList& list, CQFile& file, UINT archiveMode) {
    CArchive archive(&file, archiveMode);
    list.Serialize(archive);
    archive.Close();
}

// The seal of an older result; an empty one if there is none that passes.
CCheckDatafile OldSeal(const std::string& path) {
    CCheckDatafile seal;
    CQFile file;
    const bool isOpen = file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyWrite) != 0;
    if (!isOpen || seal.ReadPackData(&file) == 0) seal.InitializeData();
    return seal;
}

CCalcVariableList Load(const std::string& path, CCheckDatafile seal) {
    return OnFile(path, [&] {
        CCalcVariableList list;
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
        if (seal.ReadPackData(&file) == 0) throw Failure(path + ": " + Why("the seal does not fit"));
        Serialize(list, file, CArchive::load);
        return list;
    });
}

}  // namespace

CCheckDatafile StoreVariables(const CCalcVariableList& list, const std::string& path) {
    return OnFile(path, [&] {
        CCheckDatafile seal = OldSeal(path);
        CCalcVariableList copy = list;
        CQFile file;
        Open(file, path, CFile::modeCreate | CFile::modeReadWrite | CFile::shareExclusive);
        Serialize(copy, file, CArchive::store);
        if (seal.PackUpdateData(&file, 1) == 0) throw Failure(path + ": " + Why("cannot be sealed"));
        file.Close();
        return seal;
    });
}

CCalcVariableList LoadVariables(const std::string& path) { return Load(path, CCheckDatafile()); }

CCalcVariableList LoadRenamedVariables(const std::string& path) {
    CCheckDatafile seal;
    seal.EnableCheckFilename(0);
    return Load(path, seal);
}

CheckSums SealedSums(const std::string& path) {
    return OnFile(path, [&] {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
        file.Seek(-kCheckBlock, CFile::end);
        std::array<std::byte, kCheckBlock> bytes{};
        file.Read(bytes.data(), kCheckBlock);
        const qel::CheckBlock block = qel::CheckBlock::Unpack(bytes);
        return CheckSums{block.crc, block.sum};
    });
}

CheckSums RequireChangeToBeFound(const std::string& path, ULONGLONG position) {
    return OnFile(path, [&] {
        CQFile copy;
        if (copy.CreateTempFile("ttr", 1) == 0) throw Failure(path + ": " + Why("cannot be copied"));
        copy.WriteFromFile(path.c_str(), 0, kToTheEnd);
        const bool fitsBefore = CCheckDatafile::IsPackData(&copy) != 0;

        unsigned char byte = 0;
        copy.Seek(static_cast<LONGLONG>(position), CFile::begin);
        copy.Read(&byte, 1);
        byte ^= 1;
        copy.Seek(static_cast<LONGLONG>(position), CFile::begin);
        copy.Write(&byte, 1);
        const bool fitsAfter = CCheckDatafile::IsPackData(&copy) != 0;
        const CheckSums changed = CheckSumsOf(copy, static_cast<DWORD>(copy.GetLength()) - kCheckBlock);
        copy.Close();
        if (!fitsBefore || fitsAfter) throw Failure(path + ": the seal of a copy does not show its change");
        return changed;
    });
}

}  // namespace titration
