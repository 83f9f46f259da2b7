# For a machine that this one only compiles for: GoogleTest from Debian's source package, built with the tests.
if(NOT TARGET gtest)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
