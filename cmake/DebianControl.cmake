# CPack has the library's package call ldconfig in scripts of its own; Debian's way is to declare that it is wanted.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(unpacked ${package}.unpacked)
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)
    if(EXISTS ${unpacked}/DEBIAN/postinst)
        file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
        file(WRITE ${unpacked}/DEBIAN/triggers "activate-noawait ldconfig\n")
        execute_process(COMMAND dpkg-deb --root-owner-group --build ${unpacked} ${package}
            OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    endif()
    file(REMOVE_RECURSE ${unpacked})
endforeach()
