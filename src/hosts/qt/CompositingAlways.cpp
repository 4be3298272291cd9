#include "hosts/qt/Compositing.h"

namespace velloway {

bool isCompositing() {
    return true;
}

} // namespace velloway
