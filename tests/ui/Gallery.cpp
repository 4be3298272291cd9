// Draws every tab and panel in every state into pictures to look at. Fails when a view complains or a picture
// is blank.
#include "bridge/SymbolProvider.h"
#include "ui/ViewHarness.h"

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QPainter>
#include <QPalette>

#include <atomic>
#include <cstdio>

namespace velloway::test {
namespace {

std::atomic<int> complaints{0};

void hear(QtMsgType type, const QMessageLogContext&, const QString& message) {
    std::fprintf(stderr, "%s\n", qPrintable(message));
    complaints += type == QtDebugMsg || type == QtInfoMsg ? 0 : 1;
}

struct Look {
    QSize size;
    bool isDark;
    const char* name;
};

constexpr double minute = 60'000;

enum class Filling { empty, ordinary, extreme };

const char* nameOf(Filling filling) {
    switch (filling) {
    case Filling::empty:
        return "empty";
    case Filling::ordinary:
        return "filled";
    case Filling::extreme:
        return "extreme";
    }
    return "";
}

double milliseconds(const FakeHost& host) {
    return std::chrono::duration<double, std::milli>(host.time.time_since_epoch()).count();
}

std::vector<SmsRecord> ordinaryMessages(double now) {
    struct Person {
        const char* address;
        const char* name;
    };
    constexpr Person people[] = {{"+44 7700 900123", "Ada Winter"},
                                 {"+44 7700 900456", "Bruno Keller"},
                                 {"+90 532 555 0199", "Elif Demir"},
                                 {"+1 555 010 1234", "Katherine Moss"},
                                 {"+49 30 5550 112", "Jonas Brandt"},
                                 {"16216", ""},
                                 {"Bank ABC", ""},
                                 {"+81 3 5550 0102", "Yuki Tanaka"}};
    std::vector<SmsRecord> log;
    double age = 3 * minute;
    for (const Person& person : people) {
        const std::optional<std::string> name =
            *person.name ? std::optional<std::string>(person.name) : std::nullopt;
        log.push_back(
            {person.address, name, "Are we still on for tomorrow evening?", now - age - 60 * minute, 1});
        log.push_back(
            {person.address, name,
             "Yes! I booked a table for four, close to the river. Could you bring the charger that I left "
             "on your desk last week? It is the white one.",
             now - age - 55 * minute, 2});
        log.push_back({person.address, name, "Sure", now - age - 50 * minute, 1});
        log.push_back({person.address, name, "Yes 👍 see you at eight", now - age - 10 * minute, 2});
        log.push_back({person.address, name, "On my way. The train is five minutes late.", now - age, 1});
        age = age * 2.7 + 50 * minute;
    }
    return log;
}

std::vector<SmsRecord> extremeMessages(double now) {
    const std::string word = "Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft";
    return {
        {"+44 7700 900123", "Maximiliane-Alexandra von und zu Hohenstein-Wackernagel the Third", word + word,
         now - 9 * minute, 1},
        {"+44 7700 900123", std::nullopt, "👍", now - 8 * minute, 2},
        {"+44 7700 900123", std::nullopt, "👩‍👩‍👧‍👦 🏳️‍🌈 🇯🇵 ✨🚲",
         now - 7 * minute, 1},
        {"+44 7700 900123", std::nullopt,
         "مرحبا، كيف حالك اليوم؟ سأصل في الساعة الثامنة مساءً عند المحطة القديمة.", now - 6 * minute, 1},
        {"+44 7700 900123", std::nullopt, "שלום! נתראה מחר בערב", now - 5 * minute, 2},
        {"+44 7700 900123", std::nullopt, "谢谢 — ありがとう — شكرا — спасибо", now - 4 * minute, 2},
        {"+44 7700 900123", std::nullopt,
         "First line\nsecond line\n\nA link: "
         "https://example.org/a/very/long/path?with=a&long=query&that=does&not="
         "break&anywhere=at_all_because_it_is_one_word and on it goes.",
         now - 3 * minute, 1},
        {"السلام", std::nullopt, "رمز التحقق الخاص بك هو 123456", now - 40 * minute, 1},
        {"+90 532 555 0199", "🚲 Çağla Öztürk-Şahin 🌍 with quite a long name", "line one\nline two\nline three",
         now - 3000 * minute, 1},
        {"", std::nullopt, "No sender", now - 30000 * minute, 1},
    };
}

std::vector<CallRecord> calls(double now, bool isExtreme) {
    std::vector<CallRecord> log{
        {"+44 7700 900123", "Ada Winter", now - 12 * minute, 63, 1},
        {"+44 7700 900456", "Bruno Keller", now - 45 * minute, 0, 3},
        {"+90 532 555 0199", "Elif Demir", now - 300 * minute, 600, 2},
        {"16216", std::nullopt, now - 1500 * minute, 12, 5},
        {"+1 555 010 1234", "Katherine Moss", now - 9000 * minute, 80, 2},
    };
    if (isExtreme) {
        log.insert(log.begin(),
                   {"+4477009001234567890123456789012345678901234567890",
                    "A caller with a name that does not end before the row does, not by a long way 🚲", now, 0,
                    3});
        for (int i = 0; i < 30; ++i) {
            log.push_back({"+44 20 7946 0" + std::to_string(100 + i), "مريم العبدالله",
                           now - (20000 + i) * minute, 3, 1 + i % 3});
        }
    }
    return log;
}

void fillStore(ViewHarness& harness, Filling filling) {
    HistoryStore& store = harness.program.historyStore();
    const bool isExtreme = filling == Filling::extreme;
    const double now = std::chrono::duration<double>(harness.on.host.time.time_since_epoch()).count();
    store.availableSIMs.set({{0, "Blue Mobile"}, {1, isExtreme ? "A carrier with a long name" : "Blue"}});
    store.connectedRemoteIP.set("192.168.1.20");
    store.connectedDeviceName.set(isExtreme ? "The phone of Maximiliane-Alexandra von Hohenstein-Wackernagel, "
                                              "the old one with the cracked screen, not the new one at all"
                                            : "Ada's phone");
    store.connectedWifiName.set("Home Network 5G");
    store.batteryLevel.set(isExtreme ? 7 : 71);
    store.isCharging.set(!isExtreme);
    if (isExtreme) {
        harness.on.accessibility.trusted = false;
    }
    const std::string longText =
        "A text that runs on and on, over more lines than any row would show, so that it has to be cut: " +
        std::string(60, 'w') +
        " and again and again and again, until there is nothing more to be said about it.";
    store.add({.app = "Calendar", .title = "Dentist", .body = "Tomorrow at 9:30", .time = now - 90000});
    store.add({.app = "Chat", .title = "Ada Winter", .body = "See you at seven?", .time = now - 300});
    store.add({.app = "Messages", .title = "+44 7700 900456", .body = "On my way 🚲", .time = now - 60});
    if (isExtreme) {
        store.add({.app = "", .title = "", .body = longText, .time = now - 50});
        store.add(
            {.app = "تطبيق", .title = "رسالة جديدة من مريم", .body = "مرحبا، كيف حالك اليوم؟", .time = now});
        store.add(
            {.app = "messenger with a name that is far too long for one line of any row of this list at all",
             .title = longText,
             .body = longText,
             .time = now - 500000});
    }
    const auto send = [&](const char* name, bool isOutgoing, double progress, bool isCompleted, bool hasUrl) {
        FileTransferRecord record{.id = Uuid::random(),
                                  .fileName = name,
                                  .fileSize = 3'200'000,
                                  .date = harness.on.host.time,
                                  .isOutgoing = isOutgoing,
                                  .progress = progress,
                                  .isCompleted = isCompleted};
        if (hasUrl) {
            record.url = std::filesystem::path("/tmp") / "file";
        }
        store.addFileTransfer(record);
    };
    send("holiday-plan.pdf", false, 1, true, true);
    send("IMG_20260412_101530.jpg", true, 1, true, true);
    send("presentation.key", true, 0.999, false, true);
    send("song.flac", false, 0.37, false, false);
    if (isExtreme) {
        send("a-file-with-a-name-that-is-so-long-that-it-has-to-be-cut-in-its-middle-so-that-its-ending-can-"
             "still-be-"
             "seen-by-whoever-looks-at-this-list-of-transfers.tar.gz",
             false, 1, true, true);
        send("صورة العائلة.jpg", false, 1, true, true);
        send("zero.bin", true, 0, false, false);
    }
    store.addClipboard("https://example.org/article?id=42");
    store.addClipboard("Flat 3, 18 Mill Lane\nCambridge CB2 1RX");
    if (isExtreme) {
        std::string lines;
        for (int i = 1; i <= 25; ++i) {
            lines += "Line " + std::to_string(i) + " of a long text\n";
        }
        store.addClipboard(lines);
        store.addClipboard("مرحبا، كيف حالك اليوم؟ 🚲");
        store.addClipboard(std::string(700, 'x'));
    }
}

class Gallery {
public:
    explicit Gallery(const QString& folder) : folder_(folder) { QDir().mkpath(folder); }

