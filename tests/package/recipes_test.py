#!/usr/bin/env python3
"""What the recipes for distributions say of files, symbols and options, compared with an installation.

usage: recipes_test.py SOURCE_FOLDER BUILD_FOLDER LIBRARY_FOLDER

LIBRARY_FOLDER is that of the libraries below the prefix.
"""

import fnmatch
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

source, build, libraries = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
packaging = source / "packaging"
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def installed(component, folder):
    """The files and links of a component, relative to the prefix."""
    prefix = pathlib.Path(folder) / component
    subprocess.run(["cmake", "--install", build, "--prefix", prefix, "--component", component],
                   check=True, stdout=subprocess.DEVNULL)
    return {str(path.relative_to(prefix)) for path in prefix.rglob("*") if not path.is_dir()}


def matches(pattern, file):
    """Whether the pattern means the file, or a folder that it is in; a star matches no slash."""
    parts, path = pattern.split("/"), file.split("/")
    return len(parts) <= len(path) and all(map(fnmatch.fnmatchcase, path, parts))


def split(packages, files):
    """Divides the files among packages, which take them in turn. Each file goes into one of them, and
    each pattern means at least one file."""
    rest, result = set(files), {}
    for name, patterns in packages:
        result[name] = set()
        for pattern in patterns:
            found = {file for file in rest if matches(pattern, file)}
            check(found, f"{name}: nothing is installed as {pattern}")
            result[name] |= found
        rest -= result[name]
    for file in sorted(rest):
        failures.append(f"in no package: {file}")
    return result


def compare(recipe, name, found, expected):
    for file in sorted(found ^ expected):
        failures.append(f"{recipe}: {name}: {file} is {'not ' if file in expected else ''}in it")


def debian_patterns(package):
    """The patterns of a package, as places that CMake knows."""
    text = (packaging / "debian" / f"{package}.install").read_text(encoding="utf-8")
    return [line.replace("usr/lib/*", libraries).replace("usr/", "")
            # Debian's name for this folder; "rules" moves it.
            .replace("zsh/vendor-completions", "zsh/site-functions")
            for line in text.split()]


def yocto_variables():
    recipe, = packaging.glob("yocto/meta-*/recipes-*/*/*.bb")
    text = recipe.read_text(encoding="utf-8").replace("\\\n", " ")
    variables = dict(re.findall(r'^(\S+) \??\??= "(.*)"$', text, re.MULTILINE))
    options = set(re.findall(r"-D(\w+)=", text))
    return variables, options


def yocto_patterns(variables, package):
    folders = {"bindir": "bin", "datadir": "share", "includedir": "include", "libdir": libraries,
               "mandir": "share/man"}
    return [re.sub(r"\$\{(\w+)\}", lambda match: folders[match[1]], word)
            for word in variables[f"FILES:{package}"].split()]


def symbols(package):
    """The functions and objects of a symbols file, by library."""
    result, library = {}, None
    for line in (packaging / "debian" / f"{package}.symbols").read_text(encoding="utf-8").splitlines():
        if not line.startswith(" "):
            library = line.split(".so")[0]
            result[library] = set()
        else:
            result[library].add(re.match(r' \(c\+\+\)"(.*)@Base" ', line)[1])
    return result


def exported(library):
    """What the library may export, in the words of symbols files. "*" is in Qt 5's name of a template."""
    text = (source / "abi" / library.replace("lib", "", 1)).with_suffix(".map") \
        .read_text(encoding="utf-8").replace("*INS_", "7QVectorINS_") \
        .replace("*airI", "5QPairI")
    names = "\n".join(re.findall(r"^ *(_Z\w+);", text, re.MULTILINE))
    demangled = subprocess.run(["c++filt"], input=names, capture_output=True, text=True, check=True)
    return set(demangled.stdout.splitlines())


def debian_unit_tests():
    """The number of tests that a build of the packages runs, by the command that it runs them with."""
    command = subprocess.run(
        ["make", "-n", "-f", packaging / "debian" / "rules", "override_dh_auto_test"],
        env={**os.environ, "DEB_BUILD_OPTIONS": "parallel=2"}, capture_output=True, text=True,
        check=True).stdout
    # Where this build is instead of debhelper's, and without running them.
    command = re.sub(r"obj-\S+", lambda _: shlex.quote(build), command.replace("\\\n", " ").strip()) + " -N"
    listed = subprocess.run(command, shell=True, capture_output=True, text=True, check=False)
    total = re.search(r"^Total Tests: (\d+)$", listed.stdout, re.MULTILINE)
    check(listed.returncode == 0 and total, f"debian: cannot run the tests: {command}: {listed.stderr}")
    return int(total[1]) if total else 0


