#include "bridge/Views.h"

#include "bridge/CallPanelBridge.h"
#include "bridge/Convert.h"
#include "bridge/MainBridge.h"
#include "bridge/SymbolProvider.h"

#include <QFont>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlEngine>
#include <QQuickImageProvider>

#include <utility>

/// Generated with the module. Called by name, it stays in programs that link this library statically.
void qml_register_types_Velloway();

namespace velloway {

namespace {

/// The application's icon, in any size. The system gives it on the main thread alone, so an Image that shows it
/// must not be asynchronous.
class ApplicationIconProvider : public QQuickImageProvider {
public:
    explicit ApplicationIconProvider(std::shared_ptr<const SystemImages> system)
        : QQuickImageProvider(Pixmap), system_(std::move(system)) {}
    QPixmap requestPixmap(const QString&, QSize* size, const QSize& requestedSize) override {
        const QSize wanted = requestedSize.isEmpty() ? QSize(64, 64) : requestedSize;
        if (size) {
            *size = wanted;
        }
        const std::optional<Bitmap> own =
            system_ ? system_->applicationIcon({wanted.width(), wanted.height()}) : std::nullopt;
        return own ? QPixmap::fromImage(toQt(*own))
                   : QIcon(QStringLiteral(":/icon/velloway.svg")).pixmap(wanted);
    }

private:
    std::shared_ptr<const SystemImages> system_;
};

QUrl viewFile(const char* name) {
    return QUrl(QStringLiteral("qrc:/qt/qml/Velloway/") + QString::fromLatin1(name) + QStringLiteral(".qml"));
}

} // namespace

void prepareEngine(QQmlEngine& engine, std::shared_ptr<const SystemImages> systemImages) {
    qml_register_types_Velloway();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolProvider(systemImages));
    engine.addImageProvider(QStringLiteral("application-icon"),
                            new ApplicationIconProvider(std::move(systemImages)));
}

void useFontsForEveryScript() {
    QFont font = QGuiApplication::font();
    font.setFamilies(
        {QStringLiteral("Inter"), QStringLiteral("Noto Sans"), QStringLiteral("Noto Color Emoji")});
    QGuiApplication::setFont(font);
}

struct ContentView::Bridges {
    std::unique_ptr<MainBridge> main;
    std::unique_ptr<CallPanelBridge> callPanel;
};

ContentView::ContentView(QQmlEngine& engine, std::shared_ptr<WindowContent> content)
    : QQuickView(&engine, nullptr), bridges_(std::make_unique<Bridges>()) {
    setResizeMode(SizeRootObjectToView);
    if (auto settings = std::dynamic_pointer_cast<SettingsView>(content)) {
        bridges_->main = std::make_unique<MainBridge>(std::move(settings));
        setInitialProperties({{"bridge", QVariant::fromValue(bridges_->main.get())}});
        setSource(viewFile("MainView"));
    } else if (auto callPanel = std::dynamic_pointer_cast<CallPanelContent>(std::move(content))) {
        bridges_->callPanel = std::make_unique<CallPanelBridge>(std::move(callPanel));
        setInitialProperties({{"bridge", QVariant::fromValue(bridges_->callPanel.get())}});
        setSource(viewFile("panels/CallPanel"));
    }
}

ContentView::~ContentView() {
    // The view binds to the bridge until it has gone.
    setSource({});
}

void ContentView::setContent(std::shared_ptr<WindowContent> content) {
    if (auto callPanel = std::dynamic_pointer_cast<CallPanelContent>(std::move(content));
        callPanel && bridges_->callPanel) {
        bridges_->callPanel->setContent(std::move(callPanel));
    }
}

void ContentView::exposeEvent(QExposeEvent* event) {
    QQuickView::exposeEvent(event);
    if (bridges_->main && isExposed()) {
        bridges_->main->setOnScreen(true);
    }
}

void ContentView::hideEvent(QHideEvent* event) {
    QQuickView::hideEvent(event);
    if (bridges_->main) {
        bridges_->main->setOnScreen(false);
    }
}

} // namespace velloway
