#pragma once

#include "fakes/FakeDesktop.h"
#include "fakes/FakeDispatchQueue.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeInput.h"
#include "fakes/FakeLog.h"
#include "fakes/FakeNetwork.h"
#include "fakes/FakeUserDefaults.h"
#include "fakes/FakeUserNotificationCenter.h"
#include "platform/Platform.h"

namespace velloway::test {

/// A whole host of fakes that write into one journal.
struct FakePlatform {
    Journal journal;
    FakeDispatchQueue main;
    FakeDispatchQueue server;
    FakeNetwork network{&journal};
    FakeUserDefaults userDefaults;
    FakeUserNotificationCenter notificationCenter{&journal};
    FakePasteboard pasteboard{&journal};
    FakeInputEvents input;
    FakeScripts scripts;
    FakeAccessibility accessibility{&journal};
    FakeLoginItem loginItem;
    FakeStatusItem statusItem{&journal};
    FakeApplication application{&journal};
    FakeWindows windows{&journal};
    FakeWorkspace workspace;
    FakeHost host;
    FakeFiles files;
    FakeMemory memory;
    FakeLog log;
    /// Last, because the jobs that are left at the end may hold files.
    FakeDispatchQueue fileQueue;

    Platform platform() { return platform(windows); }
    /// The same host with other windows.
    Platform platform(Windows& otherWindows) {
        return {.mainQueue = main,
                .serverQueue = server,
                .fileQueue = fileQueue,
                .readingQueue = server,
                .network = network,
                .userDefaults = userDefaults,
                .notificationCenter = notificationCenter,
                .pasteboard = pasteboard,
                .inputEvents = input,
                .scripts = scripts,
                .accessibility = accessibility,
                .loginItem = loginItem,
                .statusItem = statusItem,
                .application = application,
                .windows = otherWindows,
                .workspace = workspace,
                .host = host,
                .files = files,
                .memory = memory,
                .log = log};
    }

    void drain() { test::drain(main, server, fileQueue); }
};

} // namespace velloway::test
