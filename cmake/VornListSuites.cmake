# Run by ctest, not by CMake: adds a test for each suite of an executable. vorn_add_suites() in
# VornTests.cmake generates the file that sets the variables and includes this one.
#
# Each test writes GoogleTest's report to ${reports}/<name>.xml, from which scripts/test.sh counts
# the cases.

# vorn_add_suite_test(<name> <filter>)
function(vorn_add_suite_test name filter)
    string(REPLACE "/" "_" file "${name}")
    add_test("${name}" ${emulator} "${executable}"
        "--gtest_filter=${filter}" "--gtest_output=xml:${reports}/${file}.xml")
    set_tests_properties("${name}" PROPERTIES LABELS "${labels}" ENVIRONMENT "${environment}")
endfunction()

if(NOT EXISTS "${executable}")
    # A test that fails, so that a missing executable is not overlooked.
    add_test("${prefix}${target}.IsBuilt" "${executable}")
    set_tests_properties("${prefix}${target}.IsBuilt" PROPERTIES LABELS "${labels}")
    return()
endif()

foreach(test IN LISTS alone)
    vorn_add_suite_test("${prefix}${test}" "${test}")
endforeach()
string(REPLACE ";" ":" excluded "${alone}")
if(NOT filter)
    set(filter "*")
endif()

# For the quick loop, where a process per suite takes too long: ctest -C Quick.
if(CTEST_CONFIGURATION_TYPE STREQUAL "Quick")
    vorn_add_suite_test("${prefix}${target}" "${filter}-${excluded}")
    return()
endif()

execute_process(
    COMMAND ${emulator} "${executable}" --gtest_list_tests "--gtest_filter=${filter}-${excluded}"
    OUTPUT_VARIABLE list RESULT_VARIABLE status TIMEOUT 60)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${executable} cannot list its tests (${status}):\n${list}")
endif()
# A suite is listed as "Suite." or "Suite.  # TypeParam = …"; its tests are indented.
string(REGEX MATCHALL "(^|\n)[^ \n;#]+\\." suites "${list}")
foreach(suite IN LISTS suites)
    string(STRIP "${suite}" suite)
    string(REGEX REPLACE "\\.$" "" name "${suite}")
    vorn_add_suite_test("${prefix}${name}" "${suite}*-${excluded}")
endforeach()
