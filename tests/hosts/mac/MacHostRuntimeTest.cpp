#include "app/Program.h"
#include "hosts/HostRuntime.h"
#include "hosts/mac/FakeCoreFoundation.h"
#include "hosts/mac/FakeDispatch.h"
#include "hosts/mac/FakeMac.h"
#include "hosts/mac/FakeNetworkFramework.h"
#include "hosts/mac/FakeSurface.h"
#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/QtSurface.h"
#include "runtime/ObjectiveC.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <cerrno>
#include <thread>

namespace velloway {

// The one part that only a Mac can have: views of the toolkit inside windows of the platform.

class QtSurfaces::Engine {};

QtSurfaces::QtSurfaces(std::shared_ptr<const SystemImages> images) : images_(std::move(images)) {}

QtSurfaces::~QtSurfaces() = default;

std::unique_ptr<ContentSurface> QtSurfaces::make(std::shared_ptr<WindowContent> content,
                                                 MacWindows::Look look) {
    EXPECT_NE(images_, nullptr);
    return test::makeFakeSurface(std::move(content), look);
}

} // namespace velloway

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::IsEmpty;
using testing::StartsWith;

/// What stands when the toolkit's application object begins to be made.
struct ToolkitStart {
    int times = 0;
    bool hasDelegate = false;
    QByteArray transform;
} toolkitStart;

void noteToolkitStart() {
    ++toolkitStart.times;
    toolkitStart.hasDelegate = fakeDelegateAnswers("applicationDidFinishLaunching:");
    toolkitStart.transform = qgetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
}
Q_COREAPP_STARTUP_FUNCTION(noteToolkitStart)

extern "C" objc_class nsObject asm("OBJC_CLASS_$_NSObject");

void leaveObjectToPool() {
    objc_autorelease(runtimeAllocate(&nsObject));
}

class MacHostRuntimeTest : public testing::Test {
protected:
    MacHostRuntimeTest() {
        resetFakeMac();
        fakeNetworkFramework = {};
        fakeAccessibility = {};
        fakeNetworkFramework.onCall = [](const std::string& call) {
            if (call == "listener start") {
                fakeMac.note("the server listens");
            }
        };
        fakeAccessibility.onPrompt = [] { fakeMac.note("trust prompt"); };
        toolkitStart = {};
        qunsetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
        host = makeHost(argumentCount, arguments).host;
        program = std::make_unique<Program>(host->platform(), [this] { host->terminate(); });
    }
    ~MacHostRuntimeTest() override {
        // The program closes nothing when it ends.
        settle();
        program.reset();
        settle();
        host.reset();
        fakeDispatch::runAll();
        fakeNetworkFramework = {};
        fakeAccessibility = {};
        objc_autoreleasePoolPop(pool);
    }

    void settle() {
        for (int round = 0; round < 10; ++round) {
            fakeDispatch::runAll();
            QCoreApplication::processEvents();
            fakeMac.runLater();
        }
    }
    std::vector<std::string> calls() { return std::exchange(fakeMac.calls, {}); }

    /// Runs the event loop as main does, for as long as `body` in it.
    void runWith(std::function<void()> body) {
        constexpr int answer = 7;
        QTimer::singleShot(0, [body] {
            body();
            QCoreApplication::exit(answer);
        });
        EXPECT_EQ(host->run(program->delegate()), answer);
    }

    void* pool = objc_autoreleasePoolPush();
    char name[9] = "Velloway";
    char option[10] = "-platform";
    char platform[10] = "offscreen";
    char* arguments[4] = {name, option, platform, nullptr};
    int argumentCount = 3;
    std::unique_ptr<HostRuntime> host;
    std::unique_ptr<Program> program;
};

TEST_F(MacHostRuntimeTest, TheToolkitStartsInTheBackgroundAndFindsOurDelegate) {
    EXPECT_EQ(toolkitStart.times, 1);
    EXPECT_TRUE(toolkitStart.hasDelegate);
    EXPECT_EQ(toolkitStart.transform, "1");
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
    EXPECT_EQ(QCoreApplication::applicationName(), "Velloway");
}

TEST_F(MacHostRuntimeTest, EachQueueHasItsLabel) {
    const Platform on = host->platform();
    const std::pair<DispatchQueue&, const char*> queues[] = {
        {on.serverQueue, "ws.server"}, {on.fileQueue, "ws.files"}, {on.readingQueue, "ws.reading"}};
    for (const auto& [queue, label] : queues) {
        EXPECT_EQ(fakeDispatch::factsOf(dynamic_cast<MacDispatchQueue&>(queue).native()).label, label);
    }
}

