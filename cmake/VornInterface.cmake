# What users of a library see of it: its headers and its symbols.
#
# vorn_public_headers(<target> <folder> COMPONENT <component> <header>…)
#
# The headers of a target that products include, as <vorn/<folder>/<name>>: installed so, and found so
# in the build tree and by projects that take this one in as a sub-directory.

function(vorn_public_headers target folder)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "COMPONENT" "")
    set(headers "")
    foreach(header IN LISTS arg_UNPARSED_ARGUMENTS)
        cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        cmake_path(GET header FILENAME name)
        # Not a link: a header that is included by its own path has one identity, and log locations
        # name the source.
        file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/include/vorn/${folder}/${name}"
            CONTENT "#include \"${header}\"\n" @ONLY)
        list(APPEND headers "${header}")
    endforeach()
    target_include_directories(${target} INTERFACE
        "$<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
    # Also by the file's name alone.
    target_include_directories(${target} INTERFACE
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/vorn/${folder}>")
    if(VORN_INPUT_INSTALL)
        install(FILES ${headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vorn/${folder}"
            COMPONENT ${arg_COMPONENT})
    endif()
endfunction()

# vorn_exports(<target>)
#
# A shared library exports what abi/<target>.map lists, the same whatever compiler and optimisation made
# it. An archive has its own macros for the headers.
function(vorn_exports target)
    if(VORN_INPUT_CHECK_ABI)
        # What the types look like is read from there.
        target_compile_options(${target} PRIVATE -g)
    endif()
    if(NOT BUILD_SHARED_LIBS)
        string(TOUPPER ${target} macro)
        target_compile_definitions(${target} PUBLIC ${macro}_STATIC_DEFINE)
        return()
    endif()
    # Sanitizers and gcov add symbols of their own.
    if(VORN_INPUT_SANITIZE OR VORN_INPUT_COVERAGE)
        return()
    endif()
    set(map "${PROJECT_SOURCE_DIR}/abi/${target}.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
endfunction()
