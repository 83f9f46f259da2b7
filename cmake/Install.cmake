# What `cmake --install` puts where: the components library, development and tools.
include(CMakePackageConfigHelpers)
if(CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    # Debian's loader, linker, cmake and pkg-config look there under /usr and /usr/local alike, so that one build can
    # be installed and packaged, for several machines side by side.
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Where libraries are installed")
endif()
include(GNUInstallDirs)

set(nadrel_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/NadrelPrinter)

install(TARGETS nadrelprinter EXPORT NadrelPrinterTargets
    LIBRARY
        DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
        NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
)
install(FILES api/NadrelPrinter.h api/NadrelHost.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# find_package(NadrelPrinter)
install(EXPORT NadrelPrinterTargets NAMESPACE NadrelPrinter:: FILE NadrelPrinterConfig.cmake
    DESTINATION ${nadrel_package_folder} COMPONENT development)
write_basic_package_version_file(NadrelPrinterConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/NadrelPrinterConfigVersion.cmake
    DESTINATION ${nadrel_package_folder} COMPONENT development)

# pkg-config: from its own place, so that the installed folders may be moved together.
string(REGEX REPLACE "[^/]+" ".." nadrel_prefix_from_pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
configure_file(cmake/nadrelprinter.pc.in nadrelprinter.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/nadrelprinter.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(DIRECTORY examples/hosts
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libnadrelprinter-dev/examples COMPONENT development)

# The programs find the library beside them wherever both are.
string(REGEX REPLACE "[^/]+" ".." nadrel_prefix_from_programs ${CMAKE_INSTALL_BINDIR})
if(TARGET nadrel)
    set_target_properties(nadrel PROPERTIES 
        INSTALL_RPATH $ORIGIN/${nadrel_prefix_from_programs}/${CMAKE_INSTALL_LIBDIR})
    install(TARGETS nadrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/nadrel-tools/examples COMPONENT tools
        FILES_MATCHING PATTERN "*.job" PATTERN "*.bmp" PATTERN hosts EXCLUDE PATTERN windows EXCLUDE)
endif()
if(TARGET nadrel-printer)
    install(TARGETS nadrel-printer RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

if(TARGET nadrel AND TARGET nadrel-printer)
    install(FILES docs/man/nadrel.1 docs/man/nadrel-printer.1
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()

# Each component is handed on with its licence, under the name of its Debian package.
set(components library:libnadrelprinter1 development:libnadrelprinter-dev)
if(TARGET nadrel)
    list(APPEND components tools:nadrel-tools)
endif()
foreach(component IN LISTS components)
    string(REPLACE ":" ";" component ${component})
    list(GET component 0 name)
    list(GET component 1 package)
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} RENAME copyright COMPONENT ${name})
endforeach()
