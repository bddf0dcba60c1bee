# What every binary for Windows has in common: it carries its runtime, needs nothing
# but the system's own libraries, and holds nothing of the machine that built it.
enable_language(RC)
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
add_link_options(-static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp
  $<$<CONFIG:Release>:-s>)
