# Debian packages of the installed components: cpack -G DEB --config CPackConfig.cmake in the build folder.
set(CPACK_PACKAGE_NAME nadrelprinter)
set(CPACK_PACKAGE_VENDOR "The NADREL printer library authors")
set(CPACK_PACKAGE_CONTACT "The NADREL printer library authors <authors@nadrel.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL library development)
if(TARGET nadrel)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
if(CMAKE_CROSSCOMPILING)
    # The other machine's name, and its libraries, for whoever looks for what the files in a package need.
    execute_process(COMMAND dpkg-architecture -t ${CMAKE_LIBRARY_ARCHITECTURE} -q DEB_HOST_ARCH
        OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/CPackMachine.cmake
        CONTENT "set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})\n")
    set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/CPackMachine.cmake)
    foreach(folder lib/${CMAKE_LIBRARY_ARCHITECTURE} usr/lib/${CMAKE_LIBRARY_ARCHITECTURE} usr/lib)
        list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_FIND_ROOT_PATH}/${folder})
    endforeach()
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianControl.cmake)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libnadrelprinter${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "driver library for portable thermal receipt printers
Text, page mode, pictures and barcodes over a serial port or TCP, and what
 the printer answers.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libnadrelprinter-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "headers of the driver library for receipt printers
Headers, CMake package, pkg-config file and examples in C and C++.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME nadrel-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
# The virtual printer's font.
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS fonts-dejavu-core)
set(CPACK_COMPONENT_TOOLS_DEPENDS library)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "command-line tools for portable thermal receipt printers
nadrel prints job files and shows what a printer says; nadrel-printer is a
printer made of software.")

include(CPack)
