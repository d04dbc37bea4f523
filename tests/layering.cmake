cmake_minimum_required(VERSION 3.25)

# Reads the includes of the tree and fails on an arrow that runs the wrong way.
#   cmake -DSOURCE_DIR=... -P tests/layering.cmake

# What each folder may include, itself among it.
set(allowed_compat compat)
set(allowed_corvane/core core)
set(allowed_corvane/map map core)
set(allowed_corvane/tiles tiles map core)
set(allowed_corvane/browser browser core)
set(allowed_corvane/gui gui browser tiles map core)
set(allowed_viewer gui browser tiles map core viewer)
set(allowed_plugins gui browser tiles map core plugins)
# the server has no window: of the library only what every program needs
set(allowed_server core plugins server)

# The same within viewer/: features know the maps and the frame around them, and the window, which makes
# the features, knows all.
set(allowed_viewer/maps maps)
set(allowed_viewer/frame frame maps)
foreach(feature log output places preferences session sources)
    set(allowed_viewer/${feature} ${feature} frame maps)
endforeach()
set(allowed_viewer/batch batch opening output sources frame maps)
set(allowed_viewer/cells cells places frame maps)
set(allowed_viewer/comparing comparing frame maps)
set(allowed_viewer/editing editing output frame maps)
set(allowed_viewer/measuring measuring comparing places frame maps)
set(allowed_viewer/opening opening sources frame maps)
set(allowed_viewer/access access cells places frame maps)
set(allowed_viewer/window window access cells comparing editing frame log maps measuring opening
    output places preferences sources)

set(wrong "")
set(arrows 0)
foreach(folder compat corvane/core corvane/map corvane/tiles corvane/browser corvane/gui viewer plugins server)
    file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR}
        ${SOURCE_DIR}/${folder}/*.h ${SOURCE_DIR}/${folder}/*.cpp)
    foreach(source IN LISTS sources)
        file(STRINGS ${SOURCE_DIR}/${source} includes REGEX "^ *# *include *[<\"](corvane|viewer|plugins|server)/")
        foreach(include IN LISTS includes)
            if(include MATCHES "[<\"]corvane/([a-z]+)/")
                set(target ${CMAKE_MATCH_1})
            elseif(include MATCHES "[<\"](viewer|plugins|server)/")
                set(target ${CMAKE_MATCH_1})
            endif()
            math(EXPR arrows "${arrows} + 1")
            # the plugin manager makes layers
            if(target STREQUAL "map" AND source MATCHES "^corvane/core/PluginManager\\.")
                continue()
            endif()
            if(NOT target IN_LIST allowed_${folder})
                string(APPEND wrong "\n  ${source}: ${include}")
            endif()
        endforeach()
    endforeach()
endforeach()

file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/viewer/*/*.h ${SOURCE_DIR}/viewer/*/*.cpp)
foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    file(STRINGS ${SOURCE_DIR}/${source} includes REGEX "^ *# *include *<viewer/")
    foreach(include IN LISTS includes)
        string(REGEX MATCH "<viewer/([a-z]*)/" found "${include}")
        if(NOT CMAKE_MATCH_1 IN_LIST allowed_${folder})
            string(APPEND wrong "\n  ${source}: ${include}")
        endif()
    endforeach()
endforeach()

if(arrows EQUAL 0)
    message(FATAL_ERROR "no include was read below ${SOURCE_DIR}")
endif()
if(wrong)
    message(FATAL_ERROR "These includes run against the layers:${wrong}")
endif()
message(STATUS "${arrows} includes run with the layers")
