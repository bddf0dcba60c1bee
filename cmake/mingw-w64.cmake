# What the toolchain files for the two kinds of Windows have in common. The compiler
# with POSIX threads is the one with <mutex> and <thread>.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${KVETM_MINGW_TARGET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KVETM_MINGW_TARGET}-g++-posix)
set(CMAKE_RC_COMPILER ${KVETM_MINGW_TARGET}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${KVETM_MINGW_TARGET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
