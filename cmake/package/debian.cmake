# Gives a Debian package what Debian wants of it, between its installation and its packing: CPack
# runs this with its own variables.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
find_program(gzip gzip REQUIRED)

file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md newest REGEX "^## " LIMIT_COUNT 1)
string(REGEX MATCH "([0-9]+-[0-9]+-[0-9]+)$" day "${newest}")
execute_process(COMMAND date -u -d ${day} "+%a, %d %b %Y 00:00:00 +0000"
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  file(WRITE ${share}/doc/${package}/changelog
    "${package} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
    "  * What is new stands in /usr/share/doc/kvetmcontrol/CHANGELOG.md.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  file(GLOB pages ${share}/man/man*/*.[1-9])
  execute_process(COMMAND ${gzip} -9n ${share}/doc/${package}/changelog ${pages}
    COMMAND_ERROR_IS_FATAL ANY)
  if(component STREQUAL "dev") # what the documents link to, from where they lie
    file(MAKE_DIRECTORY ${share}/doc/kvetmcontrol/frame)
    file(CREATE_LINK ../../../../include/kvetm ${share}/doc/kvetmcontrol/frame/interfaces SYMBOLIC)
    file(CREATE_LINK ../../../include/kvetm/testkit ${share}/doc/kvetmcontrol/testkit SYMBOLIC)
    file(CREATE_LINK ../kvetmcontrol-dev/examples ${share}/doc/kvetmcontrol/examples SYMBOLIC)
  endif()
  # The same files give the same package, whenever and by whomever it is made.
  set(staged ${CPACK_TEMPORARY_DIRECTORY}/${component})
  execute_process(COMMAND chmod -R u=rwX,go=rX ${staged}
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND find ${staged} -exec touch -hd ${day}Z {} +
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
execute_process(COMMAND date -u -d ${day} +%s OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE)
set(ENV{SOURCE_DATE_EPOCH} ${epoch})
