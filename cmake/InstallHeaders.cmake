# vgw_install_headers(<folder> [<root>])
#
# Installs the headers of a folder of the tree, and those generated for it, below include/ by the path they are
# included with.
function(vgw_install_headers folder)
    foreach(root IN LISTS VGW_INCLUDE_ROOTS)
        install(
            DIRECTORY "${root}/${folder}/"
            DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}"
            OPTIONAL FILES_MATCHING
            PATTERN "*.h"
            PATTERN "CMakeFiles" EXCLUDE)
    endforeach()
endfunction()
