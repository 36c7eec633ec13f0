# From descriptions of classes to libraries; used in the project's own tree and, installed, by whoever describes entities of
# her own.
#
#   qor_model_library(<target> MODEL <file>... [TYPE STATIC|SHARED|OBJECT] [IMPORTS <folder>...] [LINKS <target>...])
#
# A library of everything that the compiler makes of the descriptions, with its headers. Operations are defined by hand:
# target_sources(<target> PRIVATE ...) takes them in. A description is imported by its path below the installed models
# (import "vgw/OvsdbDataTypes.model") or below one of the IMPORTS.
#
#   qor_model_sources(<name> MODEL <file>... [OUT <folder>] [IMPORTS <folder>...])
#
# Only the sources: sets <name>_VALUES, <name>_ENTITIES and <name>_REGISTRY to the .cc files of each sort, <name>_DIR to the folder that their
# headers are included from, and adds the target <name>, which makes them. The global property QOR_MODEL_SOURCES names all such targets. A
# library that the sources are linked into has to stay in memory once it was loaded (-z nodelete).

function(qor_model_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TYPE" "MODEL;IMPORTS;LINKS")
    if(NOT arg_TYPE)
        set(arg_TYPE STATIC)
    endif()
    qor_model_sources(${target}_model MODEL ${arg_MODEL} IMPORTS ${arg_IMPORTS})
    add_library(${target} ${arg_TYPE} ${${target}_model_VALUES} ${${target}_model_ENTITIES}
                                 ${${target}_model_REGISTRY} ${${target}_model_ADAPTERS})
    add_dependencies(${target} ${target}_model)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${${target}_model_DIR}>")
    if(NOT arg_LINKS)
        set(arg_LINKS Vgw::Qor)
    endif()
    target_link_libraries(${target} PUBLIC ${arg_LINKS})
    # The records of its types live as long as the process, and so must the code that they call: what it is linked into stays.
    target_link_options(${target} PUBLIC -Wl,-z,nodelete)
endfunction()

function(qor_model_sources name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUT" "MODEL;IMPORTS")
    if(NOT arg_OUT)
        set(arg_OUT "${CMAKE_CURRENT_BINARY_DIR}/generated")
    endif()
    qor_model_compiler(compiler imports)
    foreach(folder IN LISTS arg_IMPORTS)
        get_filename_component(folder "${folder}" ABSOLUTE)
        list(APPEND imports -I "${folder}")
    endforeach()
    set(models "")
    set(values "")
    set(entities "")
    set(registry "")
    set(adapters "")
    set(others "")
    foreach(file IN LISTS arg_MODEL)
        get_filename_component(file "${file}" ABSOLUTE)
        list(APPEND models "${file}")
        qor_model_outputs("${file}" "${arg_OUT}" values entities registry adapters others)
    endforeach()
    # The compiler leaves alone what has not changed, so a stamp says that it has run.
    set(stamp "${CMAKE_CURRENT_BINARY_DIR}/${name}.stamp")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${models})
    add_custom_command(
        OUTPUT "${stamp}"
        BYPRODUCTS ${values} ${entities} ${registry} ${adapters} ${others}
        COMMAND ${compiler} --out "${arg_OUT}" ${imports} ${models}
        COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
        DEPENDS ${compiler} ${models}
        COMMENT "modelc ${name}"
        VERBATIM)
    add_custom_target(${name} DEPENDS "${stamp}")
    set_property(GLOBAL APPEND PROPERTY QOR_MODEL_SOURCES ${name})
    set_source_files_properties(${values} ${entities} ${registry} ${adapters} ${others} PROPERTIES GENERATED ON)
    set(${name}_VALUES "${values}" PARENT_SCOPE)
    set(${name}_ENTITIES "${entities}" PARENT_SCOPE)
    set(${name}_REGISTRY "${registry}" PARENT_SCOPE)
    set(${name}_ADAPTERS "${adapters}" PARENT_SCOPE)
    set(${name}_DIR "${arg_OUT}" PARENT_SCOPE)
endfunction()

# The compiler's target, and where it looks for imports: the tree's own, or those of the installed package.
function(qor_model_compiler out_compiler out_imports)
    if(TARGET modelc)
        set(${out_compiler} modelc PARENT_SCOPE)
        set(${out_imports} -I "${PROJECT_SOURCE_DIR}" PARENT_SCOPE)
    else()
        set(${out_compiler} Vgw::modelc PARENT_SCOPE)
        set(${out_imports} -I "${VgwStatemart_MODEL_DIR}" PARENT_SCOPE)
    endif()
endfunction()

# What a description will be compiled to, told before the compiler is built: a class's files bear its name and stand in the
# folder of its sort.
function(qor_model_outputs model out values_out entities_out registry_out adapters_out others_out)
    set(classes "")
    set(wrapped "")
    set(values "${${values_out}}")
    set(entities "${${entities_out}}")
    set(registry "${${registry_out}}")
    set(adapters "${${adapters_out}}")
    set(others "${${others_out}}")
    file(STRINGS "${model}" lines REGEX "^[ \t]*(unit|folder|enum|value|entity)[ \t]")
    foreach(line IN LISTS lines)
        if(line MATCHES "^[ \t]*unit[ \t]+([A-Za-z0-9_]+)")
            set(unit "${CMAKE_MATCH_1}")
        elseif(line MATCHES "^[ \t]*folder[ \t]+(values|entities|operations)[ \t]+\"([^\"]+)\"")
            set(${CMAKE_MATCH_1}_folder "${CMAKE_MATCH_2}")
        elseif(line MATCHES "^[ \t]*(enum|value|entity)[ \t]+([A-Za-z0-9_]+)")
            if(CMAKE_MATCH_1 STREQUAL "entity")
                set(files "${out}/${entities_folder}/${CMAKE_MATCH_2}")
                get_filename_component(adapter "${out}/${entities_folder}" DIRECTORY)
                set(adapter "${adapter}/attrlog/${CMAKE_MATCH_2}")
                list(APPEND entities "${files}.cc")
                list(APPEND adapters "${adapter}.cc")
                list(APPEND others "${adapter}.h")
            else()
                set(files "${out}/${values_folder}/${CMAKE_MATCH_2}")
                list(APPEND values "${files}.cc")
            endif()
            list(APPEND classes ${CMAKE_MATCH_2})
            if(CMAKE_MATCH_1 STREQUAL "entity")
                list(APPEND wrapped ${CMAKE_MATCH_2})
            endif()
            list(APPEND others "${files}.h")
        endif()
    endforeach()
    # What belongs to the whole description goes beside the folders of its classes, or into one that has no parent.
    set(folder "${entities_folder}")
    if(NOT folder)
        set(folder "${values_folder}")
    endif()
    string(REGEX REPLACE "/[^/]*$" "" folder "${folder}")
    set(folder "${out}/${folder}")
    list(APPEND others "${folder}/${unit}List.h")
    list(APPEND registry "${folder}/registry/${unit}Registration.cc")
    list(APPEND others "${folder}/registry/${unit}Registration.h")
    foreach(class IN LISTS classes)
        list(APPEND others "${folder}/registry/${class}.h")
    endforeach()
    foreach(class IN LISTS wrapped)
        list(APPEND registry "${folder}/registry/${class}.cc")
    endforeach()
    set(${values_out} "${values}" PARENT_SCOPE)
    set(${entities_out} "${entities}" PARENT_SCOPE)
    set(${registry_out} "${registry}" PARENT_SCOPE)
    set(${adapters_out} "${adapters}" PARENT_SCOPE)
    set(${others_out} "${others}" PARENT_SCOPE)
endfunction()

# vgw_model_library(<name> MODEL <file>... [LINKS <target>...] [UNOPTIMISED])
#
# In the project's own tree: an object library of what is made of the descriptions beside the product's own, optimised
# quickly, or, where next to nothing of it runs, compiled like tests.
function(vgw_model_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "UNOPTIMISED" "" "MODEL;LINKS")
    qor_model_sources(${name}_model MODEL ${arg_MODEL})
    add_library(${name} OBJECT ${${name}_model_VALUES} ${${name}_model_ENTITIES} ${${name}_model_REGISTRY}
                           ${${name}_model_ADAPTERS})
    add_dependencies(${name} ${name}_model)
    vgw_target_settings(${name})
    if(VGW_UNITY)
        # Thin files that instantiate the same templates.
        set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 12)
    endif()
    if(arg_UNOPTIMISED)
        vgw_test_settings(${name})
    else()
        vgw_reuse_headers(${name})
        vgw_quickly_optimised(${name})
    endif()
    target_include_directories(${name} PUBLIC "${${name}_model_DIR}")
    target_link_libraries(${name} PUBLIC qor_generic qor_attrlog_family ${arg_LINKS})
endfunction()