    int failures() const { return failures_; }

    void shoot(QQuickWindow& window, const QString& name) {
        const QImage picture = window.grabWindow();
        if (isBlank(picture) || !picture.save(folder_ + '/' + name + ".png")) {
            std::fprintf(stderr, "%s is blank\n", qPrintable(name));
            ++failures_;
        }
    }

    void symbols() {
        const QDir files(":/symbols");
        const QStringList names = files.entryList({"*.svg"});
        constexpr int columns = 8;
        constexpr int cell = 120;
        const int rows = (static_cast<int>(names.size()) + columns - 1) / columns;
        QImage sheet(columns * cell, rows * cell, QImage::Format_RGB32);
        sheet.fill(QColor("#f6f6f7"));
        QPainter painter(&sheet);
        QFont font;
        font.setPixelSize(9);
        painter.setFont(font);
        for (int i = 0; i < names.size(); ++i) {
            const QPoint at(i % columns * cell, i / columns * cell);
            QString name = names[i];
            name.chop(4);
            painter.drawImage(at + QPoint(12, 20), drawSymbol(name, QColor("#1d1d1f"), {48, 48}));
            painter.drawImage(at + QPoint(74, 36), drawSymbol(name, QColor("#0a7bff"), {17, 17}));
            painter.drawText(QRect(at + QPoint(2, 78), QSize(cell - 4, 36)),
                             Qt::AlignHCenter | Qt::TextWrapAnywhere, name);
        }
        painter.end();
        sheet.save(folder_ + "/symbols.png");
    }

private:
    static bool isBlank(const QImage& picture) {
        if (picture.isNull()) {
            return true;
        }
        const QRgb first = picture.pixel(0, 0);
        int others = 0;
        for (int y = 0; y < picture.height(); y += 3) {
            for (int x = 0; x < picture.width(); x += 3) {
                others += picture.pixel(x, y) != first;
            }
        }
        return others < 100;
    }

