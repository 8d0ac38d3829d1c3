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
