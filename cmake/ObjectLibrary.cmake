# vgw_object_library(<name> FOLDER <dir> [SOURCES <more>...] [LINKS <target>...] [DEPENDS <target>...] [NEEDS <target>...]
#                    [HEADERS <target>] [SELDOM_RUN | OFTEN_RUN])
#
# One object library of all *.cc in <dir> (not below it), which is relative to the calling folder or to the tree's root.
# LINKS are passed on. NEEDS are objects whose headers it doesn't include, but whose functions its tables of virtuals name.
# Objects are passed on only by vgw_test and vgw_shared_library, which collect them.
# HEADERS: a target of vgw_headers, for sources that read more heavy headers than the standard library's.
# SELDOM_RUN: what a program does once, or a person asks for, is less optimised: the compiler would take longer than all runs.
# OFTEN_RUN: what nearly every test goes through is optimised under the sanitizers too, whose preset is not.
function(vgw_object_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SELDOM_RUN;OFTEN_RUN" "FOLDER;HEADERS" "SOURCES;LINKS;DEPENDS;NEEDS")
    vgw_source_folder(folder "${arg_FOLDER}")
    file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cc")
    if(NOT sources AND NOT arg_SOURCES)
        # A folder of headers alone still is a target that can be linked.
        set(unit "${CMAKE_CURRENT_BINARY_DIR}/${name}_headers_only.cc")
        file(CONFIGURE OUTPUT "${unit}" CONTENT "")
        set(sources "${unit}")
    endif()
    add_library(${name} OBJECT ${sources} ${arg_SOURCES})
    vgw_target_settings(${name})
    target_link_libraries(${name} PUBLIC ${arg_LINKS})
    set_target_properties(${name} PROPERTIES VGW_NEEDS "${arg_NEEDS}")
    if(arg_DEPENDS)
        add_dependencies(${name} ${arg_DEPENDS})
    endif()
    if(arg_OFTEN_RUN)
        vgw_reuse_headers_often_run(${name})
    else()
        vgw_reuse_headers(${name} ${arg_HEADERS})
    endif()
    if(arg_SELDOM_RUN)
        vgw_less_optimised(${name})
    endif()
endfunction()

# vgw_less_optimised(<target>)
#
# What takes longer to optimise than all its runs take.
function(vgw_less_optimised target)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${target} PRIVATE -O1)
    endif()
endfunction()

# vgw_quickly_optimised(<target>)
#
# What tests share and instantiates a great many templates: three quarters of what the compiler takes for -O1, and about as quick.
function(vgw_quickly_optimised target)
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${target} PRIVATE -Og)
    endif()
endfunction()

# vgw_inlined_only(<target>)
#
# Of thin templates inlining is what counts: the rest of -O2 doubles the compiler's time and saves no instruction.
function(vgw_inlined_only target)
    vgw_less_optimised(${target})
    if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -finline-small-functions -findirect-inlining -fipa-sra)
    endif()
endfunction()

