# Functions that add tests: executables with the common main(), and how ctest runs them.

find_package(GTest 1.12 REQUIRED CONFIG)
find_package(Qt${VORN_INPUT_QT} ${VORN_QT_MINIMUM} REQUIRED COMPONENTS Test)
if(VORN_INPUT_QT STREQUAL "6")
    # It would define the folder of each test, so that no two could share a precompiled header.
    set_property(TARGET Qt6::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)
endif()
find_program(VORN_VALGRIND valgrind)

# For programs without the common main(): suppresses only the detectors' deliberate leaks, by name. The
# documents show what is printed in a locale with UTF-8.
set(VORN_TEST_ENVIRONMENT
    "LC_ALL=C.UTF-8"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0")

# Builds the executables whose tests start threads.
add_custom_target(vorn_thread_tests)

# vorn_test_options(<target>)
#
# The options all tests are built with. They must be the same for every test because all share one
# precompiled header, which saves most of the compile time.
function(vorn_test_options target)
    vorn_compile_options(${target})
    # The library under test is optimised as shipped and checked for undefined behaviour. Doing the
    # same for the tests would double their compile time.
    target_compile_options(${target} PRIVATE -O0 -fno-sanitize=undefined)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
    if(NOT target STREQUAL vorn_test_support)
        target_precompile_headers(${target} REUSE_FROM vorn_test_support)
    endif()
endfunction()

# vorn_add_test(<target> SOURCES <file>… [LIBRARIES <target>…] [ALONE <test>…] [THREADS]
#               [NO_VALGRIND])
#
# Adds an executable with the common main() and recorders. ctest runs its suites, see
# vorn_add_suites(), and all of them in one process under memcheck unless NO_VALGRIND is given.
# THREADS: the tests start threads, so they also run under the thread sanitizer.
function(vorn_add_test target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_VALGRIND;THREADS" "" "SOURCES;LIBRARIES;ALONE")
    add_executable(${target} ${arg_SOURCES})
    vorn_test_options(${target})
    target_link_libraries(${target} PRIVATE vorn_test_support vorn_test_exec ${arg_LIBRARIES})
    set(threads "")
    if(arg_THREADS)
        set(threads THREADS)
    endif()
    vorn_add_suites(${target} ${threads} ALONE ${arg_ALONE})
    if(NOT arg_NO_VALGRIND)
        vorn_add_valgrind_test(${target} ${arg_ALONE})
    endif()
endfunction()

# vorn_add_suites(<target> [PREFIX <prefix>] [FILTER <filter>] [ALONE <test>…] [THREADS]
#                 [ENVIRONMENT <variable>=<value>])
#
# Runs each suite of an executable (all tests of one GoogleTest fixture) in its own process, as the
# ctest test <prefix><suite> labelled "unit". FILTER selects suites in --gtest_filter syntax. A test
# listed under ALONE must be the first in its process and runs by itself. THREADS adds the label
# "threads". VornListSuites.cmake asks the executable for its suites.
function(vorn_add_suites target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "THREADS" "PREFIX;FILTER;ENVIRONMENT" "ALONE")
    set(labels unit)
    if(arg_THREADS)
        list(APPEND labels threads)
        add_dependencies(vorn_thread_tests ${target})
    endif()
    string(MAKE_C_IDENTIFIER "${target}_${arg_PREFIX}" name)
    set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}.cmake")
    file(GENERATE OUTPUT "${file}" CONTENT "\
set(target [[${target}]])
set(executable [[$<TARGET_FILE:${target}>]])
set(emulator [[${CMAKE_CROSSCOMPILING_EMULATOR}]])
set(prefix [[${arg_PREFIX}]])
set(filter [[${arg_FILTER}]])
set(alone [[${arg_ALONE}]])
set(labels [[${labels}]])
set(environment [[${arg_ENVIRONMENT}]])
set(reports [[${PROJECT_BINARY_DIR}/Testing/suites]])
include([[${PROJECT_SOURCE_DIR}/cmake/VornListSuites.cmake]])
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${file}")
endfunction()

# vorn_add_valgrind_test(<target> [<test>…])
#
# Runs all tests of an executable in one process under memcheck, labelled "valgrind". Excluded are
# death tests, whose children are killed by a signal without cleaning up, and the named tests, which
# need a process of their own.
function(vorn_add_valgrind_test target)
    if(NOT VORN_VALGRIND OR VORN_INPUT_SANITIZE OR VORN_INPUT_COVERAGE OR CMAKE_CROSSCOMPILING)
        return()
    endif()
    string(JOIN ":" excluded *DeathTest.* ${ARGN})
    add_test(NAME valgrind.${target}
        COMMAND "${VORN_VALGRIND}" --quiet --error-exitcode=99 --leak-check=full
            --errors-for-leak-kinds=definite --show-leak-kinds=definite --num-callers=40
            "--suppressions=${PROJECT_SOURCE_DIR}/tests/support/valgrind.supp"
            "$<TARGET_FILE:${target}>" --gtest_brief=1 "--gtest_filter=-${excluded}")
    # Code that is generated at run time for regular expressions reads whole words of strings.
    set_tests_properties(valgrind.${target} PROPERTIES
        LABELS valgrind TIMEOUT 600 ENVIRONMENT QT_ENABLE_REGEXP_JIT=0)
endfunction()
