# What is installed: the libraries, the header, a CMake package, a pkg-config file, pages and examples.
# The command line installs itself in cli/.
include(CMakePackageConfigHelpers)

install(TARGETS ${TARVEX_LIBRARIES} EXPORT tarvex_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/tarvex.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# With the pages and examples that the README names to users.
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES docs/attributes.md docs/formats.md docs/parameters.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

# find_package(tarvex) gives the targets tarvex::tarvex (shared, unless there is no shared library) and
# tarvex::tarvex_static.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarvex)
install(EXPORT tarvex_targets NAMESPACE tarvex:: FILE tarvex-targets.cmake DESTINATION ${package_dir})
configure_package_config_file(cmake/tarvex-config.cmake.in ${PROJECT_BINARY_DIR}/tarvex-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarvex-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarvex-config.cmake ${PROJECT_BINARY_DIR}/tarvex-config-version.cmake
  DESTINATION ${package_dir})

# What a static library needs is private where the shared library is the one that -ltarvex finds.
set(PC_STATIC "-l${TARVEX_CXX_RUNTIME} -lm -lpthread")
if(NOT tarvex IN_LIST TARVEX_LIBRARIES)
  set(PC_SHARED " ${PC_STATIC}")
endif()
# Found from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH PC_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" PC_PREFIX "${PC_PREFIX}")
configure_file(cmake/tarvex.pc.in ${PROJECT_BINARY_DIR}/tarvex.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarvex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
