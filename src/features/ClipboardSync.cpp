#include "features/ClipboardSync.h"

#include <utility>

namespace velloway {

ClipboardSync::ClipboardSync(DispatchQueue& main, std::shared_ptr<StoreLink> link, Pasteboard& pasteboard,
                             NotificationManager& notifications)
    : main_(main), link_(std::move(link)), pasteboard_(pasteboard), notifications_(notifications) {}

void ClipboardSync::receive(std::string text) {
    main_.async([link = link_, &pasteboard = pasteboard_, &notifications = notifications_,
                 text = std::move(text)]() mutable {
        pasteboard.clearContents();
        const bool isSet = pasteboard.setString(text);
        if (const auto store = link->historyStore.lock()) {
            store->addClipboard(std::move(text));
        }
        notifications.postSimple("Clipboard Synced", "Text from Android copied to your Mac clipboard.");
        if (!isSet) {
            // That banner comes with every text; here it needs to be put right.
            notifications.postSimple(
                "Clipboard Not Synced",
                "This desktop did not accept the text from Android. It is in the Clipboard tab.");
        }
    });
}

void readTextToSend(Pasteboard& pasteboard, std::function<void(std::optional<std::string>)> done) {
    pasteboard.readString([done = std::move(done)](std::optional<std::string> text) {
        done(text && !text->empty() ? std::move(text) : std::nullopt);
    });
}

} // namespace velloway
