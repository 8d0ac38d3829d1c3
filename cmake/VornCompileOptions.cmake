# vorn_compile_options(<target>): warnings, reproducible paths and instrumentation for every target of
# this project.

# Makes log locations and assertions name files relative to the project, wherever it is checked out.
set(VORN_PREFIX_MAP
    "-ffile-prefix-map=${PROJECT_BINARY_DIR}/=build/"
    "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")

function(vorn_compile_options target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        ${VORN_PREFIX_MAP})
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
        # GCC's notes on calls whose convention changed in GCC 7; nothing here is older.
        target_compile_options(${target} PRIVATE -Wno-psabi)
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
