# Builds for Windows with Debian's mingw-w64.
set(KVETM_MINGW_TARGET i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
