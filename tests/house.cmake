# Checks of the house itself: the header alone, exported symbols, an installed tree used from outside.
set(house ${PROJECT_SOURCE_DIR}/tests/house)
foreach(compiler gcc clang)
  add_test(NAME house.header.${compiler} COMMAND ${house}/header_alone.sh ${compiler})
endforeach()
set_tests_properties(house.header.gcc house.header.clang PROPERTIES SKIP_RETURN_CODE 77)
