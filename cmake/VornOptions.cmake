# The options, and what follows from them.

include(VornSimSupport)

# Found before anything is built of it: what products can do without is off where it is missing.
find_path(VORN_LIBEVDEV_INCLUDE libevdev/libevdev.h PATH_SUFFIXES libevdev-1.0)
find_library(VORN_LIBEVDEV evdev)
# The headers alone: the library that Debian builds of them throws exceptions.
find_path(VORN_TOMLPLUSPLUS_INCLUDE toml++/toml.h)
set(VORN_PROFILE_OBSTACLE "")
if(NOT VORN_LIBEVDEV_INCLUDE OR NOT VORN_LIBEVDEV)
    set(VORN_PROFILE_OBSTACLE "libevdev is missing (Debian's libevdev-dev)")
elseif(NOT VORN_TOMLPLUSPLUS_INCLUDE)
    set(VORN_PROFILE_OBSTACLE "toml++ is missing (Debian's libtomlplusplus-dev)")
endif()

# vorn_default(<variable> <obstacle>…): ON unless one of the obstacles has a text.
function(vorn_default variable)
    set(${variable} ON PARENT_SCOPE)
    foreach(obstacle IN LISTS ARGN)
        if(obstacle)
            set(${variable} OFF PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

vorn_default(sim "${VORN_SIM_OBSTACLE}")
# A missing package is told where the project is built for itself.
set(profile ON)
if(NOT PROJECT_IS_TOP_LEVEL)
    vorn_default(profile "${VORN_PROFILE_OBSTACLE}")
endif()
set(workbench OFF)
if(PROJECT_IS_TOP_LEVEL)
    set(workbench ${sim})
endif()

option(VORN_INPUT_BUILD_SIM "Build vorn_sim, the input subsystem inside a process for tests" ${sim})
option(VORN_INPUT_BUILD_PROFILE "Build vorn_profile, key maps as files" ${profile})
option(VORN_INPUT_BUILD_TESTS "Build the tests" ${workbench})
option(VORN_INPUT_BUILD_TOOLS "Build vorn-input, the workbench" ${workbench})
option(VORN_INPUT_BUILD_EXAMPLES "Build the example player" ${PROJECT_IS_TOP_LEVEL})
option(VORN_INPUT_BUILD_BENCH "Build the benchmarks" OFF)
option(VORN_INPUT_INSTALL "Install what is built" ${PROJECT_IS_TOP_LEVEL})
option(VORN_INPUT_HARDENING "Fortify optimised builds; off where a packager's own flags do" ON)
option(VORN_INPUT_WERROR "Treat warnings as errors" OFF)
option(VORN_INPUT_COVERAGE "Instrument for gcov" OFF)
option(VORN_INPUT_PRECOMPILE "Precompile the headers shared by the workbench and by the tests" OFF)
option(VORN_INPUT_UNITY "Compile sources of the workbench and of tests several at a time" OFF)
option(VORN_INPUT_FAST_LINKER "Link with mold or lld where installed" OFF)
option(VORN_INPUT_CHECK_ABI "Compare the binary interface with the recorded one; needs GCC" OFF)
option(VORN_INPUT_FUZZ "Link the fuzz targets with libFuzzer; needs clang" OFF)
set(VORN_INPUT_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")
set(VORN_INPUT_API_LIBRARY "" CACHE FILEPATH
    "The maker's libvorn_api, linked instead of the stand-in built here")

# These are made of the simulator, and the workbench of profiles, too.
foreach(part TESTS TOOLS BENCH)
    if(VORN_INPUT_BUILD_${part})
        set(VORN_INPUT_BUILD_SIM ON)
    endif()
endforeach()
if(VORN_INPUT_BUILD_TOOLS)
    set(VORN_INPUT_BUILD_PROFILE ON)
endif()

if(VORN_INPUT_BUILD_SIM AND VORN_SIM_OBSTACLE)
    message(FATAL_ERROR "The simulator cannot work here: ${VORN_SIM_OBSTACLE}. The library can; leave "
        "out what needs the simulator: -DVORN_INPUT_BUILD_SIM=OFF -DVORN_INPUT_BUILD_TOOLS=OFF "
        "-DVORN_INPUT_BUILD_TESTS=OFF -DVORN_INPUT_BUILD_BENCH=OFF")
elseif(VORN_SIM_OBSTACLE)
    message(STATUS "Without simulator, workbench and tests: ${VORN_SIM_OBSTACLE}")
endif()
if(VORN_INPUT_BUILD_PROFILE AND VORN_PROFILE_OBSTACLE)
    message(FATAL_ERROR "Profiles cannot be built: ${VORN_PROFILE_OBSTACLE}. Install it, or leave out "
        "what needs it: -DVORN_INPUT_BUILD_PROFILE=OFF -DVORN_INPUT_BUILD_TOOLS=OFF")
elseif(VORN_PROFILE_OBSTACLE)
    message(STATUS "Without profiles: ${VORN_PROFILE_OBSTACLE}")
endif()

# In a larger project, the simulator and profiles are built only for targets that link them.
set(VORN_ON_DEMAND "")
if(NOT PROJECT_IS_TOP_LEVEL AND NOT VORN_INPUT_INSTALL)
    set(VORN_ON_DEMAND EXCLUDE_FROM_ALL)
endif()
