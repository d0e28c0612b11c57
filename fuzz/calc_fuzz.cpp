// Law: a variable list read from any bytes, stored and read again is the same list. A formula in the bytes behind it
// means the same with a blank before each of its bytes, and a valid one also in parentheses.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "qellib10/calc/qw_calc.h"
#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 64 * 1024;

// Where the list's bytes end; an archive that ends early leaves what was read before.
std::size_t Read(CCalcVariableList& list, const std::uint8_t* data, std::size_t size) {
    CMemFile file;
    file.Attach(data, static_cast<UINT>(size));
    try {
        CArchive archive(&file, CArchive::load);
        list.Serialize(archive);
        archive.Close();
        return static_cast<std::size_t>(file.GetPosition());
    } catch (const CArchiveException&) {
        return size;
    }
}

std::vector<BYTE> Stored(CCalcVariableList& list) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    list.Serialize(archive);
    archive.Close();
    return file.Detach();
}

// Whether it is valid, can be calculated, and the bits of the result.
std::tuple<int, int, std::uint64_t> Meaning(CQWCalc& calc, const std::string& formula) {
    double result = 0.0;
    const int valid = calc.CheckCalcFormula("", CString(formula));
    const int calculated = calc.ConcCalculation(CString(formula), &result);
    std::uint64_t bits = 0;
    if (result == result) std::memcpy(&bits, &result, sizeof bits);  // one not-a-number is as good as another
    return {valid, calculated, bits};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    CCalcVariableList list, again;
    const std::size_t end = Read(list, data, size);
    const std::vector<BYTE> bytes = Stored(list);
    if (Read(again, bytes.data(), bytes.size()) != bytes.size() || Stored(again) != bytes) std::abort();

    CQWCalc calc;
    calc.SetCalcVarList(list);
    const std::string formula(data + end, data + size);
    const auto meaning = Meaning(calc, formula);
    if (formula.size() > 127 || formula.find('\0') != std::string::npos) return 0;
    std::string spread;
    for (const char byte : formula) (spread += ' ') += byte;
    if (Meaning(calc, spread) != meaning) std::abort();
    if (std::get<0>(meaning) != 0 && Meaning(calc, "(" + formula + ")") != meaning) std::abort();
    return 0;
}
