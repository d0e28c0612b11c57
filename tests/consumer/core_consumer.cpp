// What a service without a display does: no drawing, no printing.
#include <qellib10/core.h>

int main() {
    double result = 0;
    return CQWCalc().ConcCalculation("2 * 8.26", &result) && result == 16.52 ? 0 : 1;
}
