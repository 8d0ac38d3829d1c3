#!/usr/bin/python3
"""Reads the package for Buildroot as Buildroot does: its menu by Kconfig, its makefile by make with the
choices of that menu, and CMake configures the project with the options that come of it.

usage: buildroot_test.py SOURCE_FOLDER
"""

import os
import pathlib
import subprocess
import sys
import tempfile

try:
    # The distribution's package, so this asks for the distribution's Python.
    import kconfiglib
except ImportError as error:
    print(f"SKIPPED: {error}")
    sys.exit(77)

source = pathlib.Path(sys.argv[1])
external = source / "packaging" / "buildroot"
PACKAGE = "BR2_PACKAGE_VORN_INPUT"
# What Buildroot itself defines, as far as this package asks for it.
OUTSIDE = ("BR2_PACKAGE_LOG4CPLUS", "BR2_PACKAGE_QT5", "BR2_PACKAGE_QT5BASE",
           "BR2_TOOLCHAIN_GCC_AT_LEAST_8", "BR2_TOOLCHAIN_USES_GLIBC")
MAKEFILE = """
include $(CONFIG)
qstrip = $(strip $(subst ",,$(1)))
pkgname = $(lastword $(subst /, ,$(dir $(lastword $(MAKEFILE_LIST)))))
cmake-package = packages += $(pkgname)
include $(BR2_EXTERNAL_VORN_INPUT_PATH)/external.mk
packages:
	@echo $(packages)
site:
	@echo $(VORN_INPUT_SITE_METHOD) $(VORN_INPUT_SITE)
dependencies:
	@echo $(VORN_INPUT_DEPENDENCIES)
options:
	@printf '%s\\n' $(VORN_INPUT_CONF_OPTS)
"""
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def menu(folder, **choices):
    """The menu with choices made, which are to be possible."""
    path = folder / "Config.in"
    path.write_text("".join(f'config {name}\n\tbool "{name}"\n' for name in OUTSIDE)
                    + f'source "{external}/Config.in"\n', encoding="utf-8")
    result = kconfiglib.Kconfig(str(path), warn_to_stderr=False)
    for name, value in choices.items():
        check(result.syms[name].set_value(value), f"Kconfig: {name} cannot be {value}")
    for warning in result.warnings:
        failures.append(f"Kconfig: {warning}")
    return result


def shown(kconfig):
    """The prompts of this package, and the comments, that somebody sees."""
    nodes = [node for node in kconfig.node_iter()
             if node.prompt and pathlib.Path(node.filename).parent.name == "vorn-input"]
    return {node.prompt[0] for node in nodes if kconfiglib.expr_value(node.prompt[1])}


def make(folder, kconfig, target):
    """The words that make prints for a target of MAKEFILE."""
    config = folder / ".config"
    kconfig.write_config(str(config))
    makefile = folder / "Makefile"
    makefile.write_text(MAKEFILE, encoding="utf-8")
    result = subprocess.run(["make", "--no-print-directory", "-f", makefile, f"CONFIG={config}",
                             f"BR2_EXTERNAL_VORN_INPUT_PATH={external}", target],
                            capture_output=True, text=True, check=False)
    check(result.returncode == 0 and not result.stderr, f"make {target}: {result.stderr}")
    return result.stdout.split()


def main():
    os.environ["BR2_EXTERNAL_VORN_INPUT_PATH"] = str(external)
    os.environ["KCONFIG_WARN_UNDEF"] = "y"
    # Buildroot's symbols have no prefix of their own in .config.
    os.environ["CONFIG_"] = ""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        what_it_needs = {"BR2_PACKAGE_QT5": "y", "BR2_TOOLCHAIN_GCC_AT_LEAST_8": "y"}

        check(shown(menu(folder)) == {"vorn-input needs Qt5 and a toolchain w/ gcc >= 8"},
              "Kconfig: offered without Qt, or it does not say what it needs")
        check(shown(menu(folder, **what_it_needs)) == {"vorn-input"}, "Kconfig: not offered")

        chosen = menu(folder, **what_it_needs, **{PACKAGE: "y"})
        check(shown(chosen) == {"vorn-input", "core library", "simulator needs a glibc toolchain"},
              f"Kconfig: without glibc it shows {shown(chosen)}")
        for name in ("BR2_PACKAGE_LOG4CPLUS", "BR2_PACKAGE_QT5BASE"):
            check(chosen.syms[name].str_value == "y", f"Kconfig: does not select {name}")
        check(make(folder, chosen, "packages") == ["vorn-input"], "make: another package")
        method, site = make(folder, chosen, "site")
        check(method == "local" and pathlib.Path(site).samefile(source), f"make: the sources are {site}")
        check(set(make(folder, chosen, "dependencies")) == {"host-pkgconf", "log4cplus", "qt5base"},
              "make: other dependencies")
        options = make(folder, chosen, "options")
        check("-DVORN_INPUT_BUILD_SIM=OFF" in options, "make: builds the simulator unasked")
        check(not [option for option in options if "API_LIBRARY" in option],
              "make: names a core library that nobody chose")

        chosen = menu(folder, **what_it_needs, BR2_TOOLCHAIN_USES_GLIBC="y", **{
            PACKAGE: "y", f"{PACKAGE}_SIM": "y", f"{PACKAGE}_API_LIBRARY": "/maker/libvorn_api.so"})
        check(shown(chosen) == {"vorn-input", "core library", "simulator"},
              f"Kconfig: with glibc it shows {shown(chosen)}")
        options = make(folder, chosen, "options")
        check("-DVORN_INPUT_BUILD_SIM=ON" in options, "make: leaves the simulator out")
        check("-DVORN_INPUT_API_LIBRARY=/maker/libvorn_api.so" in options,
              "make: leaves the maker's library out")

        options = [option for option in options if "API_LIBRARY" not in option]
        configured = subprocess.run(["cmake", "-S", site, "-B", folder / "build", *options],
                                    capture_output=True, text=True, check=False)
        check(configured.returncode == 0 and "Warning" not in configured.stderr,
              f"cmake: {configured.stderr}")

    for failure in failures:
        print(f"FAILED: {failure}")
    return 1 if failures else 0


sys.exit(main())
