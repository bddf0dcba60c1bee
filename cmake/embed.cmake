# embed_texts(TARGET NAME FILES...): the sources of TARGET can include NAME, which holds the
# files as rows of an array: {"name of the file without extension", "its text"},
function(embed_texts TARGET NAME)
  set(rows "")
  foreach(file IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    get_filename_component(name ${file} NAME_WE)
    file(READ ${file} text)
    string(APPEND rows "{\"${name}\", R\"~~(${text})~~\"},\n")
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${TARGET}_texts)
  file(CONFIGURE OUTPUT ${folder}/${NAME} CONTENT "@rows@" @ONLY)
  target_include_directories(${TARGET} PRIVATE ${folder})
endfunction()

# embed_bytes(TARGET NAME FILE): the sources of TARGET can include NAME, which holds the bytes of
# the file as the elements of an array.
function(embed_bytes TARGET NAME FILE)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${FILE})
  file(READ ${FILE} bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${TARGET}_texts)
  file(CONFIGURE OUTPUT ${folder}/${NAME} CONTENT "@bytes@" @ONLY)
  target_include_directories(${TARGET} PRIVATE ${folder})
endfunction()
