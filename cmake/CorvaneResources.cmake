# Renders the pictures of corvane/resources (SVG) to PNG at build time and compiles them into a target under ":/resources/".
#
#   corvane_add_resources(<target>)
#
# Call it in the folder that creates the target. In a shared library the pictures are registered when the library loads;
# a static library would have to say Q_INIT_RESOURCE(corvane).
#
# A new picture is an SVG in corvane/resources and its name, without suffix, in the list of its size below.

set(CORVANE_RESOURCES_SOURCE_DIR "${CMAKE_CURRENT_LIST_DIR}/../corvane/resources")

# Trees, dialogs and toolbars: 24 px, and 48 px as @2x.
set(CORVANE_ICONS
    folder
    home
    image
    keys
    lock2
    properties
    refresh
    server_add
    server_information
    server_unknown
    up
    web
    icons/24x24/arrow_down_blue
    icons/24x24/arrow_left_blue
    icons/24x24/arrow_right_blue
    icons/24x24/arrow_up_blue
    icons/24x24/camera2
    icons/24x24/check
    icons/24x24/compress
    icons/24x24/copy
    icons/24x24/disk_blue
    icons/24x24/document_add
    icons/24x24/document_delete
    icons/24x24/document_new
    icons/24x24/document_view
    icons/24x24/fit_to_size
    icons/24x24/folder_add
    icons/24x24/go_to
    icons/24x24/hand_point
    icons/24x24/help
    icons/24x24/help_web
    icons/24x24/link
    icons/24x24/measure
    icons/24x24/monitor
    icons/24x24/navigate_down
    icons/24x24/navigate_down2
    icons/24x24/navigate_minus
    icons/24x24/navigate_plus
    icons/24x24/navigate_up
    icons/24x24/navigate_up2
    icons/24x24/pdf
    icons/24x24/prefs
    icons/24x24/printer
    icons/24x24/printer3
    icons/24x24/printer3_edit
    icons/24x24/printer_information
    icons/24x24/printer_view
    icons/24x24/save_as
    icons/24x24/select
    icons/24x24/zoom
    icons/24x24/zoom_1_to_1
    icons/24x24/zoom_box
)

# Bitmaps and masks of QCursor: 32 px and no @2x, which QBitmap would load in its place on a dense screen, twice the size
# that the hot spots are counted in.
set(CORVANE_CURSORS
    Cursors/point
    Cursors/pointMask
    Cursors/roamCur
    Cursors/roamMask
    Cursors/roaming
    Cursors/roamingMask
    Cursors/zoomCur
    Cursors/zoomMask
    Cursors/zoomboxCur
    Cursors/zoomboxMask
)

# Adds the command that renders one picture, and its PNG to the lists pngs and entries of the calling function.
macro(_corvane_render picture suffix width height)
    set(_svg "${CORVANE_RESOURCES_SOURCE_DIR}/${picture}.svg")
    set(_png "${output}/${picture}${suffix}.png")
    get_filename_component(_folder "${_png}" DIRECTORY)
    file(MAKE_DIRECTORY "${_folder}")
    add_custom_command(
        OUTPUT "${_png}"
        COMMAND "${RSVG_CONVERT_EXECUTABLE}" --width=${width} --height=${height} "--output=${_png}" "${_svg}"
        DEPENDS "${_svg}"
        COMMENT "Rendering ${picture}${suffix}.png"
        VERBATIM)
    list(APPEND pngs "${_png}")
    string(APPEND entries "        <file>${picture}${suffix}.png</file>\n")
endmacro()

function(corvane_add_resources target)
    find_program(RSVG_CONVERT_EXECUTABLE rsvg-convert DOC "Renders the SVG pictures of the resource tree")
    if(NOT RSVG_CONVERT_EXECUTABLE)
        message(FATAL_ERROR
            "rsvg-convert not found. It renders the icons, cursors and pictures in corvane/resources. "
            "Install it (Debian and Ubuntu: librsvg2-bin) or set RSVG_CONVERT_EXECUTABLE to its path.")
    endif()
    if(NOT TARGET Qt5::rcc)
        message(FATAL_ERROR "corvane_add_resources needs Qt5::rcc: call find_package(Qt5 COMPONENTS Core) first.")
    endif()

    set(output "${CMAKE_CURRENT_BINARY_DIR}/resources")
    set(pngs "")
    set(entries "")
    foreach(icon IN LISTS CORVANE_ICONS)
        _corvane_render(${icon} "" 24 24)
        _corvane_render(${icon} "@2x" 48 48)
    endforeach()
    foreach(cursor IN LISTS CORVANE_CURSORS)
        _corvane_render(${cursor} "" 32 32)
    endforeach()
    # 33 px: an odd size has a middle pixel, which the map view lays on the press point.
    _corvane_render(zoombox "" 33 33)
    _corvane_render(zoombox "@2x" 66 66)
    _corvane_render(corvanegeospatial "" 320 120)
    _corvane_render(corvanegeospatial "@2x" 640 240)
    _corvane_render(corvane "" 256 256) # window icon, scaled down from here

    # The toolbar shows the house of the server trees.
    string(APPEND entries
        "        <file alias=\"icons/24x24/home.png\">home.png</file>\n"
        "        <file alias=\"icons/24x24/home@2x.png\">home@2x.png</file>\n")

    set(qrc "${output}/corvane.qrc")
    file(GENERATE OUTPUT "${qrc}" CONTENT
"<RCC>
    <qresource prefix=\"/resources\">
${entries}    </qresource>
</RCC>
")

    # Format 1 stores no file times: the same pictures give the same code whenever they were rendered.
    set(source "${output}/qrc_corvane.cpp")
    add_custom_command(
        OUTPUT "${source}"
        COMMAND Qt5::rcc --name corvane --format-version 1 --output "${source}" "${qrc}"
        DEPENDS "${qrc}" ${pngs}
        COMMENT "Compiling the resource tree"
        VERBATIM)
    set_source_files_properties("${source}" PROPERTIES SKIP_AUTOGEN ON)
    target_sources(${target} PRIVATE "${source}")
endfunction()
