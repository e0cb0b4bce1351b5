# What is installed: both libraries, the header, a CMake package, a pkg-config file, the licence.
# The command line installs itself in cli/.
include(CMakePackageConfigHelpers)

install(TARGETS tarvex tarvex_static EXPORT tarvex_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/tarvex.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

# find_package(tarvex) gives the targets tarvex::tarvex (shared) and tarvex::tarvex_static.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarvex)
install(EXPORT tarvex_targets NAMESPACE tarvex:: FILE tarvex-targets.cmake DESTINATION ${package_dir})
configure_package_config_file(cmake/tarvex-config.cmake.in ${PROJECT_BINARY_DIR}/tarvex-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarvex-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarvex-config.cmake ${PROJECT_BINARY_DIR}/tarvex-config-version.cmake
  DESTINATION ${package_dir})

# Found from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" PC_PREFIX "${PC_PREFIX}")
configure_file(cmake/tarvex.pc.in ${PROJECT_BINARY_DIR}/tarvex.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarvex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