# vgw_headers(<target> HEADERS <header>... [LINKS <target>...])
#
# Heavy headers, compiled once for all object libraries that name <target> as their HEADERS.
function(vgw_headers target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;LINKS")
    set(source "${CMAKE_BINARY_DIR}/${target}.cc")
    file(CONFIGURE OUTPUT "${source}" CONTENT "")
    add_library(${target} OBJECT "${source}")
    vgw_target_settings(${target})
    target_link_libraries(${target} PRIVATE ${arg_LINKS})
    target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
endfunction()

# vgw_reuse_headers(<target> [<target of vgw_headers>])
#
# Without one: the standard library's.
function(vgw_reuse_headers target)
    if(VGW_PCH)
        set(headers ${ARGN})
        if(NOT headers)
            set(headers vgw_standard_headers)
            vgw_standard_headers(${headers})
        endif()
        target_precompile_headers(${target} REUSE_FROM ${headers})
        # So that ccache sees which headers it stands for.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
        vgw_blind_in_strings(${target})
    endif()
endfunction()

# vgw_standard_headers(<target>)
#
# The standard library's, of the settings that the caller gives the target.
function(vgw_standard_headers target)
    if(NOT TARGET ${target})
        vgw_headers(
            ${target}
            HEADERS <algorithm> <array> <atomic> <functional> <map> <memory> <optional> <string> <string_view> <vector>)
    endif()
endfunction()

# vgw_reuse_headers_often_run(<target>)
#
# The standard library's, and, under a sanitizer, both they and the target optimised.
function(vgw_reuse_headers_often_run target)
    if(NOT VGW_SANITIZE)
        vgw_reuse_headers(${target})
        return()
    endif()
    set(headers vgw_standard_headers_often_run)
    if(VGW_PCH AND NOT TARGET ${headers})
        vgw_standard_headers(${headers})
        target_compile_options(${headers} PRIVATE -O1)
    endif()
    target_compile_options(${target} PRIVATE -O1)
    vgw_reuse_headers(${target} ${headers})
endfunction()

# This compiler's optimiser sees copies out of bounds inside the standard library's own strings, and tells it where their
# headers were compiled ahead.
function(vgw_blind_in_strings target)
    set(blind -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread)
    target_compile_options(${target} PRIVATE "$<$<CXX_COMPILER_ID:GNU>:${blind}>")
endfunction()

# Run once, and very slow to optimise: what describes a command line.
set(VGW_UNOPTIMISED_FILES manual/ManPage.cc vgwctl/options/Options.cc vgwd/agent/Options.cc)
list(TRANSFORM VGW_UNOPTIMISED_FILES PREPEND "${CMAKE_SOURCE_DIR}/" OUTPUT_VARIABLE VGW_UNOPTIMISED)

# Warnings as errors, the include roots, threads.
function(vgw_target_settings target)
    foreach(root IN LISTS VGW_INCLUDE_ROOTS)
        target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
    endforeach()
    target_link_libraries(${target} PRIVATE "$<BUILD_INTERFACE:vgw_build_settings>" Threads::Threads)
    set_source_files_properties(
        ${VGW_UNOPTIMISED}
        TARGET_DIRECTORY ${target}
        PROPERTIES COMPILE_OPTIONS -O0 SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)
    if(VGW_UNITY)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 10)
    endif()
endfunction()

function(vgw_source_folder out folder)
    if(IS_ABSOLUTE "${folder}")
        set(found "${folder}")
    elseif(IS_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/${folder}")
        set(found "${CMAKE_CURRENT_SOURCE_DIR}/${folder}")
    else()
        set(found "${CMAKE_SOURCE_DIR}/${folder}")
    endif()
    if(NOT IS_DIRECTORY "${found}")
        message(FATAL_ERROR "no folder ${folder} below ${CMAKE_CURRENT_SOURCE_DIR} or ${CMAKE_SOURCE_DIR}")
    endif()
    set(${out} "${found}" PARENT_SCOPE)
endfunction()

# All object libraries that the given targets reach through their LINKS, themselves included.
function(vgw_object_closure out)
    set(open ${ARGN})
    set(seen "")
    set(objects "")
    while(open)
        list(POP_FRONT open target)
        if(target IN_LIST seen OR NOT TARGET ${target})
            continue()
        endif()
        list(APPEND seen ${target})
        get_target_property(type ${target} TYPE)
        if(type STREQUAL "OBJECT_LIBRARY")
            list(APPEND objects ${target})
            get_target_property(links ${target} INTERFACE_LINK_LIBRARIES)
            get_target_property(needs ${target} VGW_NEEDS)
            foreach(more IN ITEMS "${links}" "${needs}")
                if(more)
                    list(APPEND open ${more})
                endif()
            endforeach()
        endif()
    endwhile()
    set(${out} "${objects}" PARENT_SCOPE)
endfunction()
