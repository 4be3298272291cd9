#include "hosts/linux/desktop/LinuxHost.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTimeZone>

#include <array>
#include <cstdlib>
#include <ifaddrs.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway {

namespace {

/// The value of a `KEY=value` line in the manner of a shell, as the system's own descriptions are written.
QByteArray unquoted(QByteArray value) {
    value = value.trimmed();
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
        value = value.mid(1, value.size() - 2);
    }
    QByteArray plain;
    for (qsizetype at = 0; at < value.size(); ++at) {
        if (value[at] == '\\' && at + 1 < value.size()) {
            ++at;
        }
        plain.append(value[at]);
    }
    return plain;
}

std::optional<std::string> prettyHostName(const std::filesystem::path& machineInfo) {
    QFile file(QFile::decodeName(machineInfo.c_str()));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    for (const QByteArray& line : file.read(qint64{64} * 1024).split('\n')) {
        constexpr QByteArrayView key("PRETTY_HOSTNAME=");
        if (line.startsWith(key)) {
            const QByteArray name = unquoted(line.mid(key.size()));
            return name.isEmpty() ? std::nullopt : std::optional(name.toStdString());
        }
    }
    return std::nullopt;
}

std::optional<std::string> shortHostName() {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) != 0) {
        return std::nullopt;
    }
    std::string text(name.data());
    text.resize(std::min(text.find('.'), text.size()));
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::string firstSet(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

NetworkInterface describe(const ifaddrs& entry) {
    NetworkInterface described{.name = entry.ifa_name != nullptr ? entry.ifa_name : "",
                               .flags = entry.ifa_flags};
    // Tunnels without a link-layer address are common here and stand in the list with no address at all. They
    // count as of no family, so that everyone who looks for an address passes them by.
    if (entry.ifa_addr == nullptr) {
        described.addressFamily = AF_UNSPEC;
        return described;
    }
    described.addressFamily = entry.ifa_addr->sa_family;
    const socklen_t length = described.addressFamily == AF_INET    ? sizeof(sockaddr_in)
                             : described.addressFamily == AF_INET6 ? sizeof(sockaddr_in6)
                                                                   : 0;
    std::array<char, NI_MAXHOST> text{};
    if (length != 0 &&
        ::getnameinfo(entry.ifa_addr, length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0) {
        described.numericAddress = text.data();
    }
    return described;
}

} // namespace

LinuxHost::LinuxHost(std::filesystem::path machineInfo) : machineInfo_(std::move(machineInfo)) {}

std::optional<std::string> LinuxHost::localizedName() const {
    const std::optional<std::string> pretty = prettyHostName(machineInfo_);
    return pretty ? pretty : shortHostName();
}

std::optional<std::filesystem::path> LinuxHost::downloadsDirectory() const {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (path.isEmpty()) {
        return std::nullopt;
    }
    // A home that no desktop session has set up yet has the name but not the folder.
    QDir().mkpath(path);
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

Instant LinuxHost::now() const {
    return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

std::string LinuxHost::locale() const {
    std::string name = firstSet({"LC_ALL", "LC_TIME", "LANG"});
    std::string modifier;
    if (const std::size_t at = name.find('@'); at != std::string::npos) {
        modifier = name.substr(at + 1);
        name.resize(at);
    }
    name.resize(std::min(name.find('.'), name.size()));
    if (name.empty() || name == "C" || name == "POSIX") {
        return "en_US_POSIX";
    }
    const std::size_t language = std::min(name.find('_'), name.size());
    if (modifier == "latin") {
        name.insert(language, "_Latn");
    } else if (modifier == "cyrillic") {
        name.insert(language, "_Cyrl");
    }
    return name;
}

std::string LinuxHost::timeZone() const {
    const QByteArray name = QTimeZone::systemTimeZoneId();
    return name.isEmpty() ? "UTC" : name.toStdString();
}

std::optional<std::vector<NetworkInterface>> LinuxHost::networkInterfaces() const {
    ifaddrs* head = nullptr;
    if (::getifaddrs(&head) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> release(head, &::freeifaddrs);
    std::vector<NetworkInterface> interfaces;
    for (const ifaddrs* entry = head; entry != nullptr; entry = entry->ifa_next) {
        interfaces.push_back(describe(*entry));
    }
    return interfaces;
}

std::vector<std::string> LinuxHost::interfacePrefixes() const {
    return {"en", "eth", "wl"};
}

} // namespace velloway
