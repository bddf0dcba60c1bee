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
  # The same files give the same package, whenever and by whomever it is made.
  set(staged ${CPACK_TEMPORARY_DIRECTORY}/${component})
  execute_process(COMMAND chmod -R u=rwX,go=rX ${staged}
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND find ${staged} -exec touch -hd ${day}Z {} +
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
execute_process(COMMAND date -u -d ${day} +%s OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE)
set(ENV{SOURCE_DATE_EPOCH} ${epoch})
