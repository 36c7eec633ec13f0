# vgw_shared_library(<target> OUTPUT <name> SOVERSION <n> OBJECTS <object library>... [LINKS <target>...]
#                    [EXPORT_NAME <name in the package>])
#
# lib<name>.so.<n> out of exactly the named object libraries; installed, and exported to the CMake package.
function(vgw_shared_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT;SOVERSION;EXPORT_NAME" "OBJECTS;LINKS")
    if(NOT arg_EXPORT_NAME)
        vgw_export_name(arg_EXPORT_NAME ${target})
    endif()
    add_library(${target} SHARED)
    foreach(objects IN LISTS arg_OBJECTS)
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:${objects}>)
    endforeach()
    set_target_properties(
        ${target}
        PROPERTIES OUTPUT_NAME ${arg_OUTPUT}
                   SOVERSION ${arg_SOVERSION}
                   VERSION ${arg_SOVERSION}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH}
                   EXPORT_NAME ${arg_EXPORT_NAME}
                   INSTALL_RPATH "$ORIGIN"
                   LINKER_LANGUAGE CXX)
    foreach(root IN LISTS VGW_INCLUDE_ROOTS)
        target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
    endforeach()
    target_include_directories(${target} INTERFACE "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
    target_compile_features(${target} INTERFACE cxx_std_20)
    target_link_libraries(${target} PUBLIC ${arg_LINKS} PRIVATE Threads::Threads)
    # The records of its types live as long as the process, so what they call must stay.
    target_link_options(${target} PRIVATE -Wl,-z,nodelete)
    # A library calls its own functions directly; nobody is to replace one of them.
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
    if(NOT VGW_SANITIZE AND NOT VGW_FUZZ)
        # A name that no object defines is found here, not by the first user.
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    add_library(Vgw::${arg_EXPORT_NAME} ALIAS ${target})
    install(TARGETS ${target} EXPORT VgwStatemartTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endfunction()

# The names in the package: Vgw::Qor, Vgw::Kelp, Vgw::Statemart.
function(vgw_export_name out target)
    if(target STREQUAL "qor")
        set(${out} Qor PARENT_SCOPE)
    elseif(target STREQUAL "VgwStatemart")
        set(${out} Statemart PARENT_SCOPE)
    else()
        set(${out} ${target} PARENT_SCOPE)
    endif()
endfunction()
