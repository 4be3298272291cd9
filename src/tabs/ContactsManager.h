#pragma once

#include "state/Observable.h"
#include "state/Uuid.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

struct ContactMatch {
    ContactMatch(std::string contactName, std::string displayedPhone, std::string storedPhone);

    Uuid id = Uuid::random();
    std::string name;
    /// As displayed.
    std::string phone;
    /// As stored.
    std::string phoneRaw;
};

/// The seam to the system's address book. It is closed on purpose: no address book is read, and nobody is
/// asked for permission. Names come from the phone's own records.
class ContactsManager {
public:
    /// Made on first use.
    static ContactsManager& shared();

    /// Nothing writes to it.
    Observable<std::map<std::string, std::string>> nameCache;

    /// Refuses at once, on the caller's thread, and shows nothing.
    void requestAccess(bool showDeniedAlert = false, const std::function<void(bool granted)>& completion = {});
    /// Always absent; does not look into `nameCache`.
    std::optional<std::string> cachedName(std::string_view address) const;
    /// Always empty.
    std::vector<ContactMatch> search(std::string_view query) const;

    /// The decimal digits of any script in `text`.
    static std::string digitsOnly(std::string_view text);
};

} // namespace velloway
