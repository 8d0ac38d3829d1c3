"""Switches the mutants on, one after the other, and sees which tests notice."""

import concurrent.futures
import dataclasses
import os
import re

from suites import run

# The most promising tests go first, in a process of their own.
FIRST = 10
# How many tests share a process under memcheck, which takes thirty times as long.
MEMCHECK_TESTS = 80
MEMCHECK_FOUND = 99
MEMCHECK = ["valgrind", "--quiet", f"--error-exitcode={MEMCHECK_FOUND}", "--leak-check=full",
            "--errors-for-leak-kinds=definite", "--show-leak-kinds=definite"]


@dataclasses.dataclass
class Result:
    """What became of a mutant: caught, crashed, hung, survived, not covered."""

    key: str
    outcome: str
    by: str = ""
    seconds: float = 0.0

    def is_caught(self):
        return self.outcome in ("caught", "crashed", "hung", "memcheck")


class Trials:
    def __init__(self, suites, project):
        self.suites = suites
        self.project = project
        # By executable and tests: whether these pass together without a mutant.
        self.innocent = {}

    def run_all(self, mutations, jobs, done):
        with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
            futures = {pool.submit(self.trial, item): item for item in mutations}
            try:
                for future in concurrent.futures.as_completed(futures):
                    done(futures[future], future.result())
            except KeyboardInterrupt:
                pool.shutdown(cancel_futures=True)
                raise

    def trial(self, mutation):
        tests = self.suites.reaching(mutation.number)
        if not tests:
            return Result(mutation.key(), "not covered")
        stem = os.path.splitext(os.path.basename(mutation.file))[0]
        tests.sort(key=lambda test: not test.name.startswith(stem))
        seconds = 0.0
        for index, part in self.processes(tests):
            result = self.one_process(mutation, index, part)
            seconds += result.seconds
            if result.outcome == "survived":
                continue
            if not self.is_confirmed(mutation, result, index, part):
                result = self.one_by_one(mutation, part)
            if result.outcome != "survived":
                return dataclasses.replace(result, seconds=seconds)
        return Result(mutation.key(), "survived", seconds=seconds)

    def processes(self, tests):
        """Divides the tests among as few processes as possible."""
        executables = self.suites.area.executables
        alone = [test for test in tests if test.name in executables[test.executable].alone]
        others = [test for test in tests if test not in alone]
        for part in (others[:FIRST], others[FIRST:]):
            for index in sorted({test.executable for test in part}):
                yield index, [test for test in part if test.executable == index]
        for test in alone:
            yield test.executable, [test]

    def is_confirmed(self, mutation, result, index, tests):
        """Whether it is the mutant that fails, not the tests' being together in a process."""
        if len(tests) == 1:
            return True
        named = [test for test in tests if test.name == result.by]
        if result.outcome == "caught" and named:
            return self.one_process(mutation, index, named).outcome != "survived"
        key = (index, tuple(tests))
        if key not in self.innocent:
            names = [test.name for test in tests]
            limit = 15 + 5 * sum(self.suites.seconds[test] for test in tests)
            self.innocent[key] = self.suites.run_tests(index, names, {}, limit).status == 0
        return self.innocent[key]

    def one_by_one(self, mutation, tests):
        for test in tests:
            result = self.one_process(mutation, test.executable, [test])
            if result.outcome != "survived":
                return result
        return Result(mutation.key(), "survived")

    def one_process(self, mutation, index, tests):
        expected = sum(self.suites.seconds[test] for test in tests)
        result = self.suites.run_tests(index, [test.name for test in tests],
                                       {"VORN_MUTANT": str(mutation.number)}, 15 + 5 * expected)
        failed = re.search(r"^\[  FAILED  \] ([^\s,]+)", result.output, re.MULTILINE)
        by = failed.group(1) if failed else tests[0].name if len(tests) == 1 else ""
        if result.status is None:
            return Result(mutation.key(), "hung", by, result.seconds)
        if result.status == 0:
            return Result(mutation.key(), "survived", "", result.seconds)
        if result.status == 1 and by:
            return Result(mutation.key(), "caught", by, result.seconds)
        return Result(mutation.key(), "crashed", by, result.seconds)

    def memcheck(self, mutation):
        """Tries once more, under valgrind: lost memory and invalid reads count, too."""
        tests = [test for test in self.suites.reaching(mutation.number)
                 if self.suites.area.executables[test.executable].memcheck
                 and not self.suites.area.executables[test.executable].arguments
                 and "DeathTest" not in test.name]
        suppressions = os.path.join(self.project, "tests/support/valgrind.supp")
        seconds = 0.0
        for index, part in self.memcheck_processes(tests):
            command = [*MEMCHECK, f"--suppressions={suppressions}", self.suites.program(index),
                       "--gtest_brief=1",
                       "--gtest_filter=" + ":".join(test.name for test in part)]
            environment = {**self.suites.environment(index), "QT_ENABLE_REGEXP_JIT": "0",
                           "VORN_MUTANT": str(mutation.number)}
            result = run(command, environment, 600, memory=False)
            seconds += result.seconds
            if result.status == MEMCHECK_FOUND:
                return Result(mutation.key(), "memcheck", "", seconds)
        return Result(mutation.key(), "survived", "", seconds)

    @staticmethod
    def memcheck_processes(tests):
        """Parts of the tests, the most specific ones first."""
        for start in range(0, len(tests), MEMCHECK_TESTS):
            part = tests[start:start + MEMCHECK_TESTS]
            for index in sorted({test.executable for test in part}):
                yield index, [test for test in part if test.executable == index]
