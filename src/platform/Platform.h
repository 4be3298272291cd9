#pragma once

namespace velloway {

class Accessibility;
class Application;
class DispatchQueue;
class Files;
class Host;
class InputEvents;
class Log;
class LoginItem;
class Memory;
class Network;
class Pasteboard;
class Scripts;
class StatusItem;
class UserDefaults;
class UserNotificationCenter;
class Windows;
class Workspace;

/// One host, whole: every port, ready for use. Only the composition of the program sees it; each object is
/// given the few ports that it needs. Everything named here outlives the program's objects.
struct Platform {
    DispatchQueue& mainQueue;
    DispatchQueue& serverQueue;
    DispatchQueue& fileQueue;
    DispatchQueue& readingQueue;
    Network& network;
    UserDefaults& userDefaults;
    UserNotificationCenter& notificationCenter;
    Pasteboard& pasteboard;
    InputEvents& inputEvents;
    Scripts& scripts;
    Accessibility& accessibility;
    LoginItem& loginItem;
    StatusItem& statusItem;
    Application& application;
    Windows& windows;
    Workspace& workspace;
    Host& host;
    Files& files;
    Memory& memory;
    Log& log;
};

/// The platform out of an object that has each port under its name here.
template <class Ports> Platform platformOf(Ports& ports) {
    return {.mainQueue = ports.mainQueue,
            .serverQueue = ports.serverQueue,
            .fileQueue = ports.fileQueue,
            .readingQueue = ports.readingQueue,
            .network = ports.network,
            .userDefaults = ports.userDefaults,
            .notificationCenter = ports.notificationCenter,
            .pasteboard = ports.pasteboard,
            .inputEvents = ports.inputEvents,
            .scripts = ports.scripts,
            .accessibility = ports.accessibility,
            .loginItem = ports.loginItem,
            .statusItem = ports.statusItem,
            .application = ports.application,
            .windows = ports.windows,
            .workspace = ports.workspace,
            .host = ports.host,
            .files = ports.files,
            .memory = ports.memory,
            .log = ports.log};
}

} // namespace velloway