def buildroot_style(path):
    """The rules of Buildroot's manual for such files, as far as these can break them."""
    lines = path.read_text(encoding="utf-8").split("\n")
    check(lines[-1] == "" and lines[-2] != "", f"{path.name}: ends with one line end")
    makefile = path.suffix == ".mk"
    if makefile:
        check(lines[:6] == ["#" * 80, "#", f"# {path.stem}", "#", "#" * 80, ""], f"{path.name}: header")
    continued, order, help_text = False, 0, False
    for number, line in enumerate(lines[:-1], 1):
        place = f"{path.name}:{number}: "
        check(line == line.rstrip(), place + "space at the end")
        check(line or lines[number] or number == len(lines) - 1, place + "two empty lines")
        if makefile:
            check(line.startswith("\t") == continued, place + "a tab where a line is continued")
            check("${" not in line, place + "braces around a variable")
            check(not re.search(r"(  |\t)\\$", line), place + "one space before the backslash")
            name = re.match(r"([A-Z0-9_]+) *\+?=", line)
            check(not name or name[1].startswith("VORN_INPUT_"), place + "variable of another package")
            check(not name or re.match(r"\S+ \+?= \S", line), place + "spaces around the sign")
            continued = line.endswith("\\")
            continue
        word = line.split()[0] if line.strip() else ""
        if line and not line.startswith("\t"):
            order, help_text = 0, False
            check(word in ("config", "comment", "if", "endif"), place + "no entry of its own")
        elif help_text and line:
            check(re.fullmatch(r"\t  \S.{0,61}", line), place + "help: tab, two spaces, 62 characters")
        elif line:
            rank = ["bool", "string", "depends", "select", "help"].index(word)
            rank = max(rank, 1)
            check(rank >= order, place + "type, depends, select, help")
            check(re.match(r"\t\S", line), place + "one tab")
            order, help_text = rank, word == "help"


def main():
    with tempfile.TemporaryDirectory() as folder:
        files = {component: installed(component, folder)
                 for component in ("runtime", "core", "development", "sim", "tools")}
    everything = set().union(*files.values())
    check(sum(map(len, files.values())) == len(everything), "a file is in two components")
    check(len(everything) > 60, f"only {len(everything)} files are installed")
    shared = {file for file in files["development"] if file.endswith(".so")}

    expected = {"libvorn-input1": files["runtime"], "libvorn-api1": files["core"],
                "libvorn-input-dev": files["development"] | files["sim"],
                "vorn-input-tools": files["tools"]}
    found = split([(name, debian_patterns(name)) for name in expected], everything)
    for name, wanted in expected.items():
        compare("debian", name, found[name], wanted)
    for package in ("libvorn-input1", "libvorn-api1"):
        for library, names in symbols(package).items():
            compare("debian", f"symbols of {library}", names, exported(library))

    variables, options = yocto_variables()
    archives = {file for file in everything if file.endswith(".a")}
    expected = {"${PN}-api": files["core"], "${PN}-tools": files["tools"],
                "${PN}": files["runtime"], "${PN}-staticdev": archives,
                "${PN}-dev": (files["development"] | files["sim"]) - archives}
    # BitBake's order: those of PACKAGES =+, then its own.
    found = split([(name, yocto_patterns(variables, name)) for name in expected], everything)
    for name, wanted in expected.items():
        compare("yocto", name, found[name], wanted)

    buildroot = packaging / "buildroot" / "package" / "vorn-input"
    makefile = (buildroot / "vorn-input.mk").read_text(encoding="utf-8")
    for path in (buildroot / "vorn-input.mk", buildroot / "Config.in"):
        buildroot_style(path)
    switches = set(re.findall(r"\$\((BR2_PACKAGE_VORN_INPUT_\w+)\)", makefile))
    offered = set(re.findall(r"^config (BR2_PACKAGE_VORN_INPUT_\w+)",
                             (buildroot / "Config.in").read_text(encoding="utf-8"), re.MULTILINE))
    check(switches == offered, f"buildroot: offers {offered} and uses {switches}")
    options |= set(re.findall(r"-D(\w+)=", makefile))
    options |= set(re.findall(r"-D(\w+)=", (packaging / "debian" / "rules").read_text(encoding="utf-8")))

    cache = pathlib.Path(build, "CMakeCache.txt").read_text(encoding="utf-8")
    for option in sorted(options):
        check(not option.startswith("VORN_") or re.search(f"^{option}:", cache, re.MULTILINE),
              f"there is no option {option}")

    version = re.search(r"^    VERSION (\S+)$", (source / "CMakeLists.txt").read_text(encoding="utf-8"),
                        re.MULTILINE)[1]
    check(f"VERSION = {version}\n" in makefile, "buildroot: another version")
    check(list(packaging.glob(f"yocto/*/*/*/*_{version}.bb")), "yocto: another version")
    check((packaging / "debian" / "changelog").read_text(encoding="utf-8")
          .startswith(f"vorn-input ({version}-"), "debian: another version")
    check(shared and archives, "no libraries to link")
    check(debian_unit_tests() > 100, "debian: a build runs hardly any tests")

    for failure in failures:
        print(f"FAILED: {failure}")
    print(f"{len(everything)} files, {len(options)} options")
    return 1 if failures else 0


sys.exit(main())
