// Writes the tables of the core as QML, so that a name in a view that no table has is an error of the linter.
#include "tabs/Style.h"
#include "tabs/calls/CallsTexts.h"
#include "tabs/clipboard/ClipboardTexts.h"
#include "tabs/filedrop/FileDropTexts.h"
#include "tabs/info/InfoTexts.h"
#include "tabs/notifications/NotificationsTexts.h"
#include "tabs/remote/RemoteTexts.h"
#include "tabs/settings/SettingsTexts.h"
#include "tabs/sms/SmsTexts.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <string>

namespace velloway {
namespace {

class QmlFile {
public:
    explicit QmlFile(const std::filesystem::path& path) : out_(path) {}
    ~QmlFile() { out_ << "}\n"; }
    QmlFile(const QmlFile&) = delete;
    QmlFile& operator=(const QmlFile&) = delete;

    std::ostream& line() { return out_; }

private:
    std::ofstream out_;
};

template <class Table> void writeTexts(const std::filesystem::path& path, const Table& texts) {
    QmlFile file(path);
    file.line() << "pragma Singleton\nimport QtQml\n\nQtObject {\n";
    for (const TextEntry& entry : texts) {
        file.line() << "    readonly property string " << entry.name << ": " << std::quoted(entry.text) << '\n';
    }
}

std::string inQml(Argb color) {
    char text[16];
    std::snprintf(text, sizeof text, "\"#%08x\"", color);
    return text;
}

void writeColors(const std::filesystem::path& path) {
    QmlFile file(path);
    file.line() << "import QtQuick\n\nQtObject {\n    property bool dark\n";
    for (const PaletteColor& color : palette) {
        file.line() << "    readonly property color " << color.name << ": dark ? " << inQml(color.dark) << " : "
                    << inQml(color.light) << '\n';
    }
}

} // namespace
} // namespace velloway

int main(int argc, char** argv) {
    using namespace velloway;
    if (argc != 2) {
        std::fputs("usage: velloway-generate-views FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    writeColors(folder / "Colors.qml");
    writeTexts(folder / "CallsTexts.qml", callsTexts);
    writeTexts(folder / "ClipboardTexts.qml", clipboardTexts);
    writeTexts(folder / "FileDropTexts.qml", fileDropTexts);
    writeTexts(folder / "InfoTexts.qml", infoTexts);
    writeTexts(folder / "NotificationsTexts.qml", notificationsTexts);
    writeTexts(folder / "RemoteTexts.qml", remoteTexts);
    writeTexts(folder / "SettingsTexts.qml", settingsTexts);
    writeTexts(folder / "SmsTexts.qml", smsTexts);
    return 0;
}
