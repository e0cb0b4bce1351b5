# Checks of the house itself: the header alone, and what is installed, used from outside. Scripts, run by ctest.
set(house ${PROJECT_SOURCE_DIR}/tests/house)
set(install ${PROJECT_SOURCE_DIR}/tests/install)

add_test(NAME house.work_table COMMAND ${house}/work_table.sh ${PROJECT_SOURCE_DIR})
set_tests_properties(house.work_table PROPERTIES SKIP_RETURN_CODE 77)
add_test(NAME house.pages COMMAND ${house}/pages.sh ${PROJECT_SOURCE_DIR})
foreach(page parameters attributes)
  add_test(NAME house.page.${page} COMMAND
    ${house}/made_page.sh ${PROJECT_SOURCE_DIR} $<TARGET_FILE:${page}_page> docs/${page}.md)
endforeach()
add_test(NAME house.parameters COMMAND ${house}/parameters.sh ${PROJECT_SOURCE_DIR} $<TARGET_FILE:parameters_page>)
if(TARVEX_CLI)
  add_test(NAME house.manual COMMAND ${house}/manual.sh ${PROJECT_SOURCE_DIR} $<TARGET_FILE:tarvex_cli>)
  add_test(NAME house.completion COMMAND ${house}/completion.sh ${PROJECT_SOURCE_DIR} $<TARGET_FILE:tarvex_cli>)
endif()
add_test(NAME house.arrows COMMAND ${house}/arrows.sh ${PROJECT_SOURCE_DIR}
  ${PROJECT_BINARY_DIR}/CMakeFiles/tarvex_objects.dir)
foreach(compiler gcc clang)
  add_test(NAME house.header.${compiler} COMMAND ${house}/header_alone.sh ${compiler})
  set_tests_properties(house.header.${compiler} PROPERTIES SKIP_RETURN_CODE 77)
endforeach()

# The release build, installed once, then used in several ways. A sanitizer build would change what is looked at.
if(TARVEX_CLI AND NOT TARVEX_SANITIZE)
  set(release ${PROJECT_BINARY_DIR}/installed)
  set(prefix ${release}/moved)
  set(lib ${prefix}/${CMAKE_INSTALL_LIBDIR})
  add_test(NAME install.build COMMAND ${install}/build.sh ${PROJECT_SOURCE_DIR} ${release}
    -DCMAKE_C_COMPILER=${CMAKE_C_COMPILER} -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER})
  set_tests_properties(install.build PROPERTIES FIXTURES_SETUP installed PROCESSORS 2 TIMEOUT 1200)
  add_test(NAME install.symbols COMMAND ${install}/symbols.sh ${lib}/libtarvex.a ${lib}/libtarvex.so
    ${prefix}/include/tarvex.h)
  add_test(NAME install.consumer COMMAND ${install}/consumer.sh ${PROJECT_SOURCE_DIR} ${prefix} ${release}/consumer)
  add_test(NAME install.subproject COMMAND ${install}/subproject.sh ${PROJECT_SOURCE_DIR} ${release}_subproject)
  set_tests_properties(install.subproject PROPERTIES PROCESSORS 2 TIMEOUT 1200)
  add_test(NAME install.parts COMMAND ${install}/parts.sh ${PROJECT_SOURCE_DIR})
  add_test(NAME install.command COMMAND ${install}/command.sh ${PROJECT_SOURCE_DIR} ${prefix})
  set_tests_properties(install.symbols install.consumer install.command PROPERTIES FIXTURES_REQUIRED installed)
endif()
