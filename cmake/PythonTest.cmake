# vgw_python_test(<name> SCRIPT <file> [ARGUMENTS <argument>...] [LABELS ...] [TIMEOUT <seconds>] [ENVIRONMENT ...] [SERIAL | WAITS])
#
# A script of the standard library's Python alone, with tests/support on its module path.
function(vgw_python_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SERIAL;WAITS" "SCRIPT;TIMEOUT" "ARGUMENTS;LABELS;ENVIRONMENT")
    find_program(VGW_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
    if(NOT VGW_PYTHON)
        find_program(VGW_PYTHON NAMES python3 REQUIRED)
    endif()
    set(load "")
    if(arg_SERIAL)
        set(load SERIAL)
    elseif(arg_WAITS)
        set(load WAITS)
    endif()
    get_filename_component(script "${arg_SCRIPT}" ABSOLUTE)
    vgw_add_test(
        ${name}
        COMMAND "${VGW_PYTHON}" "${script}" ${arg_ARGUMENTS}
        LABELS ${arg_LABELS}
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "PYTHONPATH=${CMAKE_SOURCE_DIR}/tests" PYTHONDONTWRITEBYTECODE=1 ${arg_ENVIRONMENT}
        ${load})
endfunction()
