# Installation: libraries, headers, the CMake package "vorn_input" and the packages of pkg-config.

include(CMakePackageConfigHelpers)

set(VORN_PACKAGE "vorn_input${VORN_INPUT_SUFFIX}")
set(VORN_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/${VORN_PACKAGE}")
set(VORN_TARGETS vorn_input)
if(NOT VORN_INPUT_API_LIBRARY)
    list(APPEND VORN_TARGETS vorn_api)
endif()
if(TARGET vorn_profile)
    list(APPEND VORN_TARGETS vorn_profile vorn_profile_handler)
endif()
if(TARGET vorn_sim)
    list(APPEND VORN_TARGETS vorn_sim)
endif()

install(TARGETS ${VORN_TARGETS} EXPORT vorn_inputTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT vorn_inputTargets NAMESPACE vorn:: DESTINATION "${VORN_CMAKE_DIR}")

if(TARGET vorn_profile)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/VornAddProfile.cmake"
        DESTINATION "${VORN_CMAKE_DIR}")
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
    DESTINATION "${VORN_CMAKE_DIR}")

# Relative, so that the file works wherever the tree is installed or staged.
file(RELATIVE_PATH VORN_PC_PREFIX
    "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
set(VORN_PACKAGES vorn_input)
if(TARGET vorn_profile)
    list(APPEND VORN_PACKAGES vorn_profile)
endif()
foreach(package IN LISTS VORN_PACKAGES)
    configure_file(
        "${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in"
        "${PROJECT_BINARY_DIR}/${package}${VORN_INPUT_SUFFIX}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${package}${VORN_INPUT_SUFFIX}.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()

if(TARGET vorn_input_tool)
    install(TARGETS vorn_input_tool RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    install(FILES "${PROJECT_SOURCE_DIR}/share/vorn-input/profile.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/vorn-input")
    install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/vorn-input.bash"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME vorn-input)
    install(FILES "${PROJECT_SOURCE_DIR}/packaging/completions/_vorn-input"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
    if(TARGET vorn_input_manual)
        install(FILES "${PROJECT_BINARY_DIR}/vorn-input.1"
            DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    endif()
endif()
