// The tables of the protocol are written in C. Declared first, they are one for the whole program in C++ too.
#include <virtual-devices-client.h>

// NOLINTNEXTLINE(bugprone-suspicious-include)
#include <virtual-devices-code.c>
