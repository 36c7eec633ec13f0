# vgw_fuzz_target(<name> SOURCES <file>... [LINKS <target>...] [CORPUS <dir>] [SECONDS <n>] [FLAGS <flag>...])
#
# One libFuzzer binary, and a ctest entry that runs its corpus and then looks further for SECONDS (10 unless told).
# What it finds is kept in the build folder; the corpus in the tree is only read. The target fuzz_targets builds them all.
# Of memory that was given back 16 MiB are watched, more than a run gives back: the caches hold them.
function(vgw_fuzz_target name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "CORPUS;SECONDS" "SOURCES;LINKS;FLAGS")
    if(NOT arg_SECONDS)
        set(arg_SECONDS 10)
    endif()
    add_executable(${name} ${arg_SOURCES})
    vgw_target_settings(${name})
    vgw_object_closure(objects ${arg_LINKS})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} ${objects})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    if(NOT TARGET fuzz_targets)
        add_custom_target(fuzz_targets)
    endif()
    add_dependencies(fuzz_targets ${name})
    set(found "${CMAKE_CURRENT_BINARY_DIR}/${name}-found")
    file(MAKE_DIRECTORY "${found}")
    set(corpus "")
    if(arg_CORPUS)
        get_filename_component(corpus "${arg_CORPUS}" ABSOLUTE)
    endif()
    vgw_add_test(
        ${name}
        COMMAND $<TARGET_FILE:${name}> -max_total_time=${arg_SECONDS} -timeout=10 -rss_limit_mb=2048
                -artifact_prefix=${found}/crash- -print_final_stats=1 ${arg_FLAGS} ${found} ${corpus}
        LABELS fuzz
        ENVIRONMENT "ASAN_OPTIONS=${VGW_ADDRESS_CHECKS}:quarantine_size_mb=16"
        TIMEOUT 600)
endfunction()
