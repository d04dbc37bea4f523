# Compile through ccache when it is there. Paths are made relative to the source tree, so that
# build directories and checkouts share their entries.
find_program(CORVANE_CCACHE ccache)
if(CORVANE_CCACHE)
    set(corvane_launcher
        ${CMAKE_COMMAND} -E env
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}
        CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=time_macros,include_file_mtime,include_file_ctime
        ${CORVANE_CCACHE})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${corvane_launcher})
endif()
