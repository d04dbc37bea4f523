# Every target of ours links corvane_flags: warnings and sanitizers stand here and nowhere else.
add_library(corvane_flags INTERFACE)

target_compile_options(corvane_flags INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall;-Wextra;-Wshadow;-Wconversion;-Wno-sign-conversion;-fno-omit-frame-pointer>
    $<$<CXX_COMPILER_ID:MSVC>:/W4>)
if(CORVANE_WERROR)
    target_compile_options(corvane_flags INTERFACE
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Werror>
        $<$<CXX_COMPILER_ID:MSVC>:/WX>)
endif()

target_compile_definitions(corvane_flags INTERFACE
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS)

if(CORVANE_SANITIZE)
    target_compile_options(corvane_flags INTERFACE
        -fsanitize=${CORVANE_SANITIZE} -fno-sanitize-recover=all)
    target_link_options(corvane_flags INTERFACE -fsanitize=${CORVANE_SANITIZE})
elseif(UNIX AND NOT APPLE)
    # A sanitizer's runtime is resolved only in the program; everything else must link whole.
    target_link_options(corvane_flags INTERFACE -Wl,--no-undefined)
endif()
