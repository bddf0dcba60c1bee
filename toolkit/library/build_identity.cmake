# Writes the header OUTPUT with one hash over the names and contents of the toolkit's
# sources in SOURCE_DIR. A script, since it runs at build time.
file(GLOB sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*.h ${SOURCE_DIR}/*.cpp ${SOURCE_DIR}/library/*)
list(SORT sources)
set(all "")
foreach(source IN LISTS sources)
  file(SHA256 ${SOURCE_DIR}/${source} hash)
  string(APPEND all "${source} ${hash}\n")
endforeach()
string(SHA256 hash "${all}")
file(WRITE ${OUTPUT} "#define KVETM_TOOLKIT_HASH \"${hash}\"\n")
