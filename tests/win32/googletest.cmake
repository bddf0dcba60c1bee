# GoogleTest for Windows, with its main, from the sources that the package googletest brings. As one
# source: most of the time goes into the headers of each.
set(KVETM_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest")
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/googletest.cpp @ONLY CONTENT
  "#include \"src/gtest-all.cc\"\n#include \"src/gmock-all.cc\"\n#include \"src/gtest_main.cc\"\n")
add_library(gtest STATIC EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/googletest.cpp)
target_compile_options(gtest PRIVATE -w)
target_include_directories(gtest SYSTEM
  PUBLIC ${KVETM_GOOGLETEST}/googletest/include ${KVETM_GOOGLETEST}/googlemock/include
  PRIVATE ${KVETM_GOOGLETEST}/googletest ${KVETM_GOOGLETEST}/googlemock)
add_library(GTest::gmock ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest)
