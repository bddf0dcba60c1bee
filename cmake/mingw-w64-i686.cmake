# Builds for Windows with Debian's mingw-w64.
set(KVETM_MINGW_TARGET i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
# Computations in double precision, whatever the host has set the control word of the old
# floating-point unit to. Hosts align the stack to 4 bytes, which SSE2 code can't use.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
