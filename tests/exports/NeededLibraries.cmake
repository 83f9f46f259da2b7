include(${CMAKE_CURRENT_LIST_DIR}/NameLists.cmake)

nadrel_run(entries ${TOOL} -d ${LIBRARY})
# A list's elements must not hold square brackets.
string(REGEX REPLACE "[][]" "|" plain "${entries}")
string(REGEX MATCHALL "\\(NEEDED\\)[^|\n]*\\|[^|\n]+" lines "${plain}")
if(NOT lines)
    message(FATAL_ERROR "The library needs nothing, not even the system's C library:\n${entries}")
endif()
set(standard
    "libc\\.so\\.6"
    "libm\\.so\\.6"
    "libstdc\\+\\+\\.so\\.6"
    "libgcc_s\\.so\\.1"
    "ld-linux[-a-z0-9_]*\\.so\\.[0-9]+"
)
list(JOIN standard "|" pattern)
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^.*\\|" "" name "${line}")
    if(NOT name MATCHES "^(${pattern})$")
        message(FATAL_ERROR
            "The library needs ${name}, which is neither the language's nor the system's C library.")
    endif()
endforeach()
