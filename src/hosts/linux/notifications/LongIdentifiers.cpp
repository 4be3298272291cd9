#include "hosts/linux/notifications/LongIdentifiers.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <utility>

namespace velloway {

std::string LongIdentifiers::nameOf(const std::string& identifier) {
    if (!isLong(identifier)) {
        return identifier;
    }
    const auto bytes = QByteArray::fromRawData(identifier.data(), static_cast<qsizetype>(identifier.size()));
    const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_256);
    // Long itself, so that it differs from every identifier that stands for itself.
    return identifier.substr(0, limit) + hash.toHex().toStdString();
}

void LongIdentifiers::keep(const std::string& name, ImmutableText identifier,
                           const std::function<bool(const std::string& name)>& isInUse) {
    std::erase_if(byName_, [&](const auto& entry) { return !isInUse(entry.first); });
    byName_.insert_or_assign(name, std::move(identifier));
}

std::string LongIdentifiers::identifierOf(const std::string& name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? name : found->second.string();
}

} // namespace velloway
