# corvane_test(map/ViewManagerTest [LIBS ...] [SOURCES ...] [LABELS ...] [DEFINITIONS ...] [DEPENDS ...])
#
# Builds tests/map/ViewManagerTest.cpp and registers it as map.ViewManager; where the folder has
# others in it, tests/viewer/cells/LatestCellsTest.cpp is viewer.LatestCells. The uppermost folder is the
# test's first label; the target threaded_tests builds those labelled tiles or tsan. Each test runs off
# screen, with a home and settings folder of its own.
add_custom_target(threaded_tests)

function(corvane_test name)
    cmake_parse_arguments(arg "" "" "LIBS;SOURCES;LABELS;DEFINITIONS;DEPENDS" ${ARGN})
    get_filename_component(folder ${name} DIRECTORY)
    get_filename_component(file ${name} NAME)
    string(REGEX REPLACE "/.*" "" subsystem ${folder})
    string(REGEX REPLACE "Test$" "" unit ${file})
    set(test ${subsystem}.${unit})
    set(target ${subsystem}.${file})

    add_executable(${target} ${CMAKE_SOURCE_DIR}/tests/${name}.cpp ${arg_SOURCES})
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/${folder}/${file})
    target_link_libraries(${target} PRIVATE corvane corvane_flags Qt5::Test ${arg_LIBS})
    target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
    target_compile_definitions(${target} PRIVATE ${arg_DEFINITIONS})
    if(arg_DEPENDS)
        add_dependencies(${target} ${arg_DEPENDS})
    endif()

    if(subsystem STREQUAL "tiles" OR "tsan" IN_LIST arg_LABELS)
        add_dependencies(threaded_tests ${target})
    endif()

    set(home ${CMAKE_BINARY_DIR}/tests/${folder}/${file}/home)
    file(MAKE_DIRECTORY ${home}/runtime)
    file(CHMOD ${home}/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE) # as Qt wants it
    add_test(NAME ${test} COMMAND ${target} WORKING_DIRECTORY ${home})
    set_tests_properties(${test} PROPERTIES
        LABELS "${subsystem};${arg_LABELS}"
        TIMEOUT 300
        ENVIRONMENT "${CORVANE_TEST_ENVIRONMENT};HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_RUNTIME_DIR=${home}/runtime")
endfunction()

# Suppressions name what the tile engine leaves allocated by design, and what Qt and GDAL, built
# without the sanitizers, hand over in ways that a sanitizer cannot see. LeakSanitizer reads one file.
set(CORVANE_LEAKS ${CMAKE_BINARY_DIR}/tests/lsan.supp)
file(READ ${CMAKE_SOURCE_DIR}/tests/lsan.supp own_leaks)
file(READ ${CMAKE_SOURCE_DIR}/tests/lsan-libraries.supp library_leaks)
file(CONFIGURE OUTPUT ${CORVANE_LEAKS} CONTENT "${own_leaks}${library_leaks}" @ONLY)
set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/tests/lsan.supp ${CMAKE_SOURCE_DIR}/tests/lsan-libraries.supp)
set(CORVANE_TEST_ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen"
    "LC_ALL=C.UTF-8"
    "LSAN_OPTIONS=suppressions=${CORVANE_LEAKS}:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp:halt_on_error=1:second_deadlock_stack=1")
