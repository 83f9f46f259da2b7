# nadrel_use_scripted_library(<target>): the library's rooms on the tests' scripted system, files and display,
# compiled once for all.
find_package(GTest REQUIRED)
file(GLOB scripted_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/platform/*.cpp)
add_library(nadrel_scripted_library STATIC
    ${scripted_sources}
    ${PROJECT_SOURCE_DIR}/tests/image/ScriptedDisplay.cpp
    ${PROJECT_SOURCE_DIR}/tests/image/ScriptedFiles.cpp
    $<TARGET_OBJECTS:nadrel_image>
    $<TARGET_OBJECTS:nadrel_spool>
    $<TARGET_OBJECTS:nadrel_link>
    $<TARGET_OBJECTS:nadrel_devices>
    $<TARGET_OBJECTS:nadrel_linux_text>
)
target_link_libraries(nadrel_scripted_library PUBLIC nadrel_settings GTest::gmock GTest::gtest)

function(nadrel_use_scripted_library target)
    target_link_libraries(${target} PRIVATE nadrel_scripted_library)
endfunction()
