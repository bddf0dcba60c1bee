# GoogleTest for Windows, from the sources that the package googletest brings.
set(KVETM_GOOGLETEST /usr/src/googletest CACHE PATH "Sources of GoogleTest")
add_library(gtest STATIC EXCLUDE_FROM_ALL
  ${KVETM_GOOGLETEST}/googletest/src/gtest-all.cc ${KVETM_GOOGLETEST}/googlemock/src/gmock-all.cc)
target_compile_options(gtest PRIVATE -w)
target_include_directories(gtest SYSTEM
  PUBLIC ${KVETM_GOOGLETEST}/googletest/include ${KVETM_GOOGLETEST}/googlemock/include
  PRIVATE ${KVETM_GOOGLETEST}/googletest ${KVETM_GOOGLETEST}/googlemock)
add_library(gtest_main STATIC EXCLUDE_FROM_ALL ${KVETM_GOOGLETEST}/googletest/src/gtest_main.cc)
target_link_libraries(gtest_main PUBLIC gtest)
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gmock ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest_main)
