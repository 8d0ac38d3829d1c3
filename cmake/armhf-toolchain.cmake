# Cross-compiles for the player's processor, 32-bit ARM with hardware floating point, against the
# Debian sysroot that scripts/make-sysroot.sh creates. Programs run under qemu-arm here.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

# The same folder as cache_folder() in scripts/lib/debian-packages.sh.
if(NOT "$ENV{VORN_INPUT_CACHE}" STREQUAL "")
    set(CMAKE_SYSROOT "$ENV{VORN_INPUT_CACHE}/armhf-sysroot")
elseif(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
    set(CMAKE_SYSROOT "$ENV{XDG_CACHE_HOME}/vorn_input/armhf-sysroot")
else()
    set(CMAKE_SYSROOT "$ENV{HOME}/.cache/vorn_input/armhf-sysroot")
endif()
if(NOT IS_DIRECTORY "${CMAKE_SYSROOT}")
    message(FATAL_ERROR "No sysroot in ${CMAKE_SYSROOT}; scripts/make-sysroot.sh makes it.")
endif()

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L "${CMAKE_SYSROOT}")

set(CMAKE_FIND_ROOT_PATH "${CMAKE_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
