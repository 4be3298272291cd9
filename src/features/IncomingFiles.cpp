#include "features/IncomingFiles.h"
namespace velloway {
struct IncomingFiles::Sessions {};
IncomingFiles::IncomingFiles(DispatchQueue&, std::weak_ptr<StoreLink>, NotificationManager&, const Host&,
                             Log&) {}
IncomingFiles::~IncomingFiles() = default;
void IncomingFiles::start(std::string_view, std::int64_t) {}
void IncomingFiles::chunk(std::string_view, std::string_view, bool) {}
} // namespace velloway
