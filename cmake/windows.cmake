# What every binary for Windows has in common: it carries its runtime, needs nothing
# but the system's own libraries, and holds nothing of the machine that built it.
enable_language(RC)
# GCC 12 warns falsely about the standard library's string.
add_compile_options(-Wno-restrict -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
add_link_options(-static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp
  $<$<CONFIG:Release>:-s>)
