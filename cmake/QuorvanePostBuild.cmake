# quorvane_post_build(TARGET <executable> SCRIPT <file> OUTPUT <file>
#                     [DEFINE <name>=<value>...] [LIBRARY <name or file>...]
#                     [DEPENDS <file or target>...] [BYPRODUCTS <file>...])
#
# Runs a script on the linked image of TARGET as a step of the default build. The script sees the path of the
# image as the variable `input` and the path that it has to save to as `output`; the linker's own file is never
# the one that is patched. The step runs again when the image, the script, a library, a definition, a file of
# DEPENDS or quorvane itself has changed, and at no other time.
#
#   OUTPUT      relative to the current binary folder; what a failed or interrupted script leaves is removed
#   DEFINE      variables of the script, always texts; generator expressions may stand in the values
#   LIBRARY     scripts to load first, in this order: a name (crc) is one of those that come with quorvane, and
#               anything with a "/" or an ending is a file, relative to the current source folder
#   DEPENDS     what else the script reads
#   BYPRODUCTS  what else the script writes
#
# The step is also a target of its own, named after the output file: quorvane_firmware-stamped.elf, say.

# Called with the output and the command: nothing but the image of a script that went well is ever in place.
set(QUORVANE_POST_BUILD_SHELL [[rm -f "$0"
"$@" || { status=$?; rm -f "$0"; exit $status; }
[ -e "$0" ] || { echo "error: the script has not saved its output, $0" >&2; exit 1; }]])
string(REPLACE "\n" "; " QUORVANE_POST_BUILD_SHELL "${QUORVANE_POST_BUILD_SHELL}")

# Everything behind a second "=" would be dropped without a word when the program runs.
function(quorvane_check_definition definition)
    if(NOT definition MATCHES "^[A-Za-z_$][A-Za-z0-9_$]*=")
        message(FATAL_ERROR "quorvane_post_build: DEFINE \"${definition}\" is not of the form name=value")
    endif()
    if(definition MATCHES "=.*=")
        message(FATAL_ERROR "quorvane_post_build: DEFINE \"${definition}\" has a second \"=\", "
            "and a definition ends there")
    endif()
    if(definition MATCHES "^(input|output)=")
        message(FATAL_ERROR "quorvane_post_build: DEFINE \"${definition}\": TARGET and OUTPUT define input and output")
    endif()
endfunction()

function(quorvane_find_library_script library result)
    if(library MATCHES "[/.]")
        cmake_path(ABSOLUTE_PATH library BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE
            OUTPUT_VARIABLE file)
    else()
        set(file "${QUORVANE_LIBRARY_DIR}/${library}.js")
    endif()
    if(NOT EXISTS "${file}")
        message(FATAL_ERROR "quorvane_post_build: there is no LIBRARY ${library} (looked for ${file})")
    endif()
    set(${result} "${file}" PARENT_SCOPE)
endfunction()

function(quorvane_post_build)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;SCRIPT;OUTPUT" "DEFINE;LIBRARY;DEPENDS;BYPRODUCTS")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "quorvane_post_build: unknown arguments: ${arg_UNPARSED_ARGUMENTS}")
    endif()
    foreach(word TARGET SCRIPT OUTPUT)
        if("${arg_${word}}" STREQUAL "")
            message(FATAL_ERROR "quorvane_post_build: ${word} is missing")
        endif()
    endforeach()
    if(NOT TARGET "${arg_TARGET}")
        message(FATAL_ERROR "quorvane_post_build: there is no target ${arg_TARGET}")
    endif()

    cmake_path(ABSOLUTE_PATH arg_SCRIPT BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    if(NOT EXISTS "${arg_SCRIPT}")
        message(FATAL_ERROR "quorvane_post_build: there is no SCRIPT ${arg_SCRIPT}")
    endif()
    cmake_path(ABSOLUTE_PATH arg_OUTPUT BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" NORMALIZE)
    cmake_path(GET arg_OUTPUT FILENAME name)

    set(image "$<TARGET_FILE:${arg_TARGET}>")
    set(words -define "input=${image}" -define "output=${arg_OUTPUT}")
    foreach(definition IN LISTS arg_DEFINE)
        quorvane_check_definition("${definition}")
        string(REPLACE ";" "$<SEMICOLON>" definition "${definition}")
        list(APPEND words -define "${definition}")
    endforeach()
    set(scripts "")
    foreach(library IN LISTS arg_LIBRARY)
        quorvane_find_library_script("${library}" file)
        list(APPEND scripts "${file}")
    endforeach()
    list(APPEND scripts "${arg_SCRIPT}")
    foreach(file IN LISTS scripts)
        list(APPEND words -load "${file}")
    endforeach()

    add_custom_command(OUTPUT "${arg_OUTPUT}"
        BYPRODUCTS ${arg_BYPRODUCTS}
        COMMAND sh -c "${QUORVANE_POST_BUILD_SHELL}" "${arg_OUTPUT}" "$<TARGET_FILE:Quorvane::quorvane>" ${words}
        DEPENDS "${arg_TARGET}" "${image}" ${scripts} ${arg_DEPENDS}
            "$<TARGET_FILE:Quorvane::quorvane>"
        COMMENT "Running ${arg_SCRIPT} on ${arg_TARGET}"
        VERBATIM)
    add_custom_target("quorvane_${name}" ALL DEPENDS "${arg_OUTPUT}")
endfunction()
