#include "hosts/linux/desktop/FileUris.h"

#include <QByteArray>

namespace velloway {

std::string fileUri(const std::filesystem::path& file) {
    const std::string& bytes = file.native();
    const QByteArray raw(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return "file://" + raw.toPercentEncoding("/").toStdString();
}

std::optional<std::filesystem::path> pathOfFileUri(std::string_view uri) {
    constexpr std::string_view scheme = "file:";
    const QByteArray start = QByteArray(uri.data(), static_cast<qsizetype>(uri.substr(0, 5).size())).toLower();
    if (start != QByteArrayView(scheme)) {
        return std::nullopt;
    }
    uri.remove_prefix(scheme.size());
    if (uri.substr(0, 2) == "//") {
        uri.remove_prefix(2);
        const std::size_t slash = std::min(uri.find('/'), uri.size());
        const std::string_view host = uri.substr(0, slash);
        if (!host.empty() && host != "localhost") {
            return std::nullopt;
        }
        uri.remove_prefix(slash);
    }
    uri = uri.substr(0, uri.find_first_of("?#"));
    if (uri.empty() || uri.front() != '/') {
        return std::nullopt;
    }
    const QByteArray path =
        QByteArray::fromPercentEncoding(QByteArray(uri.data(), static_cast<qsizetype>(uri.size())));
    if (path.contains('\0')) {
        return std::nullopt;
    }
    return std::filesystem::path(path.toStdString());
}

} // namespace velloway
