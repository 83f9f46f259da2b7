include(${CMAKE_CURRENT_LIST_DIR}/NameLists.cmake)

nadrel_run(entries ${TOOL} -d ${LIBRARY})
if(NOT entries MATCHES "\\(SONAME\\)[^\n]*\\[libnadrelprinter\\.so\\.1\\]")
    message(FATAL_ERROR "The shared name is not libnadrelprinter.so.1:\n${entries}")
endif()
