// The tables of the protocol come as C, whose constants C++ would keep to one file unless they are declared
// first.
#include "data-control-client.h"

// NOLINTNEXTLINE(bugprone-suspicious-include)
#include "data-control-code.c"
