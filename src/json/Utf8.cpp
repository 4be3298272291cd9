#include "json/Utf8.h"

#include <simdjson.h>

namespace velloway {

bool isUtf8(std::string_view bytes) {
    return simdjson::validate_utf8(bytes);
}

} // namespace velloway
