# The tests of properties are the files whose names end in PropertiesTest.cpp. They need rapidcheck,
# which not every package manager has: where it is missing, each of their tests is there by its name
# and is skipped, so that it is counted and the reason is told.

# browsersweep_choose_property_tests(SOURCES LIBRARIES): leaves in the list that SOURCES names what can be
# compiled here, and in LIBRARIES what it is linked with.
function(browsersweep_choose_property_tests sources libraries)
  set(${libraries} "" PARENT_SCOPE)
  find_package(rapidcheck CONFIG QUIET)
  if(TARGET rapidcheck)
    set(${libraries} rapidcheck PARENT_SCOPE)
    return()
  endif()
  set(chosen ${${sources}})
  set(left_out ${${sources}})
  list(FILTER chosen EXCLUDE REGEX "PropertiesTest\\.cpp$")
  list(FILTER left_out INCLUDE REGEX "PropertiesTest\\.cpp$")
  set(stand_in ${CMAKE_CURRENT_BINARY_DIR}/SkippedPropertiesTest.cpp)
  browsersweep_write_skipped_tests(${stand_in} ${left_out})
  set(${sources} ${chosen} ${stand_in} PARENT_SCOPE)
  list(LENGTH left_out count)
  message(STATUS "rapidcheck is not installed: the tests in ${count} files will be skipped")
endfunction()

# browsersweep_write_skipped_tests(FILE SOURCE...): a test of the same name for each of the sources'.
function(browsersweep_write_skipped_tests file)
  set(text "#include <gtest/gtest.h>\n")
  foreach(source IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    file(READ ${source} contents)
    string(REGEX MATCHALL "\n(TEST|RC_GTEST_PROP)\\([A-Za-z0-9]+,[ \n]*[A-Za-z0-9]+" tests "${contents}")
    if(NOT tests)
      message(FATAL_ERROR "there are no tests in ${source}")
    endif()
    foreach(test IN LISTS tests)
      string(REGEX REPLACE ".*\\(([A-Za-z0-9]+),[ \n]*([A-Za-z0-9]+)" "TEST(\\1, \\2)" head "${test}")
      string(APPEND text "\n${head} {\n    GTEST_SKIP() << \"rapidcheck is not installed\";\n}\n")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()
