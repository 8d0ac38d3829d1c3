# Installation: libraries, the CMake package "vorn_input" and the packages of pkg-config. Headers are
# installed where they are listed, see VornInterface.cmake.
#
# Components: runtime (the libraries), core (the stand-in for the maker's core library), development,
# sim (for tests of products) and tools (vorn-input).

include(CMakePackageConfigHelpers)

set(VORN_PACKAGE "vorn_input${VORN_INPUT_SUFFIX}")
set(VORN_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/${VORN_PACKAGE}")

# vorn_install_library(<target> <component> <export>): the file that programs load as <component>; what
# is needed to link them as "development", unless <component> is an archive's own.
function(vorn_install_library target component export)
    set(archive_component development)
    if(NOT component MATCHES "^(runtime|core)$")
        set(archive_component ${component})
    endif()
    install(TARGETS ${target} EXPORT ${export}
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${component}
            NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${archive_component})
endfunction()

vorn_install_library(vorn_input runtime vorn_inputTargets)
foreach(name VORN_PC_DEFINES VORN_PC_REQUIRES VORN_PC_PROFILE_DEFINES VORN_PC_PROFILE_REQUIRES)
    set(${name} "")
endforeach()
if(NOT BUILD_SHARED_LIBS)
    # Not only with --static: there is nothing else here.
    set(VORN_PC_DEFINES " -DVORN_INPUT_STATIC_DEFINE -DVORN_API_STATIC_DEFINE")
    set(VORN_PC_REQUIRES " log4cplus")
    set(VORN_PC_PROFILE_DEFINES " -DVORN_PROFILE_STATIC_DEFINE")
    set(VORN_PC_PROFILE_REQUIRES " libevdev")
endif()
if(VORN_INPUT_API_LIBRARY)
    set(VORN_PC_API "${VORN_INPUT_API_LIBRARY}")
    set(VORN_CONFIG_API "
# The maker's core library, which this one was built with.
set(VORN_INPUT_API_LIBRARY \"${VORN_INPUT_API_LIBRARY}\" CACHE FILEPATH \"The maker's libvorn_api\")
if(NOT EXISTS \"\${VORN_INPUT_API_LIBRARY}\")
    set(\${CMAKE_FIND_PACKAGE_NAME}_FOUND FALSE)
    set(\${CMAKE_FIND_PACKAGE_NAME}_NOT_FOUND_MESSAGE
        \"The core library is not at \${VORN_INPUT_API_LIBRARY}; set VORN_INPUT_API_LIBRARY.\")
    return()
endif()
if(NOT TARGET vorn::api)
    add_library(vorn::api SHARED IMPORTED)
    set_target_properties(vorn::api PROPERTIES
        IMPORTED_LOCATION \"\${VORN_INPUT_API_LIBRARY}\"
        INTERFACE_INCLUDE_DIRECTORIES
            \"\${PACKAGE_PREFIX_DIR}/${CMAKE_INSTALL_INCLUDEDIR};\${PACKAGE_PREFIX_DIR}/${CMAKE_INSTALL_INCLUDEDIR}/vorn/core\"
        INTERFACE_LINK_LIBRARIES Qt${VORN_INPUT_QT}::Core)
endif()
")
else()
    vorn_install_library(vorn_api core vorn_inputTargets)
    set(VORN_PC_API "-lvorn_api${VORN_INPUT_SUFFIX}")
    set(VORN_CONFIG_API "")
endif()
set(VORN_PACKAGES vorn_input)
if(TARGET vorn_profile)
    vorn_install_library(vorn_profile runtime vorn_inputTargets)
    vorn_install_library(vorn_profile_handler development vorn_inputTargets)
    list(APPEND VORN_PACKAGES vorn_profile)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/VornAddProfile.cmake"
        DESTINATION "${VORN_CMAKE_DIR}" COMPONENT development)
endif()
if(TARGET vorn_sim)
    vorn_install_library(vorn_sim sim vorn_simTargets)
    list(TRANSFORM CMAKE_DL_LIBS PREPEND "-l" OUTPUT_VARIABLE VORN_PC_DL)
    list(APPEND VORN_PACKAGES vorn_sim)
    install(EXPORT vorn_simTargets NAMESPACE vorn::
        DESTINATION "${VORN_CMAKE_DIR}" COMPONENT sim)
endif()
install(EXPORT vorn_inputTargets NAMESPACE vorn::
    DESTINATION "${VORN_CMAKE_DIR}" COMPONENT development)

# Whoever links archives links what these were built with.
set(VORN_CONFIG_STATIC "")
if(NOT BUILD_SHARED_LIBS)
    set(VORN_CONFIG_STATIC "list(APPEND CMAKE_MODULE_PATH \"\${CMAKE_CURRENT_LIST_DIR}\")
find_dependency(log4cplus 2.0)
list(REMOVE_ITEM CMAKE_MODULE_PATH \"\${CMAKE_CURRENT_LIST_DIR}\")
")
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/Findlog4cplus.cmake"
        DESTINATION "${VORN_CMAKE_DIR}" COMPONENT development)
    if(TARGET vorn_profile)
        string(APPEND VORN_CONFIG_STATIC "find_library(VORN_LIBEVDEV evdev)
if(NOT VORN_LIBEVDEV)
    set(\${CMAKE_FIND_PACKAGE_NAME}_FOUND FALSE)
    set(\${CMAKE_FIND_PACKAGE_NAME}_NOT_FOUND_MESSAGE \"libevdev is missing (libevdev-dev).\")
    return()
endif()
if(NOT TARGET vorn::libevdev)
    add_library(vorn::libevdev UNKNOWN IMPORTED)
    set_target_properties(vorn::libevdev PROPERTIES IMPORTED_LOCATION \"\${VORN_LIBEVDEV}\")
endif()
")
    endif()
endif()

configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/vorn_inputConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/${VORN_PACKAGE}Config.cmake"
    INSTALL_DESTINATION "${VORN_CMAKE_DIR}"
    PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/${VORN_PACKAGE}ConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/${VORN_PACKAGE}Config.cmake"
    "${PROJECT_BINARY_DIR}/${VORN_PACKAGE}ConfigVersion.cmake"
    DESTINATION "${VORN_CMAKE_DIR}" COMPONENT development)

# Relative, so that the file works wherever the tree is installed or staged.
file(RELATIVE_PATH VORN_PC_PREFIX
    "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
foreach(package IN LISTS VORN_PACKAGES)
    set(component development)
    if(package STREQUAL "vorn_sim")
        set(component sim)
    endif()
    configure_file(
        "${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in"
        "${PROJECT_BINARY_DIR}/${package}${VORN_INPUT_SUFFIX}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${package}${VORN_INPUT_SUFFIX}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endforeach()

if(TARGET vorn_input_tool)
    install(TARGETS vorn_input_tool RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    install(FILES "${PROJECT_SOURCE_DIR}/share/vorn-input/profile.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/vorn-input" COMPONENT tools)
    install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/vorn-input.bash"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools
        RENAME vorn-input)
    install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/_vorn-input"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" COMPONENT tools)
    if(TARGET vorn_input_manual)
        install(FILES "${PROJECT_BINARY_DIR}/vorn-input.1"
            DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
    endif()
endif()
