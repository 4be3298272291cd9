#include "hosts/linux/desktop/LinuxMemory.h"

#include <malloc.h>

namespace velloway {

void LinuxMemory::giveBack() {
    ::malloc_trim(0);
}

} // namespace velloway
