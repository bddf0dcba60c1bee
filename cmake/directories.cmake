# Where what is installed goes, below the directory that is named when it is.
include(GNUInstallDirs)
if(CMAKE_LIBRARY_ARCHITECTURE AND CMAKE_INSTALL_LIBDIR STREQUAL "lib")
  # As in Debian's own packages, whatever the prefix. A variable: Qt leaves "lib" in the cache.
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
if(WIN32) # where a program finds its libraries: beside itself
  set(KVETM_MODULE_DIR ${CMAKE_INSTALL_BINDIR})
  set(KVETM_DOC_DIR doc)
  set(KVETM_EXAMPLES_DIR examples)
else()
  set(KVETM_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/kvetm)
  set(KVETM_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kvetmcontrol)
  set(KVETM_EXAMPLES_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kvetmcontrol-dev/examples)
endif()
set(KVETM_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/kvetm)
set(KVETM_SOURCE_DIR ${CMAKE_INSTALL_DATAROOTDIR}/kvetm)
