#pragma once

/// From now on the @p number-th allocation of the program fails, once: of C++ and of the XML parser. 0: none.
void FailAllocation(int number);
/// How many allocations are left until one fails; 0 once it has.
int AllocationsLeft();
