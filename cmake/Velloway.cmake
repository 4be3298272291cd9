# What every target of the project shares.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(velloway_options INTERFACE)
target_include_directories(velloway_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(velloway_options INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wno-missing-field-initializers)

# Other compilers may know other warnings, and a build by somebody else is not to stop at them.
string(REGEX MATCH "^[0-9]+" compiler_major "${CMAKE_CXX_COMPILER_VERSION}")
set(known_compilers GNU-12 Clang-14)
if(VELLOWAY_WERROR AND "${CMAKE_CXX_COMPILER_ID}-${compiler_major}" IN_LIST known_compilers)
    target_compile_options(velloway_options INTERFACE -Werror)
endif()

if(VELLOWAY_COVERAGE)
    target_compile_options(velloway_options INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(velloway_options INTERFACE --coverage)
endif()

if(VELLOWAY_SANITIZE STREQUAL "address")
    target_compile_options(velloway_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer -g1)
    target_link_options(velloway_options INTERFACE -fsanitize=address,undefined)
elseif(VELLOWAY_SANITIZE STREQUAL "thread")
    # The sanitizer ignores fences, and the compiler warns of those in the headers of others.
    target_compile_options(velloway_options INTERFACE -fsanitize=thread -Wno-tsan -fno-omit-frame-pointer -g1)
    target_link_options(velloway_options INTERFACE -fsanitize=thread)
elseif(VELLOWAY_SANITIZE STREQUAL "fuzzer")
    target_compile_options(velloway_options INTERFACE
        -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=undefined -g1)
    target_link_options(velloway_options INTERFACE -fsanitize=address,undefined)
elseif(VELLOWAY_SANITIZE)
    message(FATAL_ERROR "VELLOWAY_SANITIZE is '${VELLOWAY_SANITIZE}', which is none of: address, thread, fuzzer")
endif()

include(VellowayHardening)
