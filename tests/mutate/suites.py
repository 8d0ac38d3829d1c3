"""The tests: what there is, whether they pass, and which mutants each of them reaches."""

import concurrent.futures
import dataclasses
import os
import resource
import signal
import subprocess
import tempfile
import time

from failure import Failure

# Bytes of memory and of output that a test may take: a mutant may ask for all there is.
MEMORY = 4 << 30
OUTPUT = 256 << 20


@dataclasses.dataclass(frozen=True)
class Test:
    """One test of one executable, which is known by its place in the list of them."""

    executable: int
    name: str


@dataclasses.dataclass
class Run:
    """How a program ended; status is None if it had to be stopped."""

    status: int
    output: str
    seconds: float


def limits(memory):
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (OUTPUT, OUTPUT))
    if memory:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def run(command, environment, limit, memory=True):
    """Runs a program in a group of its own, so that nothing of it is left when it is stopped."""
    start = time.monotonic()
    with tempfile.TemporaryFile() as output:
        child = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
            env={**os.environ, **environment}, start_new_session=True,
            preexec_fn=lambda: limits(memory))
        try:
            status = child.wait(limit)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            try:
                os.killpg(child.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            child.wait()
        output.seek(0)
        text = output.read(1 << 20).decode(errors="replace")
    return Run(status, text, time.monotonic() - start)


class Suites:
    def __init__(self, area, build_folder, jobs, progress):
        self.area = area
        self.build_folder = build_folder
        self.jobs = jobs
        self.progress = progress
        # By test: seconds it takes and numbers of the mutants it reaches.
        self.seconds = {}
        self.reached = {}

    def program(self, index):
        return os.path.join(self.build_folder, self.area.executables[index].path)

    def environment(self, index):
        return self.area.executables[index].environment

    def tests(self):
        return [test for index in range(len(self.area.executables)) for test in self.listed(index)]

    def listed(self, index):
        executable = self.area.executables[index]
        if executable.arguments:
            yield Test(index, " ".join([executable.target, *executable.arguments]))
            return
        command = [self.program(index), "--gtest_list_tests",
                   f"--gtest_filter={executable.filter}"]
        result = run(command, self.environment(index), 60)
        if result.status != 0:
            raise Failure(f"{self.program(index)} cannot list its tests")
        suite = ""
        for line in result.output.splitlines():
            name = line.split("#")[0].strip()
            if not line.startswith(" "):
                suite = name
            elif not name.startswith("DISABLED_"):
                yield Test(index, suite + name)

    def run_tests(self, index, names, extra, limit):
        arguments = self.area.executables[index].arguments or [
            "--gtest_fail_fast", "--gtest_brief=1", "--gtest_filter=" + ":".join(names)]
        command = [self.program(index), *arguments]
        return run(command, {**self.environment(index), **extra}, limit)

    def baseline(self, count):
        """Runs each test alone and without a mutant; all have to pass."""
        tests = self.tests()
        failed = []
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            for done, (test, result, reached) in enumerate(
                    pool.map(lambda test: self.measure(test, count), tests), 1):
                self.progress(f"tests without a mutant: {done} of {len(tests)}", passing=True)
                if result.status != 0:
                    failed.append(test.name)
                self.seconds[test] = result.seconds
                self.reached[test] = reached
        if failed:
            raise Failure("without a mutant, these tests fail: " + ", ".join(failed))

    def measure(self, test, count):
        with tempfile.NamedTemporaryFile() as marks:
            marks.write(bytes(count + 1))
            marks.flush()
            extra = {"VORN_MUTANT_REACHED": marks.name, "VORN_MUTANT_COUNT": str(count + 1)}
            result = self.run_tests(test.executable, [test.name], extra, 120)
            marks.seek(0)
            data = marks.read()
        return test, result, {number for number, mark in enumerate(data) if mark and number}

    def reaching(self, number):
        """The tests that reach a mutant, those first that reach little else."""
        found = [test for test in self.reached if number in self.reached[test]]
        return sorted(found, key=lambda test: (len(self.reached[test]), test.name))
