// The one function that the library of the views is loaded for. The core that the views show lies in the
// program.
#include "hosts/linux/windows/QuickWindows.h"

extern "C" __attribute__((visibility("default"))) velloway::ViewWindows* velloway_makeViewWindows() {
    return velloway::makeQuickWindows().release();
}
