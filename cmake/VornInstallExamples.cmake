# Installs a profile, scenarios and a recorded session with the workbench, to try it with. In the
# installation they are neighbours, so what they say of each other's place is adapted.

set(VORN_EXAMPLES_DIR "${CMAKE_INSTALL_DATADIR}/vorn-input/examples")

# vorn_install_example(<source> <name in the installation> [<text> <replacement>]...)
function(vorn_install_example source name)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${source}")
    file(READ "${PROJECT_SOURCE_DIR}/${source}" content)
    while(ARGN)
        list(POP_FRONT ARGN text replacement)
        string(FIND "${content}" "${text}" place)
        if(place EQUAL -1)
            message(FATAL_ERROR "${source} does not contain '${text}'")
        endif()
        string(REPLACE "${text}" "${replacement}" content "${content}")
    endwhile()
    set(built "${PROJECT_BINARY_DIR}/examples-to-install/${name}")
    file(CONFIGURE OUTPUT "${built}" CONTENT "@content@" @ONLY)
    get_filename_component(folder "${name}" DIRECTORY)
    install(FILES "${built}" DESTINATION "${VORN_EXAMPLES_DIR}/${folder}" COMPONENT tools)
endfunction()

set(recordings examples/player/recordings)
vorn_install_example(share/vorn-input/examples/README.md README.md)
vorn_install_example(examples/profiles/player.toml player.toml
    "../../share/vorn-input/profile.schema.json" "../profile.schema.json")
foreach(scenario player-front-panel player-remote player-unhurried)
    vorn_install_example(tests/scenarios/${scenario}.scenario ${scenario}.scenario)
endforeach()
vorn_install_example(tests/scenarios/parts/front-panel.steps parts/front-panel.steps
    "../../../examples/profiles/player.toml" "../player.toml")

# Under the names that "monitor --record" gives its files.
vorn_install_example(${recordings}/player.umockdev recording/session.umockdev)
vorn_install_example(${recordings}/player.expect recording/session.expect
    "../../profiles/player.toml" "../player.toml")
set(node 0)
foreach(device front-panel ir-receiver hostlink front-panel-jacks)
    foreach(kind ioctl evemu)
        vorn_install_example(${recordings}/${device}.${kind} recording/event${node}.${kind})
    endforeach()
    math(EXPR node "${node} + 1")
endforeach()
install(PROGRAMS "${PROJECT_SOURCE_DIR}/src/tools/workbench/live/replay-recording.sh"
    DESTINATION "${VORN_EXAMPLES_DIR}/recording" RENAME replay.sh COMPONENT tools)
