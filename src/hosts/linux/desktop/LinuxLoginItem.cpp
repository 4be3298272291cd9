#include "hosts/linux/desktop/LinuxLoginItem.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QSaveFile>
#include <QStandardPaths>

#include <cstdlib>

namespace velloway {

namespace {

QString asQString(const std::filesystem::path& path) {
    return QFile::decodeName(path.c_str());
}

std::filesystem::path asPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

/// `path` as the one word of an Exec line. Two rules meet there: the quoting of a command line, and on top of
/// it the escapes of every text in such a file.
QByteArray execLine(const std::filesystem::path& path) {
    QByteArray quoted = "\"";
    for (const char byte : path.native()) {
        if (byte == '"' || byte == '`' || byte == '$' || byte == '\\') {
            quoted.append('\\');
        } else if (byte == '%') {
            quoted.append('%');
        }
        quoted.append(byte);
    }
    quoted.append('"');
    return quoted.replace("\\", "\\\\").replace("\n", "\\n").replace("\r", "\\r").replace("\t", "\\t");
}

QByteArray unescaped(const QByteArray& text) {
    QByteArray plain;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            plain.append(text[at]);
            continue;
        }
        switch (text[++at]) {
        case 's':
            plain.append(' ');
            break;
        case 'n':
            plain.append('\n');
            break;
        case 't':
            plain.append('\t');
            break;
        case 'r':
            plain.append('\r');
            break;
        default:
            plain.append(text[at]);
        }
    }
    return plain;
}

/// How a program recognises a start by the session: managers of GNOME's kind set it themselves, and the entry
/// sets it for all others.
constexpr const char* startedAtLogin = "env DESKTOP_AUTOSTART_ID=velloway ";

/// The program that an Exec line starts.
QByteArray programOf(const QByteArray& line) {
    const QByteArray whole = unescaped(line);
    const QByteArray text =
        whole.startsWith(startedAtLogin) ? whole.mid(static_cast<qsizetype>(qstrlen(startedAtLogin))) : whole;
    QByteArray word;
    bool isQuoted = false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        const bool hasNext = at + 1 < text.size();
        if (byte == '"') {
            isQuoted = !isQuoted;
        } else if (hasNext && ((isQuoted && byte == '\\') || (byte == '%' && text[at + 1] == '%'))) {
            word.append(text[++at]);
        } else if (!isQuoted && (byte == ' ' || byte == '\t')) {
            break;
        } else {
            word.append(byte);
        }
    }
    return word;
}

QMap<QByteArray, QByteArray> readEntry(const std::filesystem::path& path) {
    QMap<QByteArray, QByteArray> values;
    QFile file(asQString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return values;
    }
    bool isOurGroup = false;
    for (const QByteArray& untrimmed : file.read(qint64{1024} * 1024).split('\n')) {
        const QByteArray line = untrimmed.trimmed();
        if (line.startsWith('[')) {
            isOurGroup = line == "[Desktop Entry]";
        } else if (const qsizetype equals = line.indexOf('=');
                   isOurGroup && equals > 0 && !line.startsWith('#')) {
            values.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }
    return values;
}

bool isThere(const QByteArray& program) {
    const QString name = QFile::decodeName(program);
    return name.startsWith('/') ? QFileInfo(name).isExecutable()
                                : !QStandardPaths::findExecutable(name).isEmpty();
}

} // namespace

LinuxLoginItem::LinuxLoginItem(std::filesystem::path program, const std::filesystem::path& folder)
    : program_(std::move(program)), entry_(folder / "velloway.desktop") {}

std::filesystem::path LinuxLoginItem::ownProgram() {
    const char* image = std::getenv("APPIMAGE");
    if (image != nullptr && *image == '/') {
        return image;
    }
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::filesystem::path LinuxLoginItem::autostartFolder() {
    return asPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)) / "autostart";
}

LoginItemStatus LinuxLoginItem::status() const {
    const QMap<QByteArray, QByteArray> entry = readEntry(entry_);
    const QByteArray exec = entry.value("Exec");
    if (exec.isEmpty() || entry.value("Hidden") == "true" ||
        entry.value("X-GNOME-Autostart-enabled") == "false") {
        return LoginItemStatus::notRegistered;
    }
    return isThere(programOf(exec)) ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

std::optional<std::string> LinuxLoginItem::registerItem() {
    if (program_.empty()) {
        return "The program's own place could not be found";
    }
    QDir().mkpath(asQString(entry_.parent_path()));
    QSaveFile file(asQString(entry_));
    const QByteArray text = "[Desktop Entry]\n"
                            "Type=Application\n"
                            "Name=Velloway\n"
                            "Comment=Bridge to an Android phone\n"
                            "Icon=org.velloway.Velloway\n"
                            "Exec=" +
                            QByteArray(startedAtLogin) + execLine(program_) +
                            "\n"
                            "Terminal=false\n"
                            "StartupNotify=false\n"
                            "X-GNOME-Autostart-enabled=true\n";
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

std::optional<std::string> LinuxLoginItem::unregisterItem() {
    QFile file(asQString(entry_));
    if (!file.remove() && file.exists()) {
        return file.errorString().toStdString();
    }
    return std::nullopt;
}

} // namespace velloway
