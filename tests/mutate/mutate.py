#!/usr/bin/python3
"""Mutation tests: changes the sources in many small ways and sees whether the tests notice.

All mutants of an area are written into one copy of the project, which is built once; an
environment variable switches one of them on. Each is run with the tests that reach its place.
"""

# Debian's Python, because it is the one that finds Debian's libclang.

import argparse
import json
import os
import sys
import time

import plan
import report
from areas import AREAS
from failure import Failure
from known import Equivalents
from scratch import Scratch
from suites import Suites
from trials import Result, Trials

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HERE = os.path.join(PROJECT, "tests", "mutate")


class Progress:
    """One line on a terminal; in a pipe, nothing but what stays."""

    def __init__(self, quiet):
        self.is_terminal = sys.stderr.isatty()
        self.quiet = quiet

    def __call__(self, text, passing=False):
        if self.is_terminal:
            sys.stderr.write(f"\r\033[K{text}" + ("" if passing else "\n"))
            sys.stderr.flush()
        elif not passing and not self.quiet:
            print(text, file=sys.stderr)

    def clear(self):
        if self.is_terminal:
            sys.stderr.write("\r\033[K")


class Session:
    """An area, with the files that are kept of it between two calls."""

    def __init__(self, name, options):
        self.area = AREAS[name]
        self.options = options
        self.progress = Progress(options.quiet)
        folder = os.path.join(os.path.abspath(options.scratch), name)
        self.scratch = Scratch(PROJECT, folder, options.jobs, self.progress)
        self.results_path = os.path.join(folder, "results.json")
        self.results = {}

    def prepare(self):
        """Finds the mutants, builds with them, and runs the tests without any."""
        self.find()
        self.build()
        self.suites = Suites(self.area, self.scratch.build_folder, self.options.jobs,
                             self.progress)
        self.suites.baseline(len(self.mutations))
        self.progress(f"{self.area.name}: {len(self.suites.reached)} tests pass without a mutant")

    def find(self):
        names = plan.source_names(PROJECT, self.area, self.scratch.project_files())
        self.sources = plan.read(PROJECT, names)
        if not os.path.exists(os.path.join(self.scratch.build_folder, "build.ninja")):
            self.scratch.copy({})
            self.scratch.configure()
        else:
            # The copies of sources have mutants in them; the headers that they include may be old.
            self.scratch.copy({}, untouched=self.sources)
        found = plan.find(self.scratch, self.area, self.sources)
        self.mutations = plan.number(plan.sample(found, self.area.sample,
                                                 self.options.seed))
        self.progress(f"{self.area.name}: {len(self.mutations)} of {len(found)} mutants")

    def build(self):
        self.progress(f"{self.area.name}: building", passing=True)
        start = time.monotonic()
        targets = [executable.target for executable in self.area.executables]
        self.dropped = self.scratch.build(self.mutations, targets, self.sources)
        self.built = time.monotonic() - start
        self.progress(f"{self.area.name}: built in {self.built:.0f} s; "
                      f"{len(self.dropped)} mutants do not compile")

    def active(self):
        dropped = {item.number for item in self.dropped}
        return [item for item in self.mutations if item.number not in dropped]

    def load(self):
        try:
            with open(self.results_path) as file:
                data = json.load(file)
        except OSError:
            return {}
        return {item["key"]: Result(**item) for item in data["results"]}

    def save(self):
        data = {"mutants": [vars(item) for item in self.active()],
                "dropped": len(self.dropped), "tests": len(self.suites.reached),
                "built": round(self.built), "tried": round(self.tried),
                "results": [vars(item) for item in self.results.values()]}
        with open(self.results_path + ".new", "w") as file:
            json.dump(data, file, ensure_ascii=False, indent=1)
        os.replace(self.results_path + ".new", self.results_path)

    def todo(self):
        """The mutants to be tried: all, those without a result, or those that got away."""
        if not (self.options.resume or self.options.survivors):
            return self.active()
        known = self.load()
        self.results = {item.key(): known[item.key()] for item in self.active()
                        if item.key() in known}
        if self.options.survivors:
            known = Equivalents.read(HERE)
            self.results = {item.key(): self.results[item.key()] for item in self.active()
                            if item.key() in self.results
                            and (self.results[item.key()].is_caught() or known.reason(item))}
        return [item for item in self.active() if item.key() not in self.results]

    def run(self):
        self.prepare()
        trials = Trials(self.suites, PROJECT)
        todo = self.todo()
        start = time.monotonic()
        self.tried = 0.0

        def done(mutation, result):
            self.results[mutation.key()] = result
            self.tried = time.monotonic() - start
            count = len(self.results) - (len(self.active()) - len(todo))
            self.progress(f"{self.area.name}: {count} of {len(todo)} tried", passing=True)
            if count % 50 == 0:
                self.save()

        try:
            trials.run_all(todo, self.options.jobs, done)
            if self.options.memcheck:
                self.memcheck(trials, done)
        finally:
            self.save()
        self.progress(f"{self.area.name}: {len(todo)} mutants tried in {self.tried:.0f} s")
        print(report.summary(self.area.name, self.load_all(), Equivalents.read(HERE)))

    def memcheck(self, trials, done):
        known = Equivalents.read(HERE)
        for mutation in self.active():
            result = self.results[mutation.key()]
            if result.outcome == "survived" and not known.reason(mutation):
                self.progress(f"{self.area.name}: memcheck of {mutation.number}", passing=True)
                done(mutation, trials.memcheck(mutation))

    def load_all(self):
        with open(self.results_path) as file:
            return json.load(file)

    def only(self, number):
        """Runs one mutant and shows what the tests say."""
        self.prepare()
        mutation = next((item for item in self.active() if item.number == number), None)
        if mutation is None:
            raise Failure(f"there is no mutant {number} in {self.area.name}")
        print(f"{mutation.file}:{mutation.line}, {mutation.function}, {mutation.kind}")
        print(mutation.change())
        tests = self.suites.reaching(number)
        print(f"{len(tests)} tests reach it")
        result = Trials(self.suites, PROJECT).trial(mutation)
        print(result.outcome + (f" by {result.by}" if result.by else ""))