    QString folder_;
    int failures_ = 0;
};

void setDark(bool isDark) {
    QPalette palette;
    palette.setColor(QPalette::Window, isDark ? QColor(30, 30, 32) : QColor(240, 240, 240));
    QApplication::setPalette(palette);
    processPending();
}

void shootTabs(Gallery& gallery, Filling filling, const Look& look) {
    setDark(look.isDark);
    ViewHarness harness;
    const double now = milliseconds(harness.on.host);
    if (filling != Filling::empty) {
        fillStore(harness, filling);
    } else {
        harness.program.historyStore().connectedRemoteIP.set(std::nullopt);
    }
    ContentView& window = harness.open(0);
    window.resize(look.size);
    SettingsView& state = harness.state();
    if (filling != Filling::empty) {
        const bool isExtreme = filling == Filling::extreme;
        state.phone.phoneSmsLog.set(isExtreme ? extremeMessages(now) : ordinaryMessages(now));
        state.phone.phoneCallLog.set(calls(now, isExtreme));
        state.calls.dialpadNumber.set(isExtreme ? "004477009001230123456789012345" : "07700900123");
        state.sms.activeRecipient.set("+44 7700 900123");
        state.sms.chatText.set(
            isExtreme ? "A text that I am writing and that is longer than the field in which I write it, "
                        "by quite a bit, and then some"
                      : "");
        state.notifications.replyingTo.set(harness.program.historyStore().items.get().at(1).id);
        if (isExtreme) {
            state.settings.port.set(65535);
        }
    }
    for (const TabRow& tab : tabRows) {
        state.selectedTab.set(tab.index);
        harness.require("the size of the look", [&] { return window.size() == look.size; });
        harness.settle();
        QTest::qWait(60);
        gallery.shoot(window, QStringLiteral("tab-%1-%2-%3")
                                  .arg(QString::fromLatin1(tab.title.data(), static_cast<int>(tab.title.size()))
                                           .toLower()
                                           .replace(' ', '-'),
                                       QString::fromLatin1(nameOf(filling)), QString::fromLatin1(look.name)));
    }
    if (filling == Filling::ordinary) {
        state.selectedTab.set(2);
        state.sms.contactQuery.set("+44 77");
        harness.settle();
        gallery.shoot(window, QStringLiteral("tab-sms-search-%1").arg(QLatin1String(look.name)));
        state.sms.contactQuery.set("");
        state.sms.activeRecipient.set("+33 1 55 50 10 20");
        harness.settle();
        gallery.shoot(window, QStringLiteral("tab-sms-new-%1").arg(QLatin1String(look.name)));
        state.sms.activeRecipient.set(std::nullopt);
        harness.settle();
        gallery.shoot(window, QStringLiteral("tab-sms-nochat-%1").arg(QLatin1String(look.name)));
    }
}

void shootPanels(Gallery& gallery, const Look& look) {
    setDark(look.isDark);
    const IncomingCallInfo callers[] = {
        {"+44 7700 900123", "Ada Winter"},
        {"unknown", std::nullopt},
        {"+44770090012301234567890123456789", "Maximiliane-Alexandra von und zu Hohenstein-Wackernagel"},
        {"+20 2 5550 1234", "مريم العبدالله 🚲"}};
    int number = 0;
    for (const IncomingCallInfo& caller : callers) {
        ViewHarness harness;
        ++number;
        harness.program.historyStore().incomingCallInfo.set(caller);
        harness.drawnPanel();
        QTest::qWait(30);
        gallery.shoot(*ViewHarness::panel(),
                      QStringLiteral("panel-ringing-%1-%2").arg(number).arg(QLatin1String(look.name)));
        QTest::mouseMove(ViewHarness::panel(), {0, 0});
        harness.click(ViewHarness::part("right", ViewHarness::panel()));
        harness.drawnPanel();
        harness.program.notifications().post(AppNotification::callDurationUpdated, std::int64_t{3725});
        harness.settle();
        QTest::qWait(30);
        gallery.shoot(*ViewHarness::panel(),
                      QStringLiteral("panel-active-%1-%2").arg(number).arg(QLatin1String(look.name)));
        harness.click(ViewHarness::part("left", ViewHarness::panel()));
        QTest::qWait(30);
        gallery.shoot(*ViewHarness::panel(),
                      QStringLiteral("panel-muted-%1-%2").arg(number).arg(QLatin1String(look.name)));
    }
}

int run(const QString& folder) {
    Gallery gallery(folder);
    gallery.symbols();
    const Look looks[] = {{{850, 550}, false, "850-light"},    {{850, 550}, true, "850-dark"},
                          {{800, 500}, false, "800-light"},    {{800, 500}, true, "800-dark"},
                          {{1600, 1000}, false, "1600-light"}, {{1600, 1000}, true, "1600-dark"}};
    for (const Look& look : looks) {
        for (const Filling filling : {Filling::empty, Filling::ordinary, Filling::extreme}) {
            shootTabs(gallery, filling, look);
        }
    }
    shootPanels(gallery, looks[0]);
    shootPanels(gallery, looks[1]);
    return gallery.failures() + complaints;
}

} // namespace
} // namespace velloway::test

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (argc != 2) {
        std::fprintf(stderr, "usage: velloway-gallery FOLDER\n");
        return 2;
    }
    qInstallMessageHandler(velloway::test::hear);
    return velloway::test::run(QString::fromLocal8Bit(argv[1])) == 0 ? 0 : 1;
}
