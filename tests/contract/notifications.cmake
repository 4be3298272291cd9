include(VellowayDesktopTest)
velloway_desktop_test(test_notifications
    UserNotificationCenterContractTest.cpp
    LinuxUserNotificationCenterTest.cpp
    FakeNotificationService.cpp)
velloway_desktop_test(test_notifications_dunst NotificationsWithDunstTest.cpp)

# Has a main function of its own: no QApplication, and a bus that it may take away.
add_executable(test_notifications_without_display NotificationsWithoutDisplayTest.cpp FakeNotificationService.cpp)
set_target_properties(test_notifications_without_display PROPERTIES AUTOMOC ON)
target_link_libraries(test_notifications_without_display PRIVATE velloway_host_linux velloway_fakes)
add_test(NAME test_notifications_without_display COMMAND test_notifications_without_display)
set_tests_properties(test_notifications_without_display PROPERTIES TIMEOUT 120)
