# The day of PROJECT_VERSION, for man pages, software centres and package changelogs.
set(CORVANE_RELEASE_DATE 2026-11-20)

# Where things lie after installation. The program finds its plugins, settings files and icons beside
# itself, so they share a folder of their own, and bin/ holds a link.
set(CORVANE_PROGRAM_DIR ${CMAKE_INSTALL_LIBDIR}/corvane)
set(CORVANE_PLUGIN_INSTALL_DIR ${CORVANE_PROGRAM_DIR}/tvviewerplugins)
set(CORVANE_CMAKE_INSTALL_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Corvane)

# Lets an installed tree be moved; packages for a system prefix switch it off.
option(CORVANE_INSTALL_RPATH "Find the library relative to the programs" ON)
if(CORVANE_INSTALL_RPATH)
    file(RELATIVE_PATH program_to_library
        ${CMAKE_INSTALL_PREFIX}/${CORVANE_PROGRAM_DIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    file(RELATIVE_PATH plugin_to_library
        ${CMAKE_INSTALL_PREFIX}/${CORVANE_PLUGIN_INSTALL_DIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(CMAKE_INSTALL_RPATH "$ORIGIN/${program_to_library}" "$ORIGIN/${plugin_to_library}")
endif()

# Debian 12 has no package of the property browser: one made there carries the library in the program
# folder, where no other program meets it, and its headers beside ours.
option(CORVANE_BUNDLE_PROPERTY_BROWSER "Install the property browser that was linked" OFF)
set(CORVANE_BROWSER_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/corvane/qtpropertybrowser)

# Sets CORVANE_BROWSER_FILE to where the installed library of the property browser lies.
function(corvane_install_property_browser)
    file(REAL_PATH ${QtPropertyBrowser_LIBRARY} real)
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${real}
        OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
    if(NOT headers MATCHES "SONAME +([^\n]+)")
        message(FATAL_ERROR "${real} is no shared library with a soname")
    endif()
    set(soname ${CMAKE_MATCH_1})
    set(copy ${CMAKE_BINARY_DIR}/packaging/private/${soname})
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/packaging/private)
    file(COPY_FILE ${real} ${copy} ONLY_IF_DIFFERENT)
    install(FILES ${copy} DESTINATION ${CORVANE_PROGRAM_DIR} COMPONENT library)
    install(DIRECTORY ${QtPropertyBrowser_INCLUDE_DIR}/
        DESTINATION ${CORVANE_BROWSER_HEADER_DIR} COMPONENT dev)
    file(RELATIVE_PATH library_to_browser
        ${CMAKE_INSTALL_FULL_LIBDIR} ${CMAKE_INSTALL_PREFIX}/${CORVANE_PROGRAM_DIR})
    set_property(TARGET corvane APPEND PROPERTY INSTALL_RPATH "$ORIGIN/${library_to_browser}")
    set(CORVANE_BROWSER_FILE ${CORVANE_PROGRAM_DIR}/${soname} PARENT_SCOPE)
endfunction()

# corvane_install_program(TARGET COMPONENT): into the program folder, with a link in bin/.
function(corvane_install_program target component)
    install(TARGETS ${target} RUNTIME DESTINATION ${CORVANE_PROGRAM_DIR} COMPONENT ${component})
    file(RELATIVE_PATH from_bin
        ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_PREFIX}/${CORVANE_PROGRAM_DIR})
    set(link ${CMAKE_CURRENT_BINARY_DIR}/link/${target})
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/link)
    file(CREATE_LINK ${from_bin}/${target} ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
endfunction()

# corvane_install_library(): the library, its headers and what finds them. Called once all of the
# library's targets are there.
function(corvane_install_library)
    include(CMakePackageConfigHelpers)
    set(output ${CMAKE_BINARY_DIR}/packaging)
    set(headers ${CMAKE_INSTALL_INCLUDEDIR}/corvane)

    install(TARGETS corvane EXPORT CorvaneTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT dev
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library)
    install(EXPORT CorvaneTargets NAMESPACE Corvane::
        DESTINATION ${CORVANE_CMAKE_INSTALL_DIR} COMPONENT dev)
    install(DIRECTORY ${CMAKE_SOURCE_DIR}/corvane/ ${CMAKE_BINARY_DIR}/include/corvane/
        DESTINATION ${headers} COMPONENT dev
        FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE
        PATTERN "forms" EXCLUDE PATTERN "resources" EXCLUDE)

    set(CORVANE_BROWSER_FILE "")
    if(CORVANE_BUNDLE_PROPERTY_BROWSER)
        corvane_install_property_browser()
        set(CORVANE_PC_BROWSER " -I\${includedir}/corvane/qtpropertybrowser")
        set(CORVANE_PC_BROWSER_LIBS
            " -Wl,-rpath,\${prefix}/${CORVANE_PROGRAM_DIR} \${prefix}/${CORVANE_BROWSER_FILE}")
    endif()
    configure_package_config_file(${CMAKE_SOURCE_DIR}/packaging/CorvaneConfig.cmake.in
        ${output}/CorvaneConfig.cmake INSTALL_DESTINATION ${CORVANE_CMAKE_INSTALL_DIR}
        PATH_VARS CORVANE_BROWSER_FILE CORVANE_BROWSER_HEADER_DIR CORVANE_PROGRAM_DIR)
    write_basic_package_version_file(${output}/CorvaneConfigVersion.cmake
        COMPATIBILITY SameMinorVersion)
    if(EXISTS ${CMAKE_SOURCE_DIR}/compat/QtSingleApplication.h AND NOT QTSINGLEAPPLICATION_LIBRARY)
        set(CORVANE_PC_COMPAT " -I\${includedir}/corvane/compat")
    endif()
    configure_file(${CMAKE_SOURCE_DIR}/packaging/corvane.pc.in ${output}/corvane.pc @ONLY)
    install(FILES ${output}/CorvaneConfig.cmake ${output}/CorvaneConfigVersion.cmake
            ${CMAKE_SOURCE_DIR}/cmake/CorvaneLayerPlugin.cmake
            ${CMAKE_SOURCE_DIR}/cmake/FindQtPropertyBrowser.cmake
        DESTINATION ${CORVANE_CMAKE_INSTALL_DIR} COMPONENT dev)
    install(FILES ${output}/corvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endfunction()
