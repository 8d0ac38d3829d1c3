# VORN_INPUT_QT: the Qt that everything is built with. What is installed for another one than 5 has a
# suffix in the names of its files, so that both can be installed side by side.

set(VORN_INPUT_QT 5 CACHE STRING "The major version of Qt: 5 (the reference) or 6")
set_property(CACHE VORN_INPUT_QT PROPERTY STRINGS 5 6)

if(VORN_INPUT_QT STREQUAL "5")
    set(VORN_QT_MINIMUM 5.15)
    set(VORN_INPUT_SUFFIX "")
elseif(VORN_INPUT_QT STREQUAL "6")
    set(VORN_QT_MINIMUM 6.4)
    set(VORN_INPUT_SUFFIX "-qt6")
else()
    message(FATAL_ERROR "VORN_INPUT_QT is '${VORN_INPUT_QT}'; it can be 5 or 6.")
endif()

find_package(Qt${VORN_INPUT_QT} ${VORN_QT_MINIMUM} REQUIRED COMPONENTS Core)

# The same for the workbench, which names the library and the Qt of programs that it can drive.
set(VORN_QT_DEFINITIONS
    VORN_INPUT_QT="${VORN_INPUT_QT}"
    VORN_INPUT_LIBRARY="libvorn_input${VORN_INPUT_SUFFIX}.so")

# vorn_output_name(<target> [<name>]): names the target's file <name>, or as the target, with the suffix.
function(vorn_output_name target)
    set(name "${target}")
    if(ARGC GREATER 1)
        set(name "${ARGV1}")
    endif()
    set_target_properties(${target} PROPERTIES OUTPUT_NAME "${name}${VORN_INPUT_SUFFIX}")
endfunction()
