# nadrel_listed_names(<variable>): the names in both lists, sorted.
function(nadrel_listed_names variable)
    set(all "")
    foreach(list NadrelPrinter NadrelHost)
        file(STRINGS ${API}/${list}.exports names REGEX "^[A-Za-z_]")
        list(APPEND all ${names})
    endforeach()
    list(SORT all)
    set(${variable} ${all} PARENT_SCOPE)
endfunction()

# nadrel_require_equal(<what> <found> <listed>): ends with the names that one of two sorted lists has alone.
function(nadrel_require_equal what found listed)
    if(found STREQUAL listed)
        return()
    endif()
    set(extra ${found})
    list(REMOVE_ITEM extra ${listed})
    set(missing ${listed})
    list(REMOVE_ITEM missing ${found})
    message(FATAL_ERROR
        "${what} differ from the names listed. Not listed: '${extra}'. Listed only: '${missing}'.")
endfunction()

# nadrel_run(<variable> <command>...): what the command prints; ends when it fails.
function(nadrel_run variable)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "'${ARGN}' failed: ${result}")
    endif()
    set(${variable} "${output}" PARENT_SCOPE)
endfunction()
