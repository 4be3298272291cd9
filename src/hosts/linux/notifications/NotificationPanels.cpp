#include "hosts/linux/notifications/NotificationPanels.h"

#include "hosts/linux/windows/WindowSpaces.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t maxBanners = 4;
constexpr std::size_t maxWaiting = 50;
constexpr int screenMargin = 20;
constexpr int gap = 10;

template <class List> auto withIdentifier(List& list, const std::string& identifier) {
    return std::find_if(list.begin(), list.end(),
                        [&](const auto& entry) { return entry.identifier == identifier; });
}

/// Out of sight now, gone once the event that is being handled has been.
void discard(FloatingPanel* panel) {
    panel->hide();
    panel->disconnect();
    panel->deleteLater();
}

/// The top of `place`, moved down as far as it takes to cover no call panel.
int belowCallPanels(QRect place) {
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible() && window->objectName() == QLatin1String(callPanelName) &&
            window->geometry().intersects(place)) {
            place.moveTop(window->geometry().bottom() + 1 + gap);
        }
    }
    return place.top();
}

} // namespace

NotificationPanels::NotificationPanels() {
    if (auto* application = QCoreApplication::instance()) {
        application->installEventFilter(this);
    }
}

bool NotificationPanels::eventFilter(QObject* watched, QEvent* event) {
    const auto kind = event->type();
    if ((kind == QEvent::Show || kind == QEvent::Hide) && !(banners_.empty() && replies_.empty()) &&
        watched->isWindowType() && watched->objectName() == QLatin1String(callPanelName)) {
        // After the event, when the panel is there or gone.
        QMetaObject::invokeMethod(
            this, [this] { arrange(); }, Qt::QueuedConnection);
    }
    return false;
}

NotificationPanels::~NotificationPanels() {
    for (const auto* list : {&banners_, &replies_}) {
        for (const Shown& shown : *list) {
            delete shown.panel;
        }
    }
}

bool NotificationPanels::canShow() {
    return qobject_cast<QApplication*>(QCoreApplication::instance()) && QGuiApplication::primaryScreen();
}

NotificationBanner* NotificationPanels::makeBanner(const NotificationBanner::Content& content,
                                                   BannerEvents events) {
    auto* banner = new NotificationBanner(content);
    const auto end = [this, banner, gone = std::move(events.gone)](const auto& report) {
        take(banner);
        report();
        gone();
        showWaiting();
    };
    QObject::connect(
        banner, &NotificationBanner::replied, banner,
        [end, replied = std::move(events.replied)](const QString& text) { end([&] { replied(text); }); });
    QObject::connect(banner, &NotificationBanner::clicked, banner,
                     [end, clicked = std::move(events.clicked)] { end(clicked); });
    QObject::connect(banner, &NotificationBanner::dismissed, banner,
                     [end, dismissed = std::move(events.dismissed)] { end(dismissed); });
    QObject::connect(banner, &NotificationBanner::expired, banner, [end] { end([] {}); });
    return banner;
}

bool NotificationPanels::showBanner(const std::string& identifier, const NotificationBanner::Content& content,
                                    BannerEvents events) {
    if (const auto shown = withIdentifier(banners_, identifier); shown != banners_.end()) {
        discard(std::exchange(shown->panel, makeBanner(content, std::move(events))));
        arrange();
        return true;
    }
    if (const auto waits = withIdentifier(waiting_, identifier); waits != waiting_.end()) {
        *waits = {identifier, content, std::move(events)};
        return true;
    }
    if (!hasRoom()) {
        return false;
    }
    waiting_.push_back({identifier, content, std::move(events)});
    showWaiting();
    return true;
}

bool NotificationPanels::hasRoom() const {
    return waiting_.size() < maxWaiting;
}

bool NotificationPanels::isOnScreen(const std::string& identifier) const {
    return withIdentifier(banners_, identifier) != banners_.end();
}

bool NotificationPanels::isInUse(const std::string& identifier) const {
    const auto shown = withIdentifier(banners_, identifier);
    return shown != banners_.end() && static_cast<const NotificationBanner*>(shown->panel)->isInUse();
}

bool NotificationPanels::isReplyOpen(const std::string& identifier) const {
    return withIdentifier(replies_, identifier) != replies_.end();
}

void NotificationPanels::closeBanner(const std::string& identifier) {
    std::erase_if(waiting_, [&](const Waiting& waiting) { return waiting.identifier == identifier; });
    if (const auto shown = withIdentifier(banners_, identifier); shown != banners_.end()) {
        take(shown->panel);
        showWaiting();
    }
}

void NotificationPanels::openReply(const std::string& identifier, const ReplyPanel::Prompt& prompt,
                                   std::function<void(const QString& text)> replied) {
    if (const auto open = withIdentifier(replies_, identifier); open != replies_.end()) {
        return static_cast<ReplyPanel*>(open->panel)->takeKeyboard();
    }
    auto* panel = new ReplyPanel(prompt);
    QObject::connect(panel, &ReplyPanel::replied, panel,
                     [this, panel, replied = std::move(replied)](const QString& text) {
                         take(panel);
                         replied(text);
                         arrange();
                     });
    QObject::connect(panel, &ReplyPanel::cancelled, panel, [this, panel] {
        take(panel);
        arrange();
    });
    replies_.push_back({identifier, panel});
    arrange();
    panel->takeKeyboard();
}

void NotificationPanels::take(FloatingPanel* panel) {
    const auto isIt = [panel](const Shown& shown) { return shown.panel == panel; };
    std::erase_if(banners_, isIt);
    std::erase_if(replies_, isIt);
    discard(panel);
}

void NotificationPanels::showWaiting() {
    while (!waiting_.empty() && banners_.size() < maxBanners) {
        Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        auto* banner = makeBanner(next.content, std::move(next.events));
        banners_.push_back({std::move(next.identifier), banner});
    }
    arrange();
}

void NotificationPanels::arrange() {
    const QRect usable = QGuiApplication::primaryScreen()->availableGeometry();
    int top = usable.top() + screenMargin;
    for (const auto* list : {&replies_, &banners_}) {
        for (const Shown& shown : *list) {
            if (shown.panel->wasMovedByUser()) {
                continue;
            }
            const int left = usable.left() + usable.width() - screenMargin - FloatingPanel::panelWidth;
            const int height = shown.panel->panelGeometry().height();
            top = belowCallPanels({left, top, FloatingPanel::panelWidth, height});
            shown.panel->placePanelAt({left, top});
            shown.panel->show();
            top += height + gap;
        }
    }
}

} // namespace velloway
