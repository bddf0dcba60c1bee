# The tests are linked by LLVM's linker, which takes a moment where the one of mingw-w64 takes 15 s for
# the many small sections of what isn't optimised. A cross compiler doesn't look for it, but takes
# what stands for its own linker where it is told to look.
find_program(KVETM_LLD ld.lld REQUIRED)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/lld/collect2 "#!/bin/sh\nexec ${KVETM_LLD} \"$@\"\n")
file(CHMOD ${CMAKE_CURRENT_BINARY_DIR}/lld/collect2
  PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
add_link_options(-fno-use-linker-plugin -B${CMAKE_CURRENT_BINARY_DIR}/lld)
