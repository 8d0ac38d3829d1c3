# Finds log4cplus by its own CMake package or, where a distribution leaves that out, by pkg-config.
# Provides log4cplus::log4cplus.

find_package(log4cplus ${log4cplus_FIND_VERSION} CONFIG QUIET)
if(NOT log4cplus_FOUND)
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(VORN_LOG4CPLUS QUIET IMPORTED_TARGET log4cplus)
    endif()
    if(VORN_LOG4CPLUS_FOUND AND NOT TARGET log4cplus::log4cplus)
        add_library(log4cplus::log4cplus INTERFACE IMPORTED)
        set_target_properties(log4cplus::log4cplus PROPERTIES
            INTERFACE_LINK_LIBRARIES PkgConfig::VORN_LOG4CPLUS)
        set(log4cplus_VERSION "${VORN_LOG4CPLUS_VERSION}")
    endif()
endif()

if(TARGET log4cplus::log4cplus)
    set(VORN_LOG4CPLUS_TARGET log4cplus::log4cplus)
else()
    set(VORN_LOG4CPLUS_TARGET "")
endif()
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(log4cplus
    REQUIRED_VARS VORN_LOG4CPLUS_TARGET
    VERSION_VAR log4cplus_VERSION
    REASON_FAILURE_MESSAGE "neither its CMake package nor log4cplus.pc is there. Debian has both in \
liblog4cplus-dev")