def print_list(session):
    session.find()
    for item in session.mutations:
        print(f"{item.number}\t{item.file}:{item.line}\t{item.function}\t{item.kind}\t"
              f"{item.change()}")


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("areas", nargs="*", metavar="AREA",
                        help=f"{', '.join(AREAS)}; all of them if none is given")
    parser.add_argument("--list", action="store_true", help="list the mutants and stop")
    parser.add_argument("--only", type=int, metavar="N", help="try mutant N of one area")
    parser.add_argument("--resume", action="store_true",
                        help="keep the results of the last time, try the other mutants")
    parser.add_argument("--survivors", action="store_true",
                        help="try those again that were not caught the last time")
    parser.add_argument("--memcheck", action="store_true",
                        help="try survivors once more under valgrind")
    parser.add_argument("--report", action="store_true",
                        help="write RESULT.md from the results there are, and stop")
    parser.add_argument("--scratch", metavar="FOLDER",
                        default=os.path.join(PROJECT, "build", "mutate"),
                        help="folder of the copies and builds (default: build/mutate)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1,
                        help="tests at a time (default: one for each processor)")
    parser.add_argument("--seed", metavar="TEXT", default="",
                        help="take another sample of the mutants; give it a --scratch of its own")
    parser.add_argument("--quiet", action="store_true", help="print the result only")
    options = parser.parse_args()
    unknown = [name for name in options.areas if name not in AREAS]
    if unknown:
        parser.error(f"there is no area '{unknown[0]}'; there are {', '.join(AREAS)}")
    if options.only is not None and len(options.areas) != 1:
        parser.error("--only needs one area")
    return options


def main():
    options = arguments()
    try:
        if options.report:
            report.write(HERE, options.scratch, Equivalents.read(HERE))
            return 0
        for name in options.areas or AREAS:
            session = Session(name, options)
            if options.list:
                print_list(session)
            elif options.only is not None:
                session.only(options.only)
            else:
                session.run()
        return 0
    except Failure as failure:
        print(f"mutate.py: {failure}", file=sys.stderr)
        return 2
    except KeyboardInterrupt:
        print("mutate.py: stopped; --resume goes on", file=sys.stderr)
        return 130


if __name__ == "__main__":
    sys.exit(main())
