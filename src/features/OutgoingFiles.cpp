#include "features/OutgoingFiles.h"
namespace velloway {
OutgoingFiles::OutgoingFiles(DispatchQueue& main, DispatchQueue& server, std::weak_ptr<StoreLink> link,
                             NotificationManager& notifications, const Host& host, Log& log, Send send)
    : main_(main),
      server_(server),
      link_(link),
      notifications_(notifications),
      host_(host),
      log_(log),
      send_(send) {}
void OutgoingFiles::sendFile(const std::filesystem::path& url) {
    run(url);
}
void OutgoingFiles::run(const std::filesystem::path&) {}
} // namespace velloway
