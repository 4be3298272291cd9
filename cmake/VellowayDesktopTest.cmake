# Tests that need an X server or a message bus:
#
#   include(VellowayDesktopTest)
#   velloway_desktop_test(test_name a.cpp b.cpp)
#
# makes one GoogleTest program and one ctest entry that runs it on a desktop of its own (tests/desktop/with-desktop).
# Its main function comes from here: a QApplication exists while the cases run. WaitFor.h has functions that wait.
include(VellowayQt)

# Leaks of the toolkit, which only the address sanitizer reports.
set(VELLOWAY_TOOLKIT_LEAKS
    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/desktop/leaks.supp:print_suppressions=0")

function(velloway_desktop_test name)
    add_executable(${name} ${ARGN} ${CMAKE_SOURCE_DIR}/tests/desktop/DesktopTestMain.cpp)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE velloway_host_linux velloway_fakes GTest::gtest GTest::gmock
        Qt6::Widgets Qt6::DBus)
    if(NOT VELLOWAY_SANITIZE)
        target_compile_options(${name} PRIVATE -O0)
        set_target_properties(${name} PROPERTIES VELLOWAY_UNOPTIMISED ON)
    endif()
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tests/desktop/with-desktop $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
