#pragma once

// decNumber's types, as they are in the interface of CBCD. Its header fixes the digits of a number when it is read;
// with another count than the library was built with, every CBCD would have another size.
//
// The functions that it declares are inside the library and not exported. An application that computes on the numbers
// of GetBCDValue() itself links decNumber of its own, built with DECNUMDIGITS=15.
#ifndef DECNUMDIGITS
#define DECNUMDIGITS 15
#endif
#include <qellib10/decnumber/decNumber.h>

static_assert(DECNUMDIGITS == 15 && sizeof(decNumber) == 20, "decNumber.h was read before with other digits than 15");
