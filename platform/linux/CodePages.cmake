# NADREL_CODE_PAGE_TABLES: the source file of the code page tables, written into the build folder.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(NADREL_CODE_PAGE_TABLES ${CMAKE_CURRENT_BINARY_DIR}/CodePageTables.cpp)
add_custom_command(
    OUTPUT ${NADREL_CODE_PAGE_TABLES}
    COMMAND Python3::Interpreter ${CMAKE_CURRENT_LIST_DIR}/generate_code_pages.py ${NADREL_CODE_PAGE_TABLES}
    DEPENDS
        ${CMAKE_CURRENT_LIST_DIR}/generate_code_pages.py
        ${CMAKE_CURRENT_LIST_DIR}/near_characters.txt
    COMMENT "Writing the code page tables"
    VERBATIM)
