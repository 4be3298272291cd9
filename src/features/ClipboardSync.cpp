#include "features/ClipboardSync.h"
namespace velloway {
ClipboardSync::ClipboardSync(DispatchQueue& main, std::shared_ptr<StoreLink> link, Pasteboard& pasteboard,
                             NotificationManager& notifications)
    : main_(main), link_(link), pasteboard_(pasteboard), notifications_(notifications) {}
void ClipboardSync::receive(std::string) {}
std::optional<std::string> textToSend(const Pasteboard& pasteboard) {
    return pasteboard.string();
}
} // namespace velloway
