# Installs the library, its headers, the CMake package, the pkg-config file and the licence. What a
# program needs to run is the component Zintar_Runtime, the rest is Zintar_Development.

include(CMakePackageConfigHelpers)

install(TARGETS zintar EXPORT ZintarTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT Zintar_Runtime NAMELINK_COMPONENT Zintar_Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Zintar_Development)
# Not CMAKE_INSTALL_DOCDIR: that is the one of a project that takes this one in.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/zintar COMPONENT Zintar_Runtime)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zintar
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Zintar_Development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Zintar)
install(EXPORT ZintarTargets NAMESPACE Zintar:: FILE ZintarTargets.cmake
    DESTINATION ${package_dir} COMPONENT Zintar_Development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZintarConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZintarConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZintarConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZintarConfig.cmake
    ${PROJECT_BINARY_DIR}/ZintarConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT Zintar_Development)

# Relative, so that the installed tree can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zintar.pc.in ${PROJECT_BINARY_DIR}/zintar.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zintar.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Zintar_Development)
