#include "tabs/ContactsManager.h"

#include "text/Digits.h"

#include <utility>

namespace velloway {

ContactMatch::ContactMatch(std::string contactName, std::string displayedPhone, std::string storedPhone)
    : name(std::move(contactName)), phone(std::move(displayedPhone)), phoneRaw(std::move(storedPhone)) {}

ContactsManager& ContactsManager::shared() {
    static ContactsManager manager;
    return manager;
}

void ContactsManager::requestAccess(bool /*showDeniedAlert*/,
                                    const std::function<void(bool granted)>& completion) {
    if (completion) {
        completion(false);
    }
}

std::optional<std::string> ContactsManager::cachedName(std::string_view /*address*/) const {
    return std::nullopt;
}

std::vector<ContactMatch> ContactsManager::search(std::string_view /*query*/) const {
    return {};
}

std::string ContactsManager::digitsOnly(std::string_view text) {
    return velloway::digitsOnly(text);
}

} // namespace velloway
