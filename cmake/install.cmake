# What is installed, and the packages that are made of it:
#
#   cmake --install build/release --prefix DIRECTORY [--component module|etmhost|dev]
#   cpack --config build/release/CPackConfig.cmake -B DIRECTORY
#
# Nothing that is installed knows where: the parts find each other by the way from where they lie.
# Not generated: the headers have to be right in the repository too.
file(READ frame/interfaces/IOrnVersion.h header)
file(STRINGS CHANGELOG.md newest REGEX "^## " LIMIT_COUNT 1)
foreach(pair IN ITEMS MAJOR:${PROJECT_VERSION_MAJOR} MINOR:${PROJECT_VERSION_MINOR}
    PATCH:${PROJECT_VERSION_PATCH} TEXT:"${PROJECT_VERSION}")
  string(REPLACE ":" " " pair ${pair})
  if(NOT header MATCHES "#define ORN_SDK_VERSION_${pair}\n")
    message(FATAL_ERROR "frame/interfaces/IOrnVersion.h is not of version ${PROJECT_VERSION}")
  endif()
endforeach()
if(NOT newest MATCHES "^## ${PROJECT_VERSION}( |$)")
  message(FATAL_ERROR "CHANGELOG.md does not begin with version ${PROJECT_VERSION}")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  frame/interfaces/IOrnVersion.h CHANGELOG.md)

# --- The module with its display --------------------------------------------------

# The checking layer looks for the module beside itself, and etmhost for both.
install(TARGETS KVETMControl KVETMHostCheck LIBRARY DESTINATION ${KVETM_MODULE_DIR} COMPONENT module)
if(NOT WIN32)
  install(TARGETS KVETMControlQt LIBRARY DESTINATION ${KVETM_MODULE_DIR} COMPONENT module)
endif()
# The helper library is linked to hosts, which are installed without what they were developed with.
install(TARGETS KVETMHostHelper
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT module
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT module NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${KVETM_DOC_DIR} COMPONENT module)
install(DIRECTORY docs DESTINATION ${KVETM_DOC_DIR} COMPONENT module)

# --- etmhost ----------------------------------------------------------------------

install(TARGETS etmhost RUNTIME COMPONENT etmhost)
if(WIN32)
  install(FILES tools/etmhost.cfg DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT etmhost)
else()
  install(FILES tools/etmhost.cfg DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/etmhost COMPONENT etmhost)
endif()
if(NOT CMAKE_CROSSCOMPILING)
  install(FILES ${CMAKE_BINARY_DIR}/share/man/man1/etmhost.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT etmhost)
  install(FILES ${CMAKE_BINARY_DIR}/share/bash-completion/completions/etmhost
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions COMPONENT etmhost)
endif()

# --- What a host is developed with --------------------------------------------------

install(DIRECTORY frame/interfaces/ DESTINATION ${KVETM_INCLUDE_DIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.h")
# The test kit is compiled with the host's own compiler and library, so its sources are installed.
install(DIRECTORY testkit DESTINATION ${KVETM_INCLUDE_DIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY testkit DESTINATION ${KVETM_SOURCE_DIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.cpp")

install(DIRECTORY examples/ DESTINATION ${KVETM_EXAMPLES_DIR} COMPONENT dev
  PATTERN CMakeLists.txt EXCLUDE PATTERN __pycache__ EXCLUDE)

include(CMakePackageConfigHelpers)
set(KVETM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KVETMControl)
set(KVETM_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
string(REGEX REPLACE "[^/]+" ".." KVETM_UP_FROM_CMAKE ${KVETM_CMAKE_DIR})
string(REGEX REPLACE "[^/]+" ".." KVETM_UP_FROM_PKGCONFIG ${KVETM_PKGCONFIG_DIR})
if(WIN32)
  set(KVETM_HELPER ${CMAKE_INSTALL_BINDIR}/KVETMHostHelper.dll)
  set(KVETM_HELPER_FILES IMPORTED_LOCATION "\${_kvetm_prefix}/${KVETM_HELPER}"
    IMPORTED_IMPLIB "\${_kvetm_prefix}/${CMAKE_INSTALL_LIBDIR}/libKVETMHostHelper.dll.a")
else()
  get_target_property(abi KVETMHostHelper SOVERSION)
  set(KVETM_HELPER ${CMAKE_INSTALL_LIBDIR}/libKVETMHostHelper.so.${abi})
  set(KVETM_HELPER_FILES IMPORTED_LOCATION "\${_kvetm_prefix}/${KVETM_HELPER}"
    IMPORTED_SONAME libKVETMHostHelper.so.${abi})
endif()
list(JOIN KVETM_HELPER_FILES " " KVETM_HELPER_FILES)
foreach(file IN ITEMS KVETMControlConfig.cmake kvetmcontrol.pc kvetm-helper.pc kvetm-testkit.pc)
  configure_file(cmake/package/${file}.in ${CMAKE_BINARY_DIR}/package/${file} @ONLY)
endforeach()
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/KVETMControlConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/package/KVETMControlConfig.cmake
    ${CMAKE_BINARY_DIR}/package/KVETMControlConfigVersion.cmake
  DESTINATION ${KVETM_CMAKE_DIR} COMPONENT dev)
install(DIRECTORY ${CMAKE_BINARY_DIR}/package/ DESTINATION ${KVETM_PKGCONFIG_DIR} COMPONENT dev
  FILES_MATCHING PATTERN "*.pc")

include(cmake/packages.cmake)
