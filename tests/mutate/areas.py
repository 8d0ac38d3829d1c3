"""What can be mutated, and the tests that have to notice."""

import dataclasses


@dataclasses.dataclass
class Executable:
    """A program of tests."""

    path: str
    target: str
    environment: dict = dataclasses.field(default_factory=dict)
    # Of the tests, in the syntax of --gtest_filter.
    filter: str = "*"
    # Tests that only count if they are the first of their process.
    alone: tuple = ()
    # For a program that is a test by itself: what it is started with.
    arguments: tuple = ()
    # Memcheck and what replaces malloc exclude each other.
    memcheck: bool = True


@dataclasses.dataclass
class Area:
    """Folders with sources, and programs of tests."""

    name: str
    folders: list
    executables: list
    headers: bool = False
    # How many mutants are taken of all there are; 0 for all.
    sample: int = 0


AREAS = {area.name: area for area in [
    Area(
        name="library",
        folders=["src/lib", "src/api"],
        headers=True,
        executables=[
            Executable("tests/lib/vorn_input_tests", "vorn_input_tests",
                       alone=("InputBus.IsMadeByTheFirstCallAndRegistersTheMetaType",)),
            Executable("tests/api/vorn_api_tests", "vorn_api_tests"),
            Executable("tests/lib/vorn_input_core_tests", "vorn_input_core_tests"),
            Executable("tests/lib/vorn_input_allocation_tests", "vorn_input_allocation_tests",
                       memcheck=False),
            Executable("tests/lib/vorn_fault_tests", "vorn_fault_tests", memcheck=False),
        ]),
    Area(
        name="simulator",
        folders=["src/sim"],
        sample=420,
        executables=[
            Executable("tests/sim/vorn_sim_tests", "vorn_sim_tests"),
            Executable("tests/sim/vorn_sim_tests", "vorn_sim_tests", {"QT_NO_GLIB": "1"}),
            Executable("tests/sim/vorn_sim_hidden", "vorn_sim_hidden",
                       arguments=("InputSubsystem",)),
            Executable("tests/sim/vorn_sim_hidden", "vorn_sim_hidden",
                       arguments=("VirtualClock",)),
        ]),
    Area(
        name="workbench",
        folders=["src/tools/workbench", "src/profile"],
        sample=420,
        executables=[
            Executable("tests/tools/vorn_workbench_tests", "vorn_workbench_tests",
                       memcheck=False),
            Executable("tests/profile/vorn_profile_tests", "vorn_profile_tests"),
        ]),
]}