TEST_F(MacHostRuntimeTest, TheLaunchInsideTheEventLoopGoesThroughItsStepsInOrder) {
    bool hasRun = false;
    runWith([&] {
        EXPECT_THAT(calls(), IsEmpty()) << "before the system says that the launch is done";
        fakeLaunch();
        settle();
        EXPECT_THAT(calls(), ElementsAre("notification delegate", "notification settings",
                                         StartsWith("category REPLY_CATEGORY"), "trust prompt",
                                         "status item of length -1", "the server listens", "services provider",
                                         "activation policy 1"));
        hasRun = true;
    });
    EXPECT_TRUE(hasRun);
}

TEST_F(MacHostRuntimeTest, CallsOfTheSystemOutsideTheEventLoopDoNothing) {
    fakeLaunch();
    EXPECT_THAT(calls(), IsEmpty());
    runWith([] {});
    fakeLaunch();
    settle();
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(MacHostRuntimeTest, TheStatusLineWaitsForTheServer) {
    runWith([&] {
        fakeLaunch();
        EXPECT_EQ(fakeMenu().at(2).title, "Server: starting\u2026");
        fakeDispatch::runAll();
        EXPECT_EQ(fakeMenu().at(2).title, "Server: starting\u2026") << "set on another queue than the main one";
        settle();
        EXPECT_EQ(fakeMenu().at(2).title, "Server: listening on :8765");
    });
}

TEST_F(MacHostRuntimeTest, WorkFromAnyThreadRunsOnTheMainThreadInOrderAndInNestedLoops) {
    DispatchQueue& main = host->platform().mainQueue;
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    const auto note = [&](int number) {
        order.push_back(number);
        threads.push_back(std::this_thread::get_id());
    };
    runWith([&] {
        std::thread([&] {
            main.async([&] {
                note(1);
                QEventLoop nested;
                main.async([&] {
                    note(3);
                    nested.quit();
                });
                nested.exec();
                note(4);
            });
            main.async([&] { note(2); });
            EXPECT_FALSE(main.isCurrent());
        }).join();
        EXPECT_THAT(order, IsEmpty());
        settle();
        EXPECT_TRUE(main.isCurrent());
    });
    EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(threads, testing::Each(std::this_thread::get_id()));
}

TEST_F(MacHostRuntimeTest, WhatAJobLeavesToThePoolGoesWithTheJob) {
    DispatchQueue& main = host->platform().mainQueue;
    const int before = runtimeObjectsAlive();
    std::vector<int> between;
    runWith([&] {
        for (int round = 0; round < 3; ++round) {
            std::shared_ptr<void> leavesOneAtItsEnd(nullptr, [](void*) { leaveObjectToPool(); });
            main.async([&between, held = std::move(leavesOneAtItsEnd)] {
                between.push_back(runtimeObjectsAlive());
                leaveObjectToPool();
            });
        }
        settle();
    });
    EXPECT_THAT(between, ElementsAre(before, before, before));
    EXPECT_EQ(runtimeObjectsAlive(), before);
}

TEST_F(MacHostRuntimeTest, TheMenuOpensTheMainWindowAndClosingItLeavesTheDock) {
    runWith([&] {
        fakeLaunch();
        settle();
        calls();
        ASSERT_TRUE(clickFakeMenuItem(11));
        settle();
        const auto opened = calls();
        EXPECT_THAT(opened, Contains("activation policy 0"));
        EXPECT_THAT(opened, Contains("opaque surface"));
        EXPECT_THAT(opened, Contains("make key and order front"));
        EXPECT_EQ(opened.back(), "activate, ignoring others");
        fakeCloseMainWindow();
        EXPECT_EQ(calls().back(), "activation policy 1");
    });
}

TEST_F(MacHostRuntimeTest, TheEndIsAskedOfThePlatform) {
    runWith([&] {
        host->terminate();
        EXPECT_THAT(calls(), ElementsAre("terminate"));
    });
}

// What the toolkit makes of `terminate:` on a Mac.
TEST_F(MacHostRuntimeTest, TheEndWaitsForNoNestedEventLoopAndRunsNothingDown) {
    const auto end = [&] {
        runWith([&] {
            fakeLaunch();
            settle();
            QEventLoop alert;
            QTimer::singleShot(0, [] { QCoreApplication::quit(); });
            alert.exec();
            std::_Exit(3);
        });
        std::_Exit(4);
    };
    EXPECT_EXIT(end(), ExitedWithCode(0), "");
}

} // namespace
} // namespace velloway::test
