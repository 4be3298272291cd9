#include "bridge/SettingsBridge.h"

#include <QKeyEvent>
#include <QMetaObject>

#include <type_traits>

namespace velloway {

namespace {

template <class Row, class Member> auto role(const char* name, Member member) {
    return typename RowModel<Row, std::string>::Role{
        name, [member](const Row& row) { return toVariant(row.*member); }};
}

template <class Row, class Key> std::vector<typename RowModel<Row, Key>::Role>
roles(std::initializer_list<typename RowModel<Row, std::string>::Role> list) {
    std::vector<typename RowModel<Row, Key>::Role> out;
    for (const auto& entry : list) {
        out.push_back({entry.name, entry.value});
    }
    return out;
}

template <class Row> typename RowModel<Row, std::string>::Role idRole() {
    return {"rowId", [](const Row& row) { return toVariant(row.id.text()); }};
}

/// The row whose identity has this text, or null.
template <class Row> const Row* rowWithId(const std::vector<Row>& rows, const QString& id) {
    for (const Row& row : rows) {
        if (toQt(row.id.text()) == id) {
            return &row;
        }
    }
    return nullptr;
}

QVariantMap entry(std::initializer_list<std::pair<const char*, QVariant>> members) {
    QVariantMap map;
    for (const auto& [name, value] : members) {
        map.insert(QString::fromLatin1(name), value);
    }
    return map;
}

QVariant chatHeaderVariant(const std::optional<ChatHeader>& header) {
    if (!header) {
        return QVariant::fromValue(nullptr);
    }
    QVariantList sims;
    for (const SimChoice& sim : header->sims) {
        sims.push_back(entry({{"carrier", toVariant(sim.carrier)}, {"slot", toVariant(sim.slot)}}));
    }
    return entry({{"name", toVariant(header->name)}, {"address", toVariant(header->address)}, {"sims", sims}});
}

QVariant statusVariant(const StatusRow& row) {
    QVariant battery = QVariant::fromValue(nullptr);
    if (row.battery) {
        battery = entry({{"symbol", toVariant(row.battery->symbol)},
                         {"color", toVariant(row.battery->color)},
                         {"text", toVariant(row.battery->text)}});
    }
    return entry({{"isConnected", row.isConnected},
                  {"symbol", toVariant(row.symbol)},
                  {"color", toVariant(row.color)},
                  {"headline", toVariant(row.headline)},
                  {"detail", toVariant(row.detail)},
                  {"battery", battery}});
}

const char* nameOf(TabContent content) {
    switch (content) {
    case TabContent::calls:
        return "calls";
    case TabContent::sendSms:
        return "sendSms";
    case TabContent::fileDrop:
        return "fileDrop";
    case TabContent::notifications:
        return "notifications";
    case TabContent::remoteControl:
        return "remoteControl";
    case TabContent::clipboard:
        return "clipboard";
    case TabContent::settings:
        return "settings";
    case TabContent::info:
        return "info";
    }
    return "";
}

const char* nameOf(RemoteSection section) {
    switch (section) {
    case RemoteSection::media:
        return "media";
    case RemoteSection::volume:
        return "volume";
    case RemoteSection::dPad:
        return "dPad";
    case RemoteSection::core:
        return "core";
    case RemoteSection::system:
        return "system";
    }
    return "";
}

const char* nameOf(NotificationPermissionRow row) {
    switch (row) {
    case NotificationPermissionRow::none:
        return "none";
    case NotificationPermissionRow::requestPermission:
        return "requestPermission";
    case NotificationPermissionRow::openSettings:
        return "openSettings";
    case NotificationPermissionRow::enabled:
        return "enabled";
    }
    return "";
}

KeyEquivalent::Key remoteKey(int key) {
    using Key = KeyEquivalent::Key;
    switch (key) {
    case Qt::Key_Up:
        return Key::upArrow;
    case Qt::Key_Down:
        return Key::downArrow;
    case Qt::Key_Left:
        return Key::leftArrow;
    case Qt::Key_Right:
        return Key::rightArrow;
    case Qt::Key_Space:
        return Key::space;
    case Qt::Key_Escape:
        return Key::escape;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Key::returnKey;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return Key::tab;
    case Qt::Key_N:
        return Key::n;
    default:
        return Key::none;
    }
}

} // namespace

SettingsBridge::SettingsBridge(std::shared_ptr<SettingsView> view, QObject* parent)
    : QObject(parent),
      view_(std::move(view)),
      threads_([](const SmsThreadRow& row) { return row.id; },
               roles<SmsThreadRow, std::string>({role<SmsThreadRow>("address", &SmsThreadRow::displayAddress),
                                                 role<SmsThreadRow>("initials", &SmsThreadRow::avatarInitials),
                                                 role<SmsThreadRow>("name", &SmsThreadRow::name),
                                                 role<SmsThreadRow>("date", &SmsThreadRow::date),
                                                 role<SmsThreadRow>("preview", &SmsThreadRow::preview),
                                                 role<SmsThreadRow>("isActive", &SmsThreadRow::isActive)})),
      bubbles_([](const ChatRow& row) { return row.date; },
               roles<ChatRow, double>(
                   {role<ChatRow>("body", &ChatRow::body),
                    {"time", [this](const ChatRow& row) { return toVariant(view_->formatDate(row.date)); }},
                    role<ChatRow>("isOutgoing", &ChatRow::isOutgoing)})),
      recentCalls_([](const RecentCallRow& row) { return row.id; },
                   roles<RecentCallRow, double>({role<RecentCallRow>("number", &RecentCallRow::number),
                                                 role<RecentCallRow>("name", &RecentCallRow::name),
                                                 role<RecentCallRow>("date", &RecentCallRow::date),
                                                 role<RecentCallRow>("symbol", &RecentCallRow::symbol),
                                                 role<RecentCallRow>("colorRole", &RecentCallRow::color)})),
      notifications_([](const NotificationRow& row) { return row.id.text(); },
                     roles<NotificationRow, std::string>(
                         {idRole<NotificationRow>(), role<NotificationRow>("letter", &NotificationRow::letter),
                          role<NotificationRow>("app", &NotificationRow::app),
                          role<NotificationRow>("time", &NotificationRow::time),
                          role<NotificationRow>("title", &NotificationRow::title),
                          role<NotificationRow>("body", &NotificationRow::body),
                          role<NotificationRow>("isReplying", &NotificationRow::isReplying)})),
      transfers_([](const FileTransferRow& row) { return row.id.text(); },
                 roles<FileTransferRow, std::string>(
                     {idRole<FileTransferRow>(), role<FileTransferRow>("symbol", &FileTransferRow::symbol),
                      role<FileTransferRow>("colorRole", &FileTransferRow::color),
                      role<FileTransferRow>("fileName", &FileTransferRow::fileName),
                      role<FileTransferRow>("isCompleted", &FileTransferRow::isCompleted),
                      role<FileTransferRow>("progress", &FileTransferRow::progress),
                      role<FileTransferRow>("percentage", &FileTransferRow::percentage),
                      role<FileTransferRow>("detail", &FileTransferRow::detail),
                      role<FileTransferRow>("showsReveal", &FileTransferRow::showsRevealButton)})),
      clipboard_([](const ClipboardRow& row) { return row.id.text(); },
                 roles<ClipboardRow, std::string>({idRole<ClipboardRow>(),
                                                   role<ClipboardRow>("text", &ClipboardRow::text),
                                                   role<ClipboardRow>("date", &ClipboardRow::date)})) {
    fields_.bind("selectedTab", view_->selectedTab);
    fields_.bind("contactQuery", view_->contactQuery);
    fields_.bind("chatText", view_->chatText);
    fields_.bind("replyText", view_->replyText);
    fields_.bind("selectedSimSlot", view_->selectedSimSlot);
    fields_.bind("launchAtLogin", view_->launchAtLogin);
    fields_.show("serverRestartNeeded", view_->serverRestartNeeded);
    fields_.show("activeRecipient", view_->activeRecipient);

    for (std::size_t i = 0; i < shownCount; ++i) {
        read(static_cast<Shown>(i));
        follow(static_cast<Shown>(i));
    }
}

SettingsBridge::~SettingsBridge() = default;

void SettingsBridge::follow(Shown value) {
    subscriptions_.push_back(view_->observe(value, [this, value] { changed(value); }));
}

void SettingsBridge::changed(Shown value) {
    stale_.set(static_cast<std::size_t>(value));
    if (!isScheduled_ && onScreen_) {
        isScheduled_ = true;
        QMetaObject::invokeMethod(
            this, [this] { refresh(); }, Qt::QueuedConnection);
    }
}

void SettingsBridge::setOnScreen(bool onScreen) {
    const bool appears = onScreen && !onScreen_;
    onScreen_ = onScreen;
    if (appears) {
        tabThatAppeared_ = view_->selectedTab.get();
        view_->viewAppears();
        // The local address and the names of days change without telling.
        stale_.set();
        refresh();
    }
}

void SettingsBridge::refresh() {
    isScheduled_ = false;
    if (!onScreen_) {
        return;
    }
    const std::int64_t tab = view_->selectedTab.get();
    if (tab != tabThatAppeared_) {
        tabThatAppeared_ = tab;
        view_->tabAppears(tab);
        stale_.set();
    }
    for (std::size_t i = 0; i < shownCount; ++i) {
        if (stale_.test(i) && isOnScreen(static_cast<Shown>(i))) {
            stale_.reset(i);
            read(static_cast<Shown>(i));
        }
    }
}

bool SettingsBridge::isOnScreen(Shown value) const {
    const TabContent tab = view_->tabContent();
    switch (value) {
    case Shown::tab:
        return true;
    case Shown::smsList:
    case Shown::smsChat:
    case Shown::composer:
        return tab == TabContent::sendSms;
    case Shown::dialPad:
    case Shown::recentCalls:
        return tab == TabContent::calls;
    case Shown::notifications:
        return tab == TabContent::notifications;
    case Shown::fileTransfers:
        return tab == TabContent::fileDrop;
    case Shown::clipboard:
        return tab == TabContent::clipboard;
    case Shown::remote:
        return tab == TabContent::remoteControl;
    case Shown::settings:
        return tab == TabContent::settings;
    }
    return true;
}

void SettingsBridge::read(Shown value) {
    switch (value) {
    case Shown::tab: {
        shown_.put("tabContent", QString::fromLatin1(nameOf(view_->tabContent())));
        const TabRow* row = selectedRow(view_->selectedTab.get());
        shown_.put("selectedRow", row ? row->index : -1);
        // What the new tab shows may have changed while it was away.
        if (stale_.any() && onScreen_) {
            changed(Shown::tab);
            stale_.reset(static_cast<std::size_t>(Shown::tab));
        }
        break;
    }
    case Shown::smsList:
        readSmsList();
        break;
    case Shown::smsChat:
        readSmsChat();
        break;
    case Shown::composer:
        shown_.put("canSend", view_->composer().canSend);
        break;
    case Shown::dialPad: {
        const DialPad pad = view_->dialPad();
        shown_.put("dialPad", entry({{"numberText", toVariant(pad.numberText)},
                                     {"canCall", pad.canCall},
                                     {"showsDelete", pad.showsDelete},
                                     {"showsSimPicker", pad.showsSimPicker}}));
        break;
    }
    case Shown::recentCalls:
        recentCalls_.assign(view_->recentCallRows());
        break;
    case Shown::notifications: {
        notifications_.assign(view_->notificationRows());
        const NotificationsFooter footer = view_->notificationsFooter();
        shown_.put("notificationsCount", toVariant(footer.count));
        shown_.put("canClearNotifications", footer.canClear);
        break;
    }
    case Shown::fileTransfers:
        transfers_.assign(view_->fileTransferRows());
        shown_.put("showsClearFileTransfers", view_->showsClearFileTransfers());
        break;
    case Shown::clipboard:
        clipboard_.assign(view_->clipboardRows());
        shown_.put("showsClearClipboard", view_->showsClearClipboard());
        break;
    case Shown::remote:
        shown_.put("showsAccessibilityWarning", view_->showsAccessibilityWarning());
        break;
    case Shown::settings:
        readSettings();
        break;
    }
}

void SettingsBridge::readSmsList() {
    SmsList list = view_->smsList();
    shown_.put("smsIsEmpty", list.showsEmptyState);
    shown_.put("showsClearSearch", list.showsClearButton);
    shown_.put("newMessageTo", toVariant(list.newMessageTo));
    threads_.assign(std::move(list.rows));
}

void SettingsBridge::readSmsChat() {
    shown_.put("chatHeader", chatHeaderVariant(view_->chatHeader()));
    const std::vector<const SmsRecord*> messages = view_->activeMessages();
    std::vector<ChatRow> rows;
    rows.reserve(messages.size());
    for (const SmsRecord* message : messages) {
        rows.push_back({.date = message->date, .body = message->body, .isOutgoing = isOutgoing(*message)});
    }
    bubbles_.assign(std::move(rows));
}

void SettingsBridge::readSettings() {
    shown_.put("status", statusVariant(view_->statusRow()));
    shown_.put("localIP", toVariant(view_->localIP()));
    shown_.put("portText", toVariant(view_->portText()));
    shown_.put("notificationPermission", QString::fromLatin1(nameOf(view_->notificationPermissionRow())));
}

// Operations that take more than they are given

bool SettingsBridge::showsLabels(double width) const {
    return AdaptiveLabelStyle::forWidth(width).showLabels;
}

bool SettingsBridge::pressKey(int key, const QString& text, bool isRepeat) {
    KeyPress press{.phase = isRepeat ? KeyPress::Phase::repeat : KeyPress::Phase::down,
                   .characters = fromQt(text)};
    switch (key) {
    case Qt::Key_Backspace:
        press.key = KeyPress::Key::deleteKey;
        press.characters.clear();
        break;
    case Qt::Key_Delete:
        press.key = KeyPress::Key::deleteForward;
        press.characters.clear();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        press.key = KeyPress::Key::returnKey;
        press.characters.clear();
        break;
    default:
        break;
    }
    return view_->pressKey(press) == KeyPressResult::handled;
}

bool SettingsBridge::pressRemoteShortcut(int key, int modifiers) {
    // The toolkit reports Shift-Tab as a key of its own.
    const bool shift = (modifiers & Qt::ShiftModifier) != 0 || key == Qt::Key_Backtab;
    KeyEquivalent pressed{.key = remoteKey(key),
                          .shift = shift,
                          .control = (modifiers & Qt::ControlModifier) != 0,
                          .option = (modifiers & Qt::AltModifier) != 0,
                          .command = (modifiers & Qt::MetaModifier) != 0};
    return pressed.key != KeyEquivalent::Key::none && view_->pressRemoteShortcut(pressed);
}

void SettingsBridge::openReply(const QString& id) {
    if (const NotificationRow* row = rowWithId(notifications_.rows(), id)) {
        view_->openReply(row->id);
    }
}

void SettingsBridge::sendReply(const QString& id) {
    if (const NotificationRow* row = rowWithId(notifications_.rows(), id)) {
        view_->sendReply(row->id);
    }
}

void SettingsBridge::revealFile(const QString& id) {
    if (const FileTransferRow* row = rowWithId(transfers_.rows(), id)) {
        view_->revealFile(row->id);
    }
}

void SettingsBridge::copyToClipboard(const QString& id) {
    if (const ClipboardRow* row = rowWithId(clipboard_.rows(), id)) {
        view_->copyToClipboard(row->id);
    }
}

void SettingsBridge::commitPort(const QString& text) {
    view_->commitPort(fromQt(text));
    readSettings();
}

// Tables and texts

QVariantList SettingsBridge::tabs() const {
    QVariantList list;
    for (const TabRow& row : tabRows) {
        list.push_back(
            entry({{"index", row.index}, {"title", toVariant(row.title)}, {"symbol", toVariant(row.symbol)}}));
    }
    return list;
}

QVariantList SettingsBridge::dialButtons() const {
    QVariantList list;
    for (const DialButton& button : SettingsView::dialButtons) {
        list.push_back(entry({{"digit", toVariant(button.digit)}, {"letters", toVariant(button.letters)}}));
    }
    return list;
}

QVariantList SettingsBridge::simSegments() const {
    QVariantList list;
    for (const SimSegment& segment : velloway::simSegments) {
        list.push_back(entry({{"title", toVariant(segment.title)}, {"slot", toVariant(segment.slot)}}));
    }
    return list;
}

QVariantList SettingsBridge::remoteButtons() const {
    QVariantList list;
    for (std::size_t i = 0; i < velloway::remoteButtons.size(); ++i) {
        const RemoteButton& button = velloway::remoteButtons[i];
        list.push_back(entry({{"index", static_cast<int>(i)},
                              {"section", QString::fromLatin1(nameOf(button.section))},
                              {"title", toVariant(button.title)},
                              {"symbol", toVariant(button.symbol)},
                              {"command", toVariant(button.command)},
                              {"tooltip", toVariant(button.tooltip)}}));
    }
    return list;
}

QVariantList SettingsBridge::shortcuts() const {
    QVariantList list;
    for (const ShortcutRow& row : shortcutRows) {
        list.push_back(entry({{"key", toVariant(row.key)}, {"meaning", toVariant(row.meaning)}}));
    }
    return list;
}

QVariantMap SettingsBridge::texts() const {
    const auto map = [](std::initializer_list<std::pair<const char*, std::string_view>> members) {
        QVariantMap out;
        for (const auto& [name, value] : members) {
            out.insert(QString::fromLatin1(name), toVariant(value));
        }
        return out;
    };
    using namespace velloway;
    QVariantMap all;
    all["sms"] = map({{"title", smsTexts::title},
                      {"refreshSymbol", smsTexts::refreshSymbol},
                      {"searchSymbol", smsTexts::searchSymbol},
                      {"searchPlaceholder", smsTexts::searchPlaceholder},
                      {"clearSymbol", smsTexts::clearSymbol},
                      {"emptySymbol", smsTexts::emptySymbol},
                      {"empty", smsTexts::empty},
                      {"newMessageSymbol", smsTexts::newMessageSymbol},
                      {"newMessageCaption", smsTexts::newMessageCaption},
                      {"noChatSymbol", smsTexts::noChatSymbol},
                      {"noChat", smsTexts::noChat},
                      {"noSim", smsTexts::noSim},
                      {"simLabel", smsTexts::simLabel},
                      {"newConversation", smsTexts::newConversation},
                      {"composerPlaceholder", smsTexts::composerPlaceholder},
                      {"sendSymbol", smsTexts::sendSymbol}});
    all["calls"] = map({{"callSymbol", callsTexts::callSymbol},
                        {"deleteSymbol", callsTexts::deleteSymbol},
                        {"recentCalls", callsTexts::recentCalls},
                        {"noRecentCalls", callsTexts::noRecentCalls}});
    all["notifications"] = map({{"emptyTitle", notificationsTexts::emptyTitle},
                                {"emptySymbol", notificationsTexts::emptySymbol},
                                {"emptyDescription", notificationsTexts::emptyDescription},
                                {"clearAll", notificationsTexts::clearAll},
                                {"reply", notificationsTexts::reply},
                                {"replyPlaceholder", notificationsTexts::replyPlaceholder},
                                {"send", notificationsTexts::send},
                                {"cancel", notificationsTexts::cancel}});
    all["fileDrop"] = map({{"title", fileDropTexts::title},
                           {"clearHistory", fileDropTexts::clearHistory},
                           {"description", fileDropTexts::description},
                           {"send", fileDropTexts::send},
                           {"sendSymbol", fileDropTexts::sendSymbol},
                           {"revealSymbol", fileDropTexts::revealSymbol},
                           {"revealTooltip", fileDropTexts::revealTooltip}});
    all["clipboard"] = map({{"title", clipboardTexts::title},
                            {"clearHistory", clipboardTexts::clearHistory},
                            {"description", clipboardTexts::description},
                            {"send", clipboardTexts::send},
                            {"sendSymbol", clipboardTexts::sendSymbol},
                            {"emptySymbol", clipboardTexts::emptySymbol},
                            {"empty", clipboardTexts::empty},
                            {"rowSymbol", clipboardTexts::rowSymbol},
                            {"copySymbol", clipboardTexts::copySymbol},
                            {"copyTooltip", clipboardTexts::copyTooltip}});
    all["remote"] = map({{"control", remoteTexts::control},
                         {"media", remoteTexts::media},
                         {"volume", remoteTexts::volume},
                         {"navigation", remoteTexts::navigation},
                         {"dPad", remoteTexts::dPad},
                         {"core", remoteTexts::core},
                         {"system", remoteTexts::system},
                         {"shortcuts", remoteTexts::shortcuts},
                         {"warningSymbol", remoteTexts::warningSymbol},
                         {"warningTitle", remoteTexts::warningTitle},
                         {"warning", remoteTexts::warning},
                         {"warningNote", remoteTexts::warningNote},
                         {"openSettings", remoteTexts::openSettings},
                         {"refreshStatus", remoteTexts::refreshStatus}});
    all["settings"] = map({{"serverSection", settingsTexts::serverSection},
                           {"serverFooter", settingsTexts::serverFooter},
                           {"status", settingsTexts::status},
                           {"localIP", settingsTexts::localIP},
                           {"copySymbol", settingsTexts::copySymbol},
                           {"port", settingsTexts::port},
                           {"portPrompt", settingsTexts::portPrompt},
                           {"restart", settingsTexts::restart},
                           {"notificationsSection", settingsTexts::notificationsSection},
                           {"requestPermission", settingsTexts::requestPermission},
                           {"blocked", settingsTexts::blocked},
                           {"enabled", settingsTexts::enabled},
                           {"enabledSymbol", settingsTexts::enabledSymbol},
                           {"generalSection", settingsTexts::generalSection},
                           {"launchAtLogin", settingsTexts::launchAtLogin}});
    all["info"] = map({{"name", infoTexts::name},
                       {"version", infoTexts::version},
                       {"descriptionSection", infoTexts::descriptionSection},
                       {"description", infoTexts::description},
                       {"developerSection", infoTexts::developerSection},
                       {"developerLabel", infoTexts::developerLabel},
                       {"developerName", infoTexts::developerName},
                       {"profileTitle", infoTexts::profileTitle},
                       {"supportSection", infoTexts::supportSection},
                       {"supportSymbol", infoTexts::supportSymbol},
                       {"walletName", infoTexts::walletName},
                       {"walletAccount", infoTexts::walletAccount}});
    return all;
}

} // namespace velloway
