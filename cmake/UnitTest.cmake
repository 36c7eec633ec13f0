# vgw_test(<name> SOURCES <file>... [LINKS <target>...] [LABELS <label>...] [TIMEOUT <seconds>] [ENVIRONMENT <A=B>...])
#
# One gtest binary and one ctest entry. Links every object library that LINKS reach, so hidden visibility costs no test.
# LABELS: unit (the default), contract, property, process, regress, install.
function(vgw_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_MAIN" "TIMEOUT" "SOURCES;LINKS;LABELS;ENVIRONMENT")
    find_package(GTest REQUIRED)
    add_executable(${name} ${arg_SOURCES})
    vgw_target_settings(${name})
    vgw_object_closure(objects ${arg_LINKS})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} ${objects} GTest::gmock GTest::gtest)
    if(VGW_SANITIZE)
        target_compile_options(${name} PRIVATE -O0) # the libraries' own code stays optimised
    endif()
    # This compiler's optimiser sees copies out of bounds inside the standard library's own strings.
    target_compile_options(
        ${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds -Wno-restrict -Wno-stringop-overflow>)
    if(VGW_PCH)
        vgw_test_headers()
        target_precompile_headers(${name} REUSE_FROM vgw_test_headers)
        # So that ccache sees which headers it stands for.
        target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
    endif()
    if(NOT arg_NO_MAIN)
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    vgw_add_test(
        ${name}
        COMMAND $<TARGET_FILE:${name}>
        LABELS ${arg_LABELS}
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT ${arg_ENVIRONMENT})
endfunction()

# The test framework's headers, compiled once for all tests of a build.
function(vgw_test_headers)
    if(TARGET vgw_test_headers)
        return()
    endif()
    set(source "${CMAKE_BINARY_DIR}/vgw_test_headers.cc")
    file(CONFIGURE OUTPUT "${source}" CONTENT "int main() {}\n")
    add_executable(vgw_test_headers "${source}")
    vgw_target_settings(vgw_test_headers)
    target_link_libraries(vgw_test_headers PRIVATE GTest::gmock GTest::gtest)
    if(VGW_SANITIZE)
        target_compile_options(vgw_test_headers PRIVATE -O0)
    endif()
    target_precompile_headers(vgw_test_headers PRIVATE <gtest/gtest.h> <map> <sstream> <string> <vector>)
endfunction()

# vgw_add_test(<name> COMMAND <program> <argument>... [LABELS ...] [TIMEOUT <seconds>] [ENVIRONMENT ...] [SERIAL])
#
# Registers a command with ctest under this build's prefix, with its time limit and the sanitizers' settings.
function(vgw_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SERIAL" "TIMEOUT" "COMMAND;LABELS;ENVIRONMENT")
    if(NOT arg_LABELS)
        set(arg_LABELS unit)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    math(EXPR timeout "${arg_TIMEOUT} * ${VGW_TEST_TIME_FACTOR}")
    set(test "${VGW_TEST_PREFIX}${name}")
    add_test(NAME ${test} COMMAND ${VGW_TEST_LAUNCHER} ${arg_COMMAND})
    set_tests_properties(
        ${test}
        PROPERTIES LABELS "${arg_LABELS}"
                   TIMEOUT ${timeout}
                   ENVIRONMENT "${VGW_SANITIZER_ENVIRONMENT};${arg_ENVIRONMENT}")
    if(arg_SERIAL)
        set_tests_properties(${test} PROPERTIES RUN_SERIAL ON)
    endif()
endfunction()

set(VGW_SANITIZER_ENVIRONMENT
    "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:check_initialization_order=1:detect_stack_use_after_return=1"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1" "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")

# The thread sanitizer of this compiler refuses address spaces that are laid out at random too widely.
set(VGW_TEST_LAUNCHER "")
if(VGW_SANITIZE STREQUAL "thread")
    find_program(VGW_SETARCH setarch)
    if(VGW_SETARCH)
        set(VGW_TEST_LAUNCHER "${VGW_SETARCH}" -R)
    endif()
endif()
