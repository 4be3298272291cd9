#pragma once

#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/linux/notifications/ReplyPanel.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace velloway {

/// The program's own notification banners and reply panels, one below the other from the top right corner of
/// the usable screen. They exist only while they are to be seen. Main thread.
class NotificationPanels : private QObject {
public:
    struct BannerEvents {
        std::function<void(const QString& text)> replied;
        std::function<void()> clicked;
        std::function<void()> dismissed;
        /// Comes last, however the banner ended, unless `closeBanner` or a replacement ended it.
        std::function<void()> gone;
    };

    NotificationPanels();
    NotificationPanels(const NotificationPanels&) = delete;
    NotificationPanels& operator=(const NotificationPanels&) = delete;
    ~NotificationPanels() override;

    /// False without a display.
    static bool canShow();

    /// Replaces a banner of the same identifier in place. A few stand at once and some wait for their turn;
    /// false when too many wait already.
    bool showBanner(const std::string& identifier, const NotificationBanner::Content& content,
                    BannerEvents events);
    /// Whether another banner can be shown or can wait.
    bool hasRoom() const;
    /// False for a banner that still waits for its turn.
    bool isOnScreen(const std::string& identifier) const;
    bool isInUse(const std::string& identifier) const;
    bool isReplyOpen(const std::string& identifier) const;
    void closeBanner(const std::string& identifier);

    /// Opens a panel, or brings up the one already open for this identifier.
    void openReply(const std::string& identifier, const ReplyPanel::Prompt& prompt,
                   std::function<void(const QString& text)> replied);

private:
    struct Shown {
        std::string identifier;
        FloatingPanel* panel;
    };
    struct Waiting {
        std::string identifier;
        NotificationBanner::Content content;
        BannerEvents events;
    };

    NotificationBanner* makeBanner(const NotificationBanner::Content& content, BannerEvents events);
    void take(FloatingPanel* panel);
    void showWaiting();
    void arrange();
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::vector<Shown> banners_;
    std::vector<Shown> replies_;
    std::deque<Waiting> waiting_;
};

} // namespace velloway
