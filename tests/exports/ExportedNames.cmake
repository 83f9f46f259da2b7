include(${CMAKE_CURRENT_LIST_DIR}/NameLists.cmake)

nadrel_run(symbols ${TOOL} -D --defined-only --format=posix ${LIBRARY})
string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
list(TRANSFORM lines REPLACE "^([^ ]+) .*$" "\\1" OUTPUT_VARIABLE exported)
list(SORT exported)
nadrel_listed_names(listed)
nadrel_require_equal("The exported names" "${exported}" "${listed}")
