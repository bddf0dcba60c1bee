# The packages: a Debian package for each component, or one ZIP file for Windows.
set(CPACK_PACKAGE_VENDOR "KVETMControl project")
set(CPACK_PACKAGE_CONTACT "KVETMControl project <kvetmcontrol@project.invalid>") # it has no address
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL module etmhost dev)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  string(REGEX MATCH "^[^-]+" machine "${KVETM_MINGW_TARGET}")
  set(CPACK_PACKAGE_FILE_NAME KVETMControl-${PROJECT_VERSION}-windows-${machine})
  install(FILES cmake/package/README.txt DESTINATION . COMPONENT module)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_COMPONENTS_GROUPING IGNORE)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/package/debian.cmake)

  # Windows are shown through X; Qt's way to Wayland is a package of its own.
  set(CPACK_DEBIAN_MODULE_PACKAGE_NAME kvetmcontrol)
  set(CPACK_DEBIAN_MODULE_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_MODULE_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON) # what packages of hosts will depend on
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
  set(CPACK_DEBIAN_MODULE_PACKAGE_RECOMMENDS qt6-wayland)
  set(CPACK_DEBIAN_MODULE_PACKAGE_SUGGESTS "etmhost, kvetmcontrol-dev")
  set(CPACK_DEBIAN_MODULE_DESCRIPTION "plug-in with the \"ETM Control\" dialog of an ARM debugger
A debugger host loads this library to let a person look at and change
the trace hardware of an ARM chip: ETM, ETB, TPIU and the DWT of a
Cortex-M3. Its window is drawn with Qt.")

  set(CPACK_DEBIAN_ETMHOST_PACKAGE_NAME etmhost)
  set(CPACK_DEBIAN_ETMHOST_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_ETMHOST_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_ETMHOST_PACKAGE_DEPENDS "kvetmcontrol (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_ETMHOST_PACKAGE_SUGGESTS "openocd, gdb-multiarch")
  set(CPACK_DEBIAN_ETMHOST_DESCRIPTION "debugger host for trace, with simulated and real ARM chips
etmhost opens the \"ETM Control\" dialog of KVETMControl on a simulated
chip, or on a real one behind OpenOCD or a GDB server. It prints what
the dialog sends, lets scripts work at it, and offers simulated chips
to OpenOCD.")

  set(CPACK_DEBIAN_DEV_PACKAGE_NAME kvetmcontrol-dev)
  set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "kvetmcontrol (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "g++, cmake | pkgconf")
  set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS etmhost)
  set(CPACK_DEBIAN_DEV_DESCRIPTION "what a debugger host for KVETMControl is developed with
Headers for C++ and C, a recording host to test against, and examples.
CMake finds them as the package KVETMControl, pkg-config as
kvetmcontrol.")
endif()
include(CPack)
