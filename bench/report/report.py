#!/usr/bin/env python3
"""Makes tables and plots of measured results.

Reads files with rows of the columns

    group,subject,stream,burst,parameter,figure,unit,median,low,high,runs

and writes results.md, with its pictures beside it, into a folder. What was not measured is named
and left out. The tables and the screen say whether the targets are met; the exit status only
whether there is a report.
"""
import argparse
import os
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True
from plots import draw, plots  # noqa: E402
from results import GROUPS, Failure, missing_groups, read  # noqa: E402
from tables import group_lines, growth_lines, path_lines, table  # noqa: E402
from targets import judged  # noqa: E402


def report(results, pictures):
    """The text of results.md."""
    lines = ["# Results", "",
             "Each figure is the median of its runs, followed by the minimum and maximum in",
             "brackets where they differ. Growth tables show only medians, their pictures the spread",
             "as well."]
    missing = missing_groups(results)
    if missing:
        lines += ["", "Not measured: " + ", ".join(GROUPS[group] for group in missing) + "."]
    lines += ["", "## Targets", ""]
    lines += table(["ratio of CPU times", "stream", "burst", "target", "measured", "verdict"],
                   judged(results), 2)
    for group, title in GROUPS.items():
        if group in missing:
            continue
        lines += ["", f"## {title}"]
        if group == "path":
            lines += path_lines(results, pictures)
        elif group == "growth":
            lines += growth_lines(results, pictures)
        else:
            lines += ["", *group_lines(results, group)]
    return "\n".join(lines) + "\n"


def write(results, output, has_plots):
    """Writes the report and its pictures, or, on a failure, nothing."""
    texts = plots(results)
    pictures = list(texts) if has_plots else []
    with tempfile.TemporaryDirectory() as folder:
        for name in pictures:
            draw(texts[name], os.path.join(folder, f"{name}.svg"))
        with open(os.path.join(folder, "results.md"), "w", encoding="utf-8") as file:
            file.write(report(results, pictures))
        try:
            os.makedirs(output, exist_ok=True)
            for name in sorted(os.listdir(folder)):
                shutil.copyfile(os.path.join(folder, name), os.path.join(output, name))
        except OSError as error:
            raise Failure(f"{error.filename}: {error.strerror}")


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", metavar="FILE", nargs="+", help="results")
    parser.add_argument("-o", "--output", metavar="FOLDER", required=True,
                        help="created if missing; files of the same names are replaced")
    parser.add_argument("--no-plots", action="store_true", help="tables only, without gnuplot")
    options = parser.parse_args()
    try:
        results = read(options.files)
        write(results, options.output, not options.no_plots)
    except Failure as failure:
        print(f"report.py: {failure}", file=sys.stderr)
        return 1
    for row in judged(results):
        print("  ".join(column for column in row if column).replace("*", ""))
    missing = missing_groups(results)
    if missing:
        print("not measured: " + ", ".join(missing))
    return 0


if __name__ == "__main__":
    sys.exit(main())
