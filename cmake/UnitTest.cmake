# vgw_test(<name> SOURCES <file>... [LINKS <target>...] [LABELS <label>...] [TIMEOUT <seconds>] [ENVIRONMENT <A=B>...]
#          [HEADERS <target>] [WAITS])
#
# One gtest binary and one ctest entry. Links every object library that LINKS reach, so hidden visibility costs no test.
# HEADERS: a target of vgw_test_headers, for tests that read more heavy headers than the framework's.
# LABELS: unit (the default), contract, property, process, regress, install.
function(vgw_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_MAIN;WAITS" "TIMEOUT;HEADERS" "SOURCES;LINKS;LABELS;ENVIRONMENT")
    find_package(GTest REQUIRED)
    add_executable(${name} ${arg_SOURCES})
    vgw_target_settings(${name})
    if(VGW_UNITY)
        set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 12)
    endif()
    vgw_object_closure(objects ${arg_LINKS})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} ${objects} GTest::gmock GTest::gtest)
    # What goes through very many cases is worth optimising; of the rest the compiler takes longer than the run.
    set(optimised "")
    if("property" IN_LIST arg_LABELS AND NOT arg_HEADERS)
        set(optimised OPTIMISED)
    endif()
    vgw_test_settings(${name} ${optimised})
    if(NOT arg_HEADERS)
        set(arg_HEADERS vgw_test_headers${optimised})
        vgw_test_headers(${arg_HEADERS} ${optimised})
    endif()
    vgw_reuse_headers(${name} ${arg_HEADERS})
    if(NOT arg_NO_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    set(load "")
    if(arg_WAITS)
        set(load WAITS)
    endif()
    vgw_add_test(
        ${name}
        COMMAND $<TARGET_FILE:${name}>
        LABELS ${arg_LABELS}
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT ${arg_ENVIRONMENT}
        ${load})
endfunction()

# vgw_test_settings(<target> [OPTIMISED])
#
# How tests and what they share are compiled: what runs long are the libraries, which stay optimised as they are.
function(vgw_test_settings target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMISED" "" "")
    if(arg_OPTIMISED AND NOT VGW_SANITIZE AND CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${target} PRIVATE -O1)
    else()
        target_compile_options(${target} PRIVATE -O0)
    endif()
    if(VGW_SANITIZE)
        # A third of the compiler's time: a report names their functions all the same, and no fuzzer is led by their blocks.
        target_compile_options(${target} PRIVATE -g0 ${VGW_NO_BLOCK_COUNTERS})
    endif()
    if(VGW_SANITIZE STREQUAL "thread")
        target_compile_definitions(${target} PRIVATE VGW_UNDER_THREAD_SANITIZER)
    endif()
    vgw_blind_in_strings(${target})
endfunction()

# vgw_test_headers(<target> [OPTIMISED] [HEADERS <header>...] [LINKS <target>...])
#
# The test framework's headers, and others, compiled once for all tests of a build that name <target> as their HEADERS, or,
# for vgw_test_headers itself, that name none.
function(vgw_test_headers target)
    if(TARGET ${target})
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 arg "OPTIMISED" "" "HEADERS;LINKS")
    set(source "${CMAKE_BINARY_DIR}/${target}.cc")
    file(CONFIGURE OUTPUT "${source}" CONTENT "int main() {}\n")
    add_executable(${target} "${source}")
    vgw_target_settings(${target})
    if(arg_OPTIMISED)
        vgw_test_settings(${target} OPTIMISED)
    else()
        vgw_test_settings(${target})
    endif()
    target_link_libraries(${target} PRIVATE ${arg_LINKS} GTest::gmock GTest::gtest)
    target_precompile_headers(${target} PRIVATE <gtest/gtest.h> <map> <sstream> <string> <vector> ${arg_HEADERS})
endfunction()

# vgw_add_test(<name> COMMAND <program> <argument>... [LABELS ...] [TIMEOUT <seconds>] [ENVIRONMENT ...] [SERIAL | WAITS])
#
# Registers a command with ctest under this build's prefix, with its time limit and the sanitizers' settings. For ./test one
# counts for three, one that WAITS, for most of its time, for one; what runs at a time counts for three a core, and one beside.
function(vgw_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SERIAL;WAITS" "TIMEOUT" "COMMAND;LABELS;ENVIRONMENT")
    if(NOT arg_LABELS)
        set(arg_LABELS unit)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    math(EXPR timeout "${arg_TIMEOUT} * ${VGW_TEST_TIME_FACTOR}")
    set(test "${VGW_TEST_PREFIX}${name}")
    add_test(NAME ${test} COMMAND ${VGW_TEST_LAUNCHER} ${arg_COMMAND})
    set(processors 3)
    if(arg_WAITS)
        set(processors 1)
    endif()
    set_tests_properties(
        ${test}
        PROPERTIES LABELS "${arg_LABELS}"
                   PROCESSORS ${processors}
                   TIMEOUT ${timeout}
                   ENVIRONMENT "${VGW_SANITIZER_ENVIRONMENT};${arg_ENVIRONMENT}")
    if(arg_SERIAL)
        set_tests_properties(${test} PROPERTIES RUN_SERIAL ON)
    endif()
endfunction()

# Of frames that were left 64 KiB of each size are kept and watched: each exception goes through all of them.
set(VGW_ADDRESS_CHECKS detect_leaks=1 strict_string_checks=1 check_initialization_order=1 detect_stack_use_after_return=1
                       max_uar_stack_size_log=16 malloc_context_size=12)
list(JOIN VGW_ADDRESS_CHECKS ":" VGW_ADDRESS_CHECKS)
set(VGW_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=${VGW_ADDRESS_CHECKS}"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1" "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")

# The thread sanitizer of this compiler refuses address spaces that are laid out at random too widely.
set(VGW_TEST_LAUNCHER "")
if(VGW_SANITIZE STREQUAL "thread")
    find_program(VGW_SETARCH setarch)
    if(VGW_SETARCH)
        set(VGW_TEST_LAUNCHER "${VGW_SETARCH}" -R)
    endif()
endif()
