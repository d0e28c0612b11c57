// Law: a variable list read from any bytes, stored and read again is the same list. A formula in the bytes after it
// means the same with a blank before each of its bytes, and a valid one also in parentheses.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>

#include "qellib10/calc/qw_calc.h"

#include "../tests/support/archive_bytes.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 64 * 1024;

// Whether it is valid, can be calculated, and the bits of the result.
std::tuple<int, int, std::uint64_t> Meaning(CQWCalc& calc, const std::string& formula) {
    double result = 0.0;
    const int valid = calc.CheckCalcFormula("", CString(formula));
    const int calculated = calc.ConcCalculation(CString(formula), &result);
    std::uint64_t bits = 0;
    if (result == result) std::memcpy(&bits, &result, sizeof bits);  // all NaN are equal here
    return {valid, calculated, bits};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const std::string input(data, data + size);
    CCalcVariableList list, again;
    const int left = Load(list, input);  // damaged bytes leave what was read before
    const std::string bytes = Stored(list);
    if (Load(again, bytes) != 0 || Stored(again) != bytes) std::abort();

    CQWCalc calc;
    calc.SetCalcVarList(list);
    const std::string formula = input.substr(size - static_cast<std::size_t>(std::max(left, 0)));
    const auto meaning = Meaning(calc, formula);
    if (formula.size() > 127 || formula.find('\0') != std::string::npos) return 0;
    std::string spread;
    for (const char byte : formula) (spread += ' ') += byte;
    if (Meaning(calc, spread) != meaning) std::abort();
    if (std::get<0>(meaning) != 0 && Meaning(calc, "(" + formula + ")") != meaning) std::abort();
    return 0;
}
