# vorn_add_profile(<target> <profile>… [NAME <identifier>] [STRICT])
#
# Compiles profiles into a target. For panel.toml, the sources of the target include "panel.h", which
# declares the constant `panel`, and Vorn::toProfile(panel) is the profile. The program neither reads
# a file nor contains a reader.
#
# Profiles are checked when they are compiled, and a mistake stops the build with file, line and
# column. A profile that changes is compiled again, and the target where the result differs.
#
#   NAME    the constant's and the header's name, for a single profile; otherwise that of the file,
#           with _ for - and .
#   STRICT  warnings stop the build, too
#
# It links vorn::profile_handler, which has the device manager and no reader, unless the target already
# links vorn::profile, which has both.
#
# The work is done by vorn-input, which runs where the build runs. For a cross-build without an
# emulator set VORN_INPUT_TOOL to one that does.

# Functions keep the policies of where they are defined, so whatever the product asks for is all right.
cmake_policy(VERSION 3.22)

# _vorn_profile_tool(<variable>): the program, as the first words of a command.
function(_vorn_profile_tool variable)
    # In the project's own build; CMake puts the emulator before it.
    if(TARGET vorn_input_tool)
        set(${variable} vorn_input_tool PARENT_SCOPE)
        return()
    endif()
    get_property(version GLOBAL PROPERTY VORN_INPUT_TOOL_VERSION)
    get_property(folder GLOBAL PROPERTY VORN_INPUT_TOOL_FOLDER)
    if(CMAKE_CROSSCOMPILING)
        # What is installed for the product's machine does not run here.
        set(where NO_CMAKE_PATH NO_PACKAGE_ROOT_PATH NO_CMAKE_FIND_ROOT_PATH)
    else()
        set(where HINTS "${folder}")
    endif()
    # Whichever Qt it was built with, it writes the same.
    find_program(VORN_INPUT_TOOL NAMES vorn-input vorn-input-qt6 NAMES_PER_DIR ${where}
        DOC "vorn-input, which compiles profiles")
    if(NOT VORN_INPUT_TOOL)
        message(FATAL_ERROR "vorn_add_profile() needs the program vorn-input on this machine; "
            "install it, or set VORN_INPUT_TOOL to its path.")
    endif()
    execute_process(COMMAND "${VORN_INPUT_TOOL}" --version
        OUTPUT_VARIABLE printed ERROR_VARIABLE printed RESULT_VARIABLE status
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT status STREQUAL "0")
        message(FATAL_ERROR "vorn_add_profile() cannot run ${VORN_INPUT_TOOL}: ${status} ${printed}; "
            "set VORN_INPUT_TOOL to one that runs on this machine.")
    endif()
    # The source that it writes and the header that this includes must be of one version.
    if(NOT printed STREQUAL "vorn-input ${version}")
        message(FATAL_ERROR "vorn_add_profile() needs vorn-input ${version}, and "
            "${VORN_INPUT_TOOL} is '${printed}'; set VORN_INPUT_TOOL to the one of this version.")
    endif()
    set(${variable} "${VORN_INPUT_TOOL}" PARENT_SCOPE)
endfunction()

function(vorn_add_profile target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "STRICT" "NAME" "")
    list(LENGTH arg_UNPARSED_ARGUMENTS count)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "vorn_add_profile(): there is no target '${target}'.")
    endif()
    get_target_property(target_folder ${target} SOURCE_DIR)
    if(NOT target_folder STREQUAL CMAKE_CURRENT_SOURCE_DIR)
        message(FATAL_ERROR "vorn_add_profile(${target}): call it in ${target_folder}, where the "
            "target is made.")
    endif()
    if(count EQUAL 0)
        message(FATAL_ERROR "vorn_add_profile(${target}): name a profile.")
    endif()
    if(arg_KEYWORDS_MISSING_VALUES OR (DEFINED arg_NAME AND NOT count EQUAL 1))
        message(FATAL_ERROR "vorn_add_profile(${target}): NAME takes the name of a single profile.")
    endif()
    set(options "")
    if(arg_STRICT)
        set(options --strict)
    endif()
    _vorn_profile_tool(tool)
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}_profiles")
    file(MAKE_DIRECTORY "${folder}")
    foreach(profile IN LISTS arg_UNPARSED_ARGUMENTS)
        cmake_path(ABSOLUTE_PATH profile BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
        set(name "${arg_NAME}")
        if(NOT name)
            cmake_path(GET profile STEM LAST_ONLY name)
            string(REGEX REPLACE "[-. ]" "_" name "${name}")
        endif()
        set(source "${folder}/${name}.cpp")
        # Ninja does not go on where the outputs keep their times; the program leaves them alone if
        # they are the same.
        add_custom_command(
            OUTPUT "${source}" "${folder}/${name}.h"
            COMMAND ${tool} compile "--name=${name}" ${options} "--output=${source}" "${profile}"
            DEPENDS "${profile}" ${tool}
            COMMENT "Compiling profile ${name}"
            VERBATIM)
        target_sources(${target} PRIVATE "${source}" "${folder}/${name}.h")
        # Nothing in it is for the generators of Qt.
        set_source_files_properties("${source}" "${folder}/${name}.h" PROPERTIES SKIP_AUTOGEN ON)
    endforeach()
    target_include_directories(${target} PRIVATE "${folder}")
    get_target_property(libraries ${target} LINK_LIBRARIES)
    if(NOT "vorn::profile" IN_LIST libraries)
        target_link_libraries(${target} PRIVATE vorn::profile_handler)
    endif()
endfunction()
