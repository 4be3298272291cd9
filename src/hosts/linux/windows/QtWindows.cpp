#include "hosts/linux/windows/QtWindows.h"

#include "hosts/linux/windows/ScreenHeight.h"

#include <QDir>
#include <QFileDialog>

#include <utility>

namespace velloway {

namespace {

/// Stands where a window could not be made, so that the rest of the program goes on.
class NoWindow : public Window {
public:
    bool isVisible() const override { return false; }
    void center() override {}
    void makeKeyAndOrderFront() override {}
    void orderFrontRegardless() override {}
    void orderOut() override {}
    void setIsVisible(bool /*visible*/) override {}
    void setFrameOrigin(double /*x*/, double /*y*/) override {}
    void setContent(std::shared_ptr<WindowContent> /*content*/) override {}
};

} // namespace

QtWindows::QtWindows(LoadViews loadViews) : loadViews_(std::move(loadViews)) {}

QtWindows::~QtWindows() = default;

ViewWindows* QtWindows::views() {
    if (!views_) {
        views_ = loadViews_();
    }
    return views_.get();
}

std::shared_ptr<Window> QtWindows::makeMainWindow(const MainWindowProperties& properties,
                                                  std::shared_ptr<WindowContent> content,
                                                  std::function<void()> onClose) {
    if (ViewWindows* made = views()) {
        return made->makeMainWindow(properties, std::move(content), std::move(onClose));
    }
    return std::make_shared<NoWindow>();
}

std::shared_ptr<Window> QtWindows::makePanel(const PanelProperties& properties,
                                             std::shared_ptr<WindowContent> content) {
    if (ViewWindows* made = views()) {
        return made->makePanel(properties, std::move(content));
    }
    return std::make_shared<NoWindow>();
}

std::optional<Rect> QtWindows::mainScreenVisibleFrame() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        return std::nullopt;
    }
    const QRect usable = screen->availableGeometry();
    return Rect{static_cast<double>(usable.x()), static_cast<double>(flipped(usable.y() + usable.height(), 0)),
                static_cast<double>(usable.width()), static_cast<double>(usable.height())};
}

void QtWindows::beginOpenPanel(const OpenPanelOptions& options,
                               std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) {
    auto* dialog = new QFileDialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setDirectory(QDir::homePath());
    dialog->setFileMode(options.canChooseDirectories      ? QFileDialog::Directory
                        : options.allowsMultipleSelection ? QFileDialog::ExistingFiles
                                                          : QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::finished, dialog, [dialog, done = std::move(done)](int result) {
        if (result != QDialog::Accepted) {
            done(std::nullopt);
            return;
        }
        std::vector<std::filesystem::path> files;
        for (const QString& file : dialog->selectedFiles()) {
            files.emplace_back(file.toStdString());
        }
        done(std::move(files));
    });
    dialog->open();
}

} // namespace velloway
