include(VellowayDesktopTest)
velloway_desktop_test(test_notifications
    UserNotificationCenterContractTest.cpp
    LinuxUserNotificationCenterTest.cpp
    FakeNotificationService.cpp)
velloway_desktop_test(test_notifications_dunst NotificationsWithDunstTest.cpp)
