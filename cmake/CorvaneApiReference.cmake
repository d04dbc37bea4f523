# The target api_reference makes the reference of the library's public headers in api-reference/html of the build
# folder. A warning of Doxygen is an error: nothing public goes without a word.
find_program(DOXYGEN_EXECUTABLE doxygen)
mark_as_advanced(DOXYGEN_EXECUTABLE)
if(DOXYGEN_EXECUTABLE)
    configure_file(${CMAKE_SOURCE_DIR}/docs/Doxyfile.in ${CMAKE_BINARY_DIR}/api-reference/Doxyfile @ONLY)
    add_custom_target(api_reference
        COMMAND ${DOXYGEN_EXECUTABLE} ${CMAKE_BINARY_DIR}/api-reference/Doxyfile
        COMMENT "API reference in ${CMAKE_BINARY_DIR}/api-reference/html" VERBATIM)
else()
    add_custom_target(api_reference
        COMMAND ${CMAKE_COMMAND} -E echo "the reference needs doxygen: scripts/setup.sh check"
        COMMAND ${CMAKE_COMMAND} -E false VERBATIM)
endif()
