# What Debian wants of the files in a package, done to those that are about to be packed: each package tells of the
# changes in Debian's form, and changes and manuals are compressed.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
file(READ ${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md changes)
string(REGEX REPLACE ".*\n## ${CPACK_PACKAGE_VERSION}\n" "" changes "${changes}")
string(REGEX REPLACE "\n## .*" "" changes "${changes}")
string(REPLACE "\n" "\n  " changes "${changes}")
string(REPLACE "\n  - " "\n\n  * " changes "${changes}")
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/changes "${changes}")
execute_process(COMMAND fmt --tagged-paragraph --width=79 ${CPACK_TEMPORARY_DIRECTORY}/changes
    OUTPUT_VARIABLE changes COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${changes}" changes)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

file(GLOB folders ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*)
foreach(folder IN LISTS folders)
    file(WRITE ${folder}/changelog
        "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) stable; urgency=medium\n\n  ${changes}\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
endforeach()
file(GLOB texts
    ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*)
execute_process(COMMAND gzip -9 --no-name ${texts} COMMAND_ERROR_IS_FATAL ANY)
