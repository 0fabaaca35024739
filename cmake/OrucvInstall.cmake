# Install rules: library, header, pkg-config file and CMake package config.
include(CMakePackageConfigHelpers)

install(TARGETS orucva6 EXPORT orucvTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/orucv.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT orucvTargets NAMESPACE orucv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orucv)

configure_package_config_file(cmake/orucvConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/orucvConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orucv)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/orucvConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orucvConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/orucvConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orucv)

# The pkg-config file finds its prefix relative to itself, so an install
# into any --prefix works.
file(RELATIVE_PATH ORUCV_PC_TO_PREFIX "/root/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/root")
configure_file(cmake/orucv.pc.in ${CMAKE_CURRENT_BINARY_DIR}/orucv.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orucv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(ORUCV_BUILD_TOOLS)
  install(TARGETS orucv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
