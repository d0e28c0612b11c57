#pragma once

// decNumber's types, which are part of CBCD's interface. Its header fixes the number of digits when it is included;
// with another number than the library was built with, every CBCD would have a different size.
//
// The functions that it declares are inside the library and not exported. An application that computes with the numbers
// of GetBCDValue() itself must link its own decNumber, built with DECNUMDIGITS=15.
#ifndef DECNUMDIGITS
#define DECNUMDIGITS 15
#endif
#include <qellib10/decnumber/decNumber.h>

static_assert(DECNUMDIGITS == 15 && sizeof(decNumber) == 20, "decNumber.h was read before with other digits than 15");
