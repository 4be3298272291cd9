#include "features/NotificationManager.h"
namespace velloway {
void NotificationManager::post(const NotifPayload&) {}
void NotificationManager::postSimple(std::string_view, std::string_view) {}
void NotificationManager::postFileProgress(std::string_view, double, std::string_view) {}
} // namespace velloway
