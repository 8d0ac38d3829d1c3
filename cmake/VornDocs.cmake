# The target "docs": the documentation site, in docs/html of the build folder. Not part of "all".

find_package(Doxygen 1.9 QUIET)
find_package(Python3 QUIET COMPONENTS Interpreter)
find_program(VORN_MANDOC mandoc)
find_program(VORN_SCDOC scdoc)
find_path(VORN_DOXYGEN_AWESOME doxygen-awesome.css PATH_SUFFIXES share/doxygen-awesome-css)
if(NOT DOXYGEN_FOUND OR NOT Python3_FOUND OR NOT VORN_MANDOC OR NOT VORN_SCDOC)
    message(STATUS "No target docs: it needs doxygen, mandoc, python3 and scdoc")
    return()
endif()

set(VORN_DOCS_FOLDER "${PROJECT_BINARY_DIR}/docs")
set(VORN_DOCS_FILTER "${PROJECT_SOURCE_DIR}/docs/site/filter.py")
set(VORN_DOCS_STYLESHEETS "\"${PROJECT_SOURCE_DIR}/docs/site/site.css\"")
if(VORN_DOXYGEN_AWESOME)
    # Follows the reader's light or dark theme, as the pictures do.
    set(VORN_DOCS_STYLESHEETS "\"${VORN_DOXYGEN_AWESOME}/doxygen-awesome.css\" \
\"${VORN_DOXYGEN_AWESOME}/doxygen-awesome-sidebar-only.css\" ${VORN_DOCS_STYLESHEETS}")
endif()

# The headers under the names by which products include them.
set(VORN_DOCS_HEADERS "${VORN_DOCS_FOLDER}/include")
set(VORN_DOCS_SOURCES "")
file(GLOB_RECURSE headers RELATIVE "${PROJECT_BINARY_DIR}/include" "${PROJECT_BINARY_DIR}/include/*.h")
list(FILTER headers EXCLUDE REGEX "_export\\.h$")
file(REMOVE_RECURSE "${VORN_DOCS_HEADERS}")
foreach(header IN LISTS headers)
    file(READ "${PROJECT_BINARY_DIR}/include/${header}" forward)
    string(REGEX REPLACE ".*\"(.+)\".*" "\\1" source "${forward}")
    cmake_path(GET header PARENT_PATH folder)
    file(MAKE_DIRECTORY "${VORN_DOCS_HEADERS}/${folder}")
    file(CREATE_LINK "${source}" "${VORN_DOCS_HEADERS}/${header}" SYMBOLIC)
    list(APPEND VORN_DOCS_SOURCES "${source}")
endforeach()

file(GLOB documents CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/*.md"
    "${PROJECT_SOURCE_DIR}/docs/*.md"
    "${PROJECT_SOURCE_DIR}/docs/*/*.md"
    "${PROJECT_SOURCE_DIR}/docs/man/*.scd"
    "${PROJECT_SOURCE_DIR}/examples/README.md"
    "${PROJECT_SOURCE_DIR}/examples/*/README.md")
list(APPEND VORN_DOCS_SOURCES ${documents})
list(TRANSFORM documents REPLACE "(.+)" "\"\\1\"")
list(JOIN documents " " VORN_DOCS_DOCUMENTS)
file(GLOB pictures CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/docs/pictures/*.svg"
    "${PROJECT_SOURCE_DIR}/docs/performance/*.svg"
    "${PROJECT_SOURCE_DIR}/docs/soak/*.svg")

configure_file("${PROJECT_SOURCE_DIR}/docs/site/Doxyfile.in" "${VORN_DOCS_FOLDER}/Doxyfile" @ONLY)
add_custom_command(
    OUTPUT "${VORN_DOCS_FOLDER}/html/index.html"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${VORN_DOCS_FOLDER}/html"
    COMMAND Doxygen::doxygen "${VORN_DOCS_FOLDER}/Doxyfile"
    DEPENDS ${VORN_DOCS_SOURCES} ${pictures}
        "${VORN_DOCS_FOLDER}/Doxyfile" "${VORN_DOCS_FILTER}" "${PROJECT_SOURCE_DIR}/docs/site/site.css"
    COMMENT "Writing the documentation site"
    VERBATIM)
add_custom_target(docs DEPENDS "${VORN_DOCS_FOLDER}/html/index.html")
