# What hosts and authors of plug-ins find after `cmake --install`: library, headers, the package for find_package and
# the file for pkg-config. All of it finds the rest relative to itself, so that the tree can be moved.

include(CMakePackageConfigHelpers)

set(KES_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/kesconfigtools)
set(KES_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kesconfigtools)
set(KES_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(
    TARGETS kesconfigtools
    EXPORT kesconfigtools
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${KES_INCLUDE_DIR})
install(EXPORT kesconfigtools NAMESPACE kesconfigtools:: FILE kesconfigtools-targets.cmake
        DESTINATION ${KES_PACKAGE_DIR})

configure_package_config_file(
    cmake/kesconfigtools-config.cmake.in kesconfigtools-config.cmake
    INSTALL_DESTINATION ${KES_PACKAGE_DIR}
    PATH_VARS KES_PLUGIN_DIR KES_SHARE_DIR)
# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(kesconfigtools-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kesconfigtools-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/kesconfigtools-config-version.cmake DESTINATION ${KES_PACKAGE_DIR})

# An absolute folder given by a packager stays as it is; otherwise the prefix follows from where the file lies.
foreach(dir IN ITEMS LIBDIR INCLUDEDIR DATADIR)
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_${dir} BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE KES_PC_${dir})
endforeach()
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_LIBDIR fixed)
if(fixed)
    set(KES_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${KES_PKGCONFIG_DIR}
               OUTPUT_VARIABLE up)
    set(KES_PC_PREFIX "\${pcfiledir}/${up}")
endif()
configure_file(cmake/kesconfigtools.pc.in kesconfigtools.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kesconfigtools.pc DESTINATION ${KES_PKGCONFIG_DIR})

# All that an installation takes, without the tests.
add_custom_target(installable DEPENDS kesconfigtools kes man_pages example_database)
