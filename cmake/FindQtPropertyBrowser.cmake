# Finds the property browser of Qt Solutions, built for the Qt of this project, and gives the
# target QtPropertyBrowser::QtPropertyBrowser.
find_path(QtPropertyBrowser_INCLUDE_DIR qttreepropertybrowser.h PATH_SUFFIXES qtpropertybrowser)
find_library(QtPropertyBrowser_LIBRARY NAMES qtpropertybrowser QtPropertyBrowser)
mark_as_advanced(QtPropertyBrowser_INCLUDE_DIR QtPropertyBrowser_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QtPropertyBrowser
    REQUIRED_VARS QtPropertyBrowser_LIBRARY QtPropertyBrowser_INCLUDE_DIR)

if(QtPropertyBrowser_FOUND AND NOT TARGET QtPropertyBrowser::QtPropertyBrowser)
    add_library(QtPropertyBrowser::QtPropertyBrowser UNKNOWN IMPORTED)
    set_target_properties(QtPropertyBrowser::QtPropertyBrowser PROPERTIES
        IMPORTED_LOCATION "${QtPropertyBrowser_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${QtPropertyBrowser_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES Qt5::Widgets)
endif()
