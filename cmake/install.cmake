# Installs the library, its headers, the CMake package and the pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS zintar EXPORT ZintarTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zintar DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Zintar)
install(EXPORT ZintarTargets NAMESPACE Zintar:: FILE ZintarTargets.cmake
    DESTINATION ${package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZintarConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZintarConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZintarConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZintarConfig.cmake
    ${PROJECT_BINARY_DIR}/ZintarConfigVersion.cmake DESTINATION ${package_dir})

# Relative, so that the installed tree can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zintar.pc.in ${PROJECT_BINARY_DIR}/zintar.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zintar.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
