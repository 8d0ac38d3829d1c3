"""A copy of the project, with mutants in its sources, and its build."""

import json
import os
import re
import subprocess

import schemata
from failure import Failure

HEADER = "tests/mutate/vorn_mutant.h"
# Builds that do not compile are tried again without the mutants at fault, so many times.
ATTEMPTS = 12
SETTINGS = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-g1",
            "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DVORN_INPUT_PRECOMPILE=ON",
            "-DVORN_INPUT_FAST_LINKER=ON"]


def write_if_changed(path, data, mode=None):
    """Keeps the time of a file that stays the same, so that it is not compiled again."""
    try:
        with open(path, "rb") as file:
            if file.read() == data:
                return
    except OSError:
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)
    if mode is not None:
        os.chmod(path, mode)


class Scratch:
    def __init__(self, project, folder, jobs, progress):
        self.project = project
        self.folder = folder
        self.tree = os.path.join(folder, "tree")
        self.build_folder = os.path.join(folder, "build")
        self.jobs = jobs
        self.progress = progress

    def path(self, name):
        return os.path.join(self.tree, name)

    def project_files(self):
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=self.project, stdout=subprocess.PIPE, check=True)
        names = [name for name in listed.stdout.decode().split("\0") if name]
        return [name for name in names if os.path.isfile(os.path.join(self.project, name))]

    def copy(self, instrumented, untouched=()):
        """Brings the copy up to date, with these sources in place of the project's."""
        names = set(self.project_files())
        for name in names.difference(untouched):
            path = os.path.join(self.project, name)
            if name in instrumented:
                data = instrumented[name]
            else:
                with open(path, "rb") as file:
                    data = file.read()
            write_if_changed(self.path(name), data, os.stat(path).st_mode & 0o777)
        for folder, _, files in os.walk(self.tree):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.tree) not in names:
                    os.remove(path)

    def configure(self):
        if os.path.exists(os.path.join(self.build_folder, "build.ninja")):
            return
        self.run(["cmake", "-S", self.tree, "-B", self.build_folder, *SETTINGS], "configure")

    def run(self, command, name):
        """Runs a command that has to succeed; its output is kept in a file."""
        log = os.path.join(self.folder, name + ".log")
        os.makedirs(self.folder, exist_ok=True)
        with open(log, "w") as file:
            status = subprocess.run(command, stdout=file, stderr=subprocess.STDOUT).returncode
        if status != 0:
            raise Failure(f"{' '.join(command[:3])} … failed, see {log}")

    def build(self, mutations, targets, sources):
        """Builds with all mutations in it that compile; returns those that do not."""
        dropped = self.dropped_before(mutations)
        for _ in range(ATTEMPTS):
            self.copy(self.instrument(mutations, dropped, sources))
            self.configure()
            output = self.ninja(targets)
            if output is None:
                self.remember(dropped)
                return dropped
            guilty = self.guilty(output, [item for item in mutations if item not in dropped])
            if not guilty:
                break
            self.progress(f"{len(guilty)} mutants do not compile, building without them")
            dropped += guilty
        log = os.path.join(self.folder, "build.log")
        raise Failure(f"the build with mutants failed, see {log}")

    def dropped_before(self, mutations):
        """Those that did not compile the last time, which saves building with them again."""
        try:
            with open(os.path.join(self.folder, "dropped.json")) as file:
                keys = set(json.load(file))
        except OSError:
            return []
        return [item for item in mutations if item.key() in keys]

    def remember(self, dropped):
        with open(os.path.join(self.folder, "dropped.json"), "w") as file:
            json.dump([item.key() for item in dropped], file)

    def instrument(self, mutations, dropped, sources):
        left_out = {item.number for item in dropped}
        result = {}
        for name, data in sources.items():
            mine = [item for item in mutations
                    if item.file == name and item.number not in left_out]
            if mine:
                result[name] = schemata.instrumented(data, mine, self.path(HEADER))
        return result

    def ninja(self, targets):
        """None if the build succeeded, otherwise what was printed."""
        command = ["cmake", "--build", self.build_folder, "-j", str(self.jobs), "--target",
                   *sorted(set(targets)), "--", "-k", "0"]
        result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        output = result.stdout.decode(errors="replace")
        with open(os.path.join(self.folder, "build.log"), "w") as file:
            file.write(output)
        return output if result.returncode != 0 else None

    def guilty(self, output, mutations):
        """The mutants that the compiler's errors are about."""
        numbers = {int(line) - schemata.MARK for line in re.findall(r":(\d{7,})[:,]", output)}
        found = [item for item in mutations if item.number in numbers]
        if found:
            return found
        places = set(re.findall(r"^(\S+?):(\d+):\d+: (?:fatal )?error:", output, re.MULTILINE))
        lines = {(os.path.relpath(path, self.tree), int(line)) for path, line in places}
        return [item for item in mutations if (item.file, item.line) in lines]
