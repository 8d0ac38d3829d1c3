# vorn_compile_options(<target>): warnings, reproducible paths and instrumentation for every target of
# this project.
# vorn_compile_together(<target> [APART <name>…]): see VORN_INPUT_UNITY.

# Makes log locations and assertions name files relative to the project, wherever it is checked out.
set(VORN_PREFIX_MAP
    "-ffile-prefix-map=${PROJECT_BINARY_DIR}/=build/"
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")

# What optimised builds ship with: overflows of buffers and stacks end the process, and nothing that the
# loader fills in stays writable.
set(VORN_HARDENING_COMPILE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    list(APPEND VORN_HARDENING_COMPILE -fcf-protection)
endif()
set(VORN_HARDENING_LINK LINKER:-z,relro,-z,now LINKER:-z,noexecstack)

function(vorn_compile_options target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        ${VORN_PREFIX_MAP})
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
        # GCC's notes on calls whose convention changed in GCC 7; nothing here is older.
        target_compile_options(${target} PRIVATE -Wno-psabi)
    endif()
    get_target_property(type ${target} TYPE)
    if(VORN_INPUT_HARDENING AND NOT VORN_INPUT_SANITIZE)
        # The checks of buffers need the optimiser.
        set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
        target_compile_options(${target} PRIVATE "$<${optimised}:${VORN_HARDENING_COMPILE}>")
        if(NOT type STREQUAL "OBJECT_LIBRARY")
            target_link_options(${target} PRIVATE "$<${optimised}:${VORN_HARDENING_LINK}>")
        endif()
    endif()
    if(VORN_INPUT_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(VORN_INPUT_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${VORN_INPUT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PUBLIC -fsanitize=${VORN_INPUT_SANITIZE})
    endif()
    if(VORN_INPUT_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(VORN_INPUT_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${target} PUBLIC --coverage)
    endif()
endfunction()

# Each folder's sources at once, without those APART, whose helpers have names that others have, too.
# Saves half of the time of a whole build, and costs some when a single source changes. Sources must not
# count on it: other builds go without.
function(vorn_compile_together target)
    if(NOT VORN_INPUT_UNITY)
        return()
    endif()
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "APART")
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(source IN LISTS sources)
        cmake_path(GET source STEM name)
        cmake_path(GET source PARENT_PATH folder)
        if(NOT name IN_LIST arg_APART)
            string(MAKE_C_IDENTIFIER "in_${folder}" group)
            set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${group}")
        endif()
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    # The names of another source are hidden on purpose.
    target_compile_options(${target} PRIVATE -Wno-shadow)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC takes a source for a header, which several others could include, once it is included itself.
        target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
endfunction()
