#!/usr/bin/env python3
"""Counts the test cases of a ctest run.

usage: count_cases.py JUNIT REPORTS SINCE

JUNIT is ctest's report. REPORTS is the folder with GoogleTest's own reports, one for each ctest test
that runs a suite; those older than the file SINCE belong to an earlier run.

Prints the numbers of passed, failed and skipped cases in one line, then a line for each skipped case
that says why, and for each failed one, followed by what its suite's report says. A suite without a
report did not reach its end: it counts as one case, with the result that ctest gave it.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree


def suite_cases(report):
    """Yields the result of each case of a GoogleTest report and, unless it passed, its name and why."""
    for suite in ElementTree.parse(report).getroot():
        for case in suite.iter("testcase"):
            name = f"{suite.get('name')}.{case.get('name')}"
            skip = case.find("skipped")
            if case.find("failure") is not None:
                yield "failed", f"{name}\n{case.find('failure').get('message', '').strip()}"
            elif skip is not None or case.get("status") != "run":
                reason = "disabled" if skip is None else skip.get("message", "").strip()
                yield "skipped", f"{name}: {reason}"
            else:
                yield "passed", None


def whole_test(test):
    """The result of a ctest test and, unless it passed, its name and why it was skipped."""
    result = {"run": "passed", "fail": "failed"}.get(test.get("status"), "skipped")
    if result != "skipped":
        return result, test.get("name") if result == "failed" else None
    output = test.findtext("system-out") or ""
    reason = re.search(r"SKIPPED: (.*)|: Skipped\n(.*)", output)
    return result, f"{test.get('name')}: {reason[1] or reason[2] if reason else 'not run'}"


def main():
    junit, reports, since = (pathlib.Path(argument) for argument in sys.argv[1:])
    started = since.stat().st_mtime_ns
    counts = {"passed": 0, "failed": 0, "skipped": 0}
    notes = []
    for test in ElementTree.parse(junit).getroot().iter("testcase"):
        report = reports / (test.get("name").replace("/", "_") + ".xml")
        results = [whole_test(test)]
        if report.exists() and report.stat().st_mtime_ns >= started:
            ended = results[0][0]
            results = list(suite_cases(report))
            # For example a leak, which is found after the last case.
            if ended == "failed" and all(result != "failed" for result, _ in results):
                results.append(("failed", f"{test.get('name')}: after its last case"))
        for result, note in results:
            counts[result] += 1
            if note:
                notes.append(f"{result.upper()} {note}")
    print(*counts.values())
    for note in notes:
        print(note)


main()
