# What every target of this project is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Debug or RelWithDebInfo" FORCE)
endif()
# The measurements are stated for -O2. Assertions are the library's own and stay in every build.
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

# Nobody is to replace a library's function by another of that name, so the compiler may look into its own.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)

include(GNUInstallDirs)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(VGW_CCACHE ccache)
    if(VGW_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${VGW_CCACHE}")
    endif()
endif()

# The compiler collects its garbage later: a twentieth of its time for some 100 MB.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=600000>)

find_package(Threads REQUIRED)

# Linked by every target: warnings, include root, sanitizers. Never installed.
add_library(vgw_build_settings INTERFACE)
target_compile_options(
    vgw_build_settings
    INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
              # Clang counts changes of sign among conversions, and sees shadows among files that are compiled at a time.
              "$<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion;-Wno-shadow>")

if(VGW_SANITIZE STREQUAL "address")
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(VGW_SANITIZE STREQUAL "thread")
    set(sanitizers -fsanitize=thread)
    # The event loop's headers use fences that this sanitizer can't follow; the programs' loops have one thread.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        # Linked like a C program, so that the runtime comes without its operator new: tests that count allocations have one.
        add_link_options(--driver-mode=gcc)
        set(CMAKE_CXX_STANDARD_LIBRARIES "-lstdc++ -lm")
    endif()
elseif(VGW_SANITIZE)
    message(FATAL_ERROR "VGW_SANITIZE is '${VGW_SANITIZE}'; expected empty, address or thread")
endif()
if(VGW_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "VGW_FUZZ needs clang, the compiler is ${CMAKE_CXX_COMPILER_ID}")
    endif()
    if(VGW_TESTS)
        # What leads a fuzzer to new blocks. Watching each comparison too would make every test slower.
        set(block_counters inline-8bit-counters,pc-table)
        list(APPEND sanitizers -fsanitize-coverage=${block_counters})
        set(VGW_NO_BLOCK_COUNTERS -fno-sanitize-coverage=${block_counters} -Wno-unused-command-line-argument)
    else()
        list(APPEND sanitizers -fsanitize=fuzzer-no-link)
    endif()
    list(APPEND sanitizers "-fsanitize-coverage-ignorelist=${CMAKE_SOURCE_DIR}/fuzz/not_watched.txt")
endif()
if(sanitizers)
    # A pool would hide what a sanitizer is to find, so memory comes from plain operator new.
    target_compile_definitions(vgw_build_settings INTERFACE QOR_PLAIN_NEW)
    add_compile_options(${sanitizers} -fno-omit-frame-pointer)
    add_link_options(${sanitizers})
    # Of many large objects the usual linker takes several times as long.
    add_link_options($<$<CXX_COMPILER_ID:Clang>:-fuse-ld=lld>)
endif()
if(VGW_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()

# The directories that <qor/...>, <kelp/...>, <vgw/...> are looked for in, in the tree.
set(VGW_GENERATED_DIR "${CMAKE_BINARY_DIR}/generated")
file(MAKE_DIRECTORY "${VGW_GENERATED_DIR}")
set(VGW_INCLUDE_ROOTS "${CMAKE_SOURCE_DIR}" "${VGW_GENERATED_DIR}")
