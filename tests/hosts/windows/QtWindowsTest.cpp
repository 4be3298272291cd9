#include "hosts/linux/windows/QtWindows.h"
#include "desktop/WaitFor.h"
#include "fakes/FakeLog.h"
#include "hosts/linux/windows/ViewsLibrary.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QScreen>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>

namespace velloway::test {
namespace {

/// Counts what is asked of the views.
class CountingViews : public ViewWindows {
public:
    explicit CountingViews(QStringList& calls) : calls_(calls) {}
    std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                           std::shared_ptr<WindowContent>,
                                           std::function<void()> onClose) override {
        calls_ << "main " + QString::fromStdString(properties.title);
        onClose();
        return nullptr;
    }
    std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                      std::shared_ptr<WindowContent>) override {
        calls_ << QString("panel %1").arg(properties.size.width);
        return nullptr;
    }

private:
    QStringList& calls_;
};

TEST(QtWindowsTest, TheViewsAreLoadedWithTheFirstWindow) {
    QStringList calls;
    QtWindows windows([&] {
        calls << "load";
        return std::make_unique<CountingViews>(calls);
    });
    EXPECT_TRUE(calls.isEmpty());
    bool isClosed = false;
    windows.makeMainWindow({.title = "Velloway"}, nullptr, [&] { isClosed = true; });
    windows.makePanel({.size = {350, 80}}, nullptr);
    EXPECT_EQ(calls, (QStringList{"load", "main Velloway", "panel 350"}));
    EXPECT_TRUE(isClosed);
}

TEST(QtWindowsTest, WithoutViewsThereAreWindowsThatNeverShowAndTheNextOneAsksAgain) {
    int loads = 0;
    QtWindows windows([&] {
        ++loads;
        return nullptr;
    });
    const auto main = windows.makeMainWindow({}, nullptr, [] {});
    const auto panel = windows.makePanel({}, nullptr);
    EXPECT_EQ(loads, 2);
    for (const auto& window : {main, panel}) {
        ASSERT_TRUE(window);
        window->makeKeyAndOrderFront();
        window->orderFrontRegardless();
        window->setIsVisible(true);
        window->setFrameOrigin(1, 1);
        window->setContent(nullptr);
        window->center();
        EXPECT_FALSE(window->isVisible());
        window->orderOut();
    }
}

TEST(QtWindowsTest, TheVisibleFrameIsThatOfTheMainScreenCountedFromBelow) {
    QtWindows windows([] { return nullptr; });
    const auto frame = windows.mainScreenVisibleFrame();
    const QRect usable = QGuiApplication::primaryScreen()->availableGeometry();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->x, usable.x());
    EXPECT_EQ(frame->y, QGuiApplication::primaryScreen()->geometry().height() - usable.y() - usable.height());
    EXPECT_EQ(frame->width, usable.width());
    EXPECT_EQ(frame->height, usable.height());
}

QFileDialog* openDialog() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* dialog = qobject_cast<QFileDialog*>(window); dialog && dialog->isVisible()) {
            return dialog;
        }
    }
    return nullptr;
}

TEST(QtWindowsTest, TheOpenPanelAllowsWhatIsAskedForAndBeginsAtHome) {
    struct Case {
        OpenPanelOptions options;
        QFileDialog::FileMode mode;
    };
    QtWindows windows([] { return nullptr; });
    for (const Case& each :
         {Case{{}, QFileDialog::ExistingFile},
          {{.allowsMultipleSelection = true}, QFileDialog::ExistingFiles},
          {{.canChooseDirectories = true}, QFileDialog::Directory},
          {{.allowsMultipleSelection = true, .canChooseDirectories = true}, QFileDialog::Directory}}) {
        int answers = 0;
        windows.beginOpenPanel(each.options, [&](const auto& files) {
            ++answers;
            EXPECT_EQ(files, std::nullopt);
        });
        ASSERT_TRUE(waitFor([] { return openDialog() != nullptr; }));
        EXPECT_EQ(openDialog()->fileMode(), each.mode);
        EXPECT_EQ(openDialog()->directory(), QDir::home());
        EXPECT_TRUE(openDialog()->testAttribute(Qt::WA_DeleteOnClose));
        EXPECT_EQ(answers, 0);
        openDialog()->reject();
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(openDialog(), nullptr);
        processPending();
    }
}

TEST(QtWindowsTest, TheOpenPanelAnswersWithTheFilesThatWereChosen) {
    const QTemporaryDir folder;
    const std::string file = folder.filePath("a b.txt").toStdString();
    std::ofstream(file) << "text";
    QtWindows windows([] { return nullptr; });
    std::optional<std::vector<std::filesystem::path>> chosen;
    windows.beginOpenPanel({}, [&](auto files) { chosen = std::move(files); });
    ASSERT_TRUE(waitFor([] { return openDialog() != nullptr; }));
    openDialog()->setDirectory(folder.path());
    openDialog()->selectFile(QString::fromStdString(file));
    static_cast<QDialog*>(openDialog())->done(QDialog::Accepted);
    ASSERT_TRUE(waitFor([&] { return chosen.has_value(); }));
    EXPECT_EQ(*chosen, std::vector<std::filesystem::path>{file});
}

TEST(ViewsLibraryTest, WhereItIsMissingTheLogSaysSo) {
    FakeLog log;
    EXPECT_EQ(loadViewsLibrary(log), nullptr);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("[Windows] No window can be shown: ")) << lines[0];
    EXPECT_NE(lines[0].find("../lib/velloway/libvelloway-views.so"), std::string::npos) << lines[0];
}

} // namespace
} // namespace velloway::test
