# What `cmake --install` puts down beside the libraries: headers, programs, the CMake package, the pkg-config file.

include(CMakePackageConfigHelpers)

foreach(folder IN ITEMS qor kelp vgw)
    vgw_install_headers(${folder})
endforeach()

foreach(program IN ITEMS vgwd vgwctl)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
endforeach()

set(VGW_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/VgwStatemart")
if(TARGET modelc)
    install(TARGETS modelc EXPORT VgwStatemartTargets RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()
if(TARGET VgwStatemart)
    install(EXPORT VgwStatemartTargets NAMESPACE Vgw:: DESTINATION "${VGW_PACKAGE_DIR}")
    configure_package_config_file(
        "${CMAKE_SOURCE_DIR}/packaging/VgwStatemartConfig.cmake.in" "${CMAKE_BINARY_DIR}/VgwStatemartConfig.cmake"
        INSTALL_DESTINATION "${VGW_PACKAGE_DIR}"
        PATH_VARS CMAKE_INSTALL_DATADIR)
    write_basic_package_version_file(
        "${CMAKE_BINARY_DIR}/VgwStatemartConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
    install(FILES "${CMAKE_BINARY_DIR}/VgwStatemartConfig.cmake"
                  "${CMAKE_BINARY_DIR}/VgwStatemartConfigVersion.cmake" DESTINATION "${VGW_PACKAGE_DIR}")
    if(EXISTS "${CMAKE_SOURCE_DIR}/cmake/ModelLibrary.cmake")
        install(FILES "${CMAKE_SOURCE_DIR}/cmake/ModelLibrary.cmake" DESTINATION "${VGW_PACKAGE_DIR}")
    endif()
    # Relative, so that the package may be moved.
    file(RELATIVE_PATH VGW_PREFIX_FROM_PKGCONFIG "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
    configure_file("${CMAKE_SOURCE_DIR}/packaging/vgw-statemart.pc.in" "${CMAKE_BINARY_DIR}/vgw-statemart.pc" @ONLY)
    install(FILES "${CMAKE_BINARY_DIR}/vgw-statemart.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    # The models, so that a description of one's own may import them.
    install(DIRECTORY "${CMAKE_SOURCE_DIR}/vgw/" DESTINATION "${CMAKE_INSTALL_DATADIR}/vgw-statemart/vgw"
            FILES_MATCHING PATTERN "*.model")
endif()
