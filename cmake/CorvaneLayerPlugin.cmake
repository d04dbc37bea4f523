# corvane_add_layer_plugin(NAME SOURCES ... [LIBS ...])
#
# Builds a plugin file that the library can load: a module of this name without a prefix, hidden
# but for what Qt exports. It is built into ${CORVANE_PLUGIN_DIRECTORY}, by default the folder
# tvviewerplugins of the build tree, and installed where the viewer looks for plugins.
function(corvane_add_layer_plugin name)
    cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
    set(folder ${CORVANE_PLUGIN_DIRECTORY})
    if(NOT folder)
        set(folder ${CMAKE_BINARY_DIR}/tvviewerplugins)
    endif()
    add_library(${name} MODULE ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        AUTOMOC ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        LIBRARY_OUTPUT_DIRECTORY ${folder})
    target_compile_features(${name} PRIVATE cxx_std_17)
    target_link_libraries(${name} PRIVATE Corvane::corvane ${arg_LIBS})
    install(TARGETS ${name} LIBRARY DESTINATION ${CORVANE_PLUGIN_INSTALL_DIR} COMPONENT plugins)
endfunction()
