include(${CMAKE_CURRENT_LIST_DIR}/../exports/NameLists.cmake)

nadrel_run(headers ${TOOL} -p ${LIBRARY})
string(REGEX MATCHALL "DLL Name: [^\r\n]+" needed "${headers}")
list(TRANSFORM needed REPLACE "^DLL Name: " "")
list(TRANSFORM needed TOUPPER)
list(SORT needed)
set(listed GDI32.DLL KERNEL32.DLL MSVCRT.DLL USER32.DLL WS2_32.DLL)
nadrel_require_equal("The libraries needed" "${needed}" "${listed}")
