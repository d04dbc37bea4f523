# Debian packages, one for each component of the installation; scripts/packages.sh makes them. The
# library's is named after its soname, as Debian names them all.
if(NOT CORVANE_PACKAGES)
    return()
endif()

set(debian_folder ${CMAKE_SOURCE_DIR}/packaging/debian)
set(debian_output ${CMAKE_BINARY_DIR}/packaging/debian)
cmake_host_system_information(RESULT release QUERY DISTRIB_INFO)
set(debian_revision 1~${release_ID}${release_VERSION_ID}) # the same sources give other packages on other releases
set(debian_version ${PROJECT_VERSION}-${debian_revision})
set(library_package libcorvane${PROJECT_VERSION_MAJOR})
set(property_browser_depends "")
if(NOT CORVANE_BUNDLE_PROPERTY_BROWSER)
    set(property_browser_depends libqtpropertybrowser-dev)
endif()
set(library_depends "${library_package} (= ${debian_version})")

# Otherwise a program whose libraries are not there would be left out in silence.
foreach(program corvane-viewer corvane-raster corvane-imageserver corvane-plugin-check)
    if(NOT TARGET ${program})
        message(FATAL_ERROR "CORVANE_PACKAGES needs ${program}: leave CORVANE_BUILD_* switched on")
    endif()
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvane)
set(CPACK_PACKAGE_VENDOR "Corvane developers")
set(CPACK_PACKAGE_CONTACT "Corvane developers <developers@corvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS # whatever the umask
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${debian_revision})
set(CPACK_DEBIAN_PACKAGE_SOURCE corvane)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Where the libraries of our own are found: the version of theirs stands in the package's own list.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${CMAKE_BINARY_DIR}/lib ${CMAKE_BINARY_DIR}/packaging/private)

# The changelogs and the control files are the same for all packages but for their names.
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date -u -R -d ${CORVANE_RELEASE_DATE}
    OUTPUT_VARIABLE debian_date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
configure_file(${debian_folder}/changelog.in ${debian_output}/changelog.Debian @ONLY)
configure_file(${CMAKE_SOURCE_DIR}/CHANGELOG.md ${debian_output}/changelog COPYONLY)
execute_process(COMMAND gzip -9nkf ${debian_output}/changelog.Debian ${debian_output}/changelog
    COMMAND_ERROR_IS_FATAL ANY)
set(CORVANE_SOVERSION ${PROJECT_VERSION_MAJOR})
configure_file(${debian_folder}/shlibs.in ${debian_output}/library/shlibs @ONLY)
file(COPY_FILE ${debian_folder}/triggers ${debian_output}/library/triggers)

# corvane_debian_package(COMPONENT NAME SECTION DEPENDS ... RECOMMENDS ... SUGGESTS ...): besides the component's files
# it holds what Debian's policy asks for. COMPONENT.description says what it is, in a line and at length.
macro(corvane_debian_package component name section)
    cmake_parse_arguments(arg "" "" "DEPENDS;RECOMMENDS;SUGGESTS" ${ARGN})
    string(TOUPPER ${component} upper)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
    file(READ ${debian_folder}/${component}.description CPACK_COMPONENT_${upper}_DESCRIPTION)
    string(STRIP "${CPACK_COMPONENT_${upper}_DESCRIPTION}" CPACK_COMPONENT_${upper}_DESCRIPTION)
    foreach(relation DEPENDS RECOMMENDS SUGGESTS)
        list(JOIN arg_${relation} ", " CPACK_DEBIAN_${upper}_PACKAGE_${relation})
    endforeach()
    install(FILES ${debian_folder}/copyright
            ${debian_output}/changelog.Debian.gz ${debian_output}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
    if(EXISTS ${debian_folder}/${component}.lintian-overrides)
        install(FILES ${debian_folder}/${component}.lintian-overrides
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${name}
            COMPONENT ${component})
    endif()
endmacro()

corvane_debian_package(library ${library_package} libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    ${debian_output}/library/shlibs ${debian_output}/library/triggers)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_MULTIARCH same)

corvane_debian_package(dev libcorvane-dev libdevel
    DEPENDS "${library_depends}" "qtbase5-dev (>= 5.15)" ${property_browser_depends}
    SUGGESTS "cmake (>= 3.25)")
install(DIRECTORY examples docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libcorvane-dev COMPONENT dev)

corvane_debian_package(plugins corvane-plugins science
    DEPENDS "${library_depends}"
    RECOMMENDS ca-certificates)

# A viewer without plugins shows nothing.
corvane_debian_package(viewer corvane-viewer science
    DEPENDS "${library_depends}" "corvane-plugins (= ${debian_version})"
    RECOMMENDS ca-certificates qttranslations5-l10n
    SUGGESTS corvane-imageserver qtwayland5)

corvane_debian_package(server corvane-imageserver net
    DEPENDS "${library_depends}")

include(CPack)
