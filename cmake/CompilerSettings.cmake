# One interface target carries the warnings that every target of the project is built with.
add_library(nadrel_settings INTERFACE)
target_include_directories(nadrel_settings INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(nadrel_settings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees overlapping copies in std::string's operator+ that are not there.
    target_compile_options(nadrel_settings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
if(WIN32)
    # The system of Windows 7 and later, the wide names of its calls, and nothing that the headers need not declare.
    target_compile_definitions(nadrel_settings INTERFACE
        _WIN32_WINNT=0x0601 UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
    # Whatever runs needs the system's own libraries only.
    target_link_options(nadrel_settings INTERFACE -static)
endif()

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    # Large files and dates after 2038 on 32-bit machines, too.
    target_compile_definitions(nadrel_settings INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    # g++ tells of a change in how it passes arguments, which was made before any release of this library.
    target_compile_options(nadrel_settings INTERFACE -Wno-psabi)
endif()

if(NADREL_SANITIZE)
    add_compile_options(-fsanitize=${NADREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${NADREL_SANITIZE})
    if(NADREL_SANITIZE MATCHES "undefined")
        # This one asks with a pipe whether an object can be read, and takes it for a wrong one where a test has left
        # no descriptor for a pipe.
        add_compile_options(-fno-sanitize=vptr)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # What the instrumentation does to the code makes g++ warn of things that are not there; the builds without
        # it hold the warnings.
        target_compile_options(nadrel_settings INTERFACE -Wno-error)
    else()
        # Programs in C load the library, whose checks ask about types of C++.
        add_link_options(-fsanitize-link-c++-runtime)
        link_libraries(stdc++)
    endif()
endif()

# nadrel_room(<target>): one room of the library, compiled once for the shared library and for the tests.
function(nadrel_room target)
    target_link_libraries(${target} PUBLIC nadrel_settings)
    set_target_properties(${target} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
    )
    if(WIN32)
        target_compile_definitions(${target} PRIVATE NADREL_BUILDING)
    endif()
endfunction()
