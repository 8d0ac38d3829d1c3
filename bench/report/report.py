#!/usr/bin/env python3
"""Makes tables and plots of measured results.

Reads files with rows of the columns

    group,subject,stream,burst,parameter,figure,unit,median,low,high,runs

and writes results.md, with its pictures beside it, into a folder. What was not measured is named
and left out. Whether the targets are met is said in the tables and on the screen; the status tells
only whether there is a report.
"""
import argparse
import collections
import csv
import os
import re
import shutil
import subprocess
import sys
import tempfile

HEADER = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
          "high", "runs"]

# In the order of the report.
GROUPS = {
    "path": "Whole path",
    "wakeup": "Wake-ups",
    "hold": "A key that is held",
    "growth": "Growth",
    "parts": "Parts",
    "scan": "Device scan",
    "start": "Start",
    "latency": "Latency",
    "silence": "Silence",
    "memory": "Memory",
    "footprint": "Footprint",
}

# The raw records behind each stream; what the library makes of the same clicks has three names.
RAW_STREAMS = {"unmapped": "clicks", "immediate": "clicks", "deferred": "clicks"}
STREAMS = ["clicks", "unmapped", "immediate", "deferred", "chords", "held", "switches"]
LIBRARY_STREAMS = STREAMS[1:]

LIBRARY = "library"
BARE_LOOP = "bare loop"
EMPTY_SHAPE = "empty Qt shape"
TRIGGERHAPPY = "triggerhappy"
QT_HANDLER = "Qt evdev keyboard"
PATH_SUBJECTS = [BARE_LOOP, "libevdev loop", EMPTY_SHAPE, TRIGGERHAPPY, "interception-tools",
                 QT_HANDLER, LIBRARY]
IN_SERVICE = "logging off"
CPU_TIME = "CPU time"

# Quantities that something grows with, and what the axis of their plot says.
QUANTITIES = {
    "registered keys": "registered keys",
    "devices": "devices",
    "records per read": "records a read",
    "keys held": "keys held",
}

INK = "#222222"
QUIET = "#767676"
GRID = "#dddddd"
# Told apart by the colour-blind, too.
COLOURS = ["#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00", "#8a6d3b", "#222222"]
PEER_COLOUR = "#9db7c9"
LIBRARY_COLOUR = "#d55e00"

Key = collections.namedtuple("Key", "group subject stream burst parameter figure")
Figure = collections.namedtuple("Figure", "unit median low high runs")
# A target: what is divided by what, at which burst, and whether the ratio has a least or a most.
Target = collections.namedtuple("Target", "burst stream dividend divisor limit is_least")


class Failure(Exception):
    """Why there is no report; its text is for the user."""


# --- Reading ---------------------------------------------------------------------------------


def read(paths):
    """The figures of all files by their keys, in the order of the files."""
    results = {}
    places = {}
    for path in paths:
        try:
            with open(path, encoding="utf-8", newline="") as file:
                for place, key, figure in rows_of(path, file):
                    if key in results:
                        raise Failure(f"{place}: the same as {places[key]}")
                    results[key] = figure
                    places[key] = place
        except OSError as error:
            raise Failure(f"{path}: {error.strerror}")
        except UnicodeDecodeError:
            raise Failure(f"{path}: not a text in UTF-8")
        except csv.Error as error:
            raise Failure(f"{path}: {error}")
    if not results:
        raise Failure("no results in " + ", ".join(paths))
    return results


def rows_of(path, file):
    """Yields place, key and figure of each row of a file."""
    reader = csv.reader(file, strict=True)
    if next(reader, None) != HEADER:
        raise Failure(f"{path}:1: the first line is not '{','.join(HEADER)}'")
    for row in reader:
        place = f"{path}:{reader.line_num}"
        if len(row) != len(HEADER):
            raise Failure(f"{place}: {len(row)} columns in place of {len(HEADER)}")
        values = dict(zip(HEADER, row))
        if values["group"] not in GROUPS:
            raise Failure(f"{place}: there is no group '{values['group']}'")
        for column in ("subject", "figure", "unit"):
            if not values[column]:
                raise Failure(f"{place}: the column {column} is empty")
        burst = values["burst"] and whole(place, "burst", values["burst"])
        figure = Figure(values["unit"], *(real(place, column, values[column])
                                          for column in ("median", "low", "high")),
                        whole(place, "runs", values["runs"]))
        if not figure.low <= figure.median <= figure.high:
            raise Failure(f"{place}: the median is not between low and high")
        yield place, Key(values["group"], values["subject"], values["stream"], burst,
                         values["parameter"], values["figure"]), figure


def whole(place, column, text):
    """A number of things, at least one."""
    if not re.fullmatch("[0-9]+", text) or int(text) == 0:
        raise Failure(f"{place}: the column {column} is '{text}', not a number of things")
    return int(text)


def real(place, column, text):
    """A figure, which is never negative."""
    if not re.fullmatch(r"[0-9]+(\.[0-9]*)?([eE][-+]?[0-9]+)?", text):
        raise Failure(f"{place}: the column {column} is '{text}', not a figure")
    return float(text)


def group_of(results, group):
    return {key: figure for key, figure in results.items() if key.group == group}


# --- Text ------------------------------------------------------------------------------------


def number(value):
    """Three digits, or all of a large number; no zeros that say nothing."""
    if value >= 100:
        return f"{value:.0f}"
    digits = 1 if value >= 10 else 2 if value >= 1 else 3
    return f"{value:.{digits}f}".rstrip("0").rstrip(".")


def cell(figure):
    """A median, with its spread where there is one."""
    if figure is None:
        return ""
    median, low, high = (number(value) for value in (figure.median, figure.low, figure.high))
    return median if low == high else f"{median} ({low}–{high})"


def table(header, rows, texts=1):
    """Lines of a table, whose first columns, @p texts of them, are not numbers."""
    escaped = [[text.replace("|", "\\|") for text in row] for row in [header, *rows]]
    lines = ["| " + " | ".join(row) + " |" for row in escaped]
    rule = ["---"] * texts + ["---:"] * (len(header) - texts)
    lines.insert(1, "|" + "|".join(rule) + "|")
    return lines


def headed(figure, unit):
    """The head of a column: "CPU time, ns/record", "reads/burst"."""
    return figure + unit[1:] if unit == "1" or unit.startswith("1/") else f"{figure}, {unit}"


def ordered(values, known):
    """Those of @p known first and in its order, then the others in their own."""
    found = list(dict.fromkeys(values))
    return ([value for value in known if value in found]
            + [value for value in found if value not in known])


# --- Whole path ------------------------------------------------------------------------------


def raw_stream(stream):
    return RAW_STREAMS.get(stream, stream)


def cpu_time(results, subject, stream, burst):
    """The median of what a subject takes for a record of a stream; None if it was not measured."""
    if subject == LIBRARY:
        key = Key("path", subject, stream, burst, IN_SERVICE, CPU_TIME)
    else:
        key = Key("path", subject, raw_stream(stream), burst, "", CPU_TIME)
    figure = results.get(key)
    return figure.median if figure else None


def ratio(results, dividend, divisor, stream, burst):
    above = cpu_time(results, dividend, stream, burst)
    below = cpu_time(results, divisor, stream, burst)
    return above / below if above is not None and below else None


def targets():
    result = []
    for stream, limit in (("unmapped", 1.5), ("immediate", 3), ("deferred", 4), ("chords", 4)):
        result.append(Target(42, stream, LIBRARY, EMPTY_SHAPE, limit, False))
    for peer in (TRIGGERHAPPY, QT_HANDLER):
        for stream in LIBRARY_STREAMS:
            # Qt's handler throws the records of switches away.
            if peer != QT_HANDLER or stream != "switches":
                result.append(Target(42, stream, peer, LIBRARY, 2, True))
    for stream in LIBRARY_STREAMS:
        limit = 1.3 if stream in ("unmapped", "immediate") else 1.5
        result.append(Target(2, stream, LIBRARY, BARE_LOOP, limit, False))
    return result


def judged(results):
    """Rows of burst, stream, ratio, its target, what was measured, and the verdict."""
    rows = []
    for target in targets():
        value = ratio(results, target.dividend, target.divisor, target.stream, target.burst)
        if value is None:
            verdict = "not measured"
        elif value >= target.limit if target.is_least else value <= target.limit:
            verdict = "met"
        else:
            verdict = "**missed**"
        rows.append([f"{target.dividend} ÷ {target.divisor}", target.stream, str(target.burst),
                     f"{'≥' if target.is_least else '≤'} {target.limit}",
                     "" if value is None else f"{value:.2f}", verdict])
    return rows


def path_tables(results, burst):
    """The lines on one burst."""
    figures = {key: figure for key, figure in group_of(results, "path").items()
               if key.burst == burst}
    kinds = ordered((key.figure for key in figures),
                    [CPU_TIME, "instructions", "allocations", "system calls", "reads"])
    units = {key.figure: figure.unit for key, figure in figures.items()}
    header = ["subject", "stream"] + [headed(kind, units[kind]) for kind in kinds]
    header += [f"÷ {BARE_LOOP}", f"÷ {EMPTY_SHAPE}", f"{TRIGGERHAPPY} ÷ it", f"{QT_HANDLER} ÷ it"]
    rows = []
    seen = dict.fromkeys((key.subject, key.stream, key.parameter) for key in figures)
    subjects = ordered((subject for subject, _, _ in seen), PATH_SUBJECTS)
    raw_streams = ordered((raw_stream(stream) for stream in ordered(
        (stream for _, stream, _ in seen), STREAMS)), [])
    for raw in raw_streams:
        for subject in subjects:
            mine = [(stream, parameter) for other, stream, parameter in seen
                    if other == subject and raw_stream(stream) == raw]
            streams = ordered((stream for stream, _ in mine), STREAMS)
            for stream, parameter in sorted(
                    mine, key=lambda pair: (pair[1] not in ("", IN_SERVICE), pair[1],
                                            streams.index(pair[0]))):
                row = [subject if parameter in ("", IN_SERVICE) else f"{subject}, {parameter}",
                       stream]
                for kind in kinds:
                    row.append(cell(figures.get(Key("path", subject, stream, burst, parameter,
                                                    kind))))
                time = figures.get(Key("path", subject, stream, burst, parameter, CPU_TIME))
                rows.append(row + ratios(results, subject, stream, burst, parameter, time))
    return table(header, rows, 2)


def ratios(results, subject, stream, burst, parameter, time):
    """The last cells of a row: how a time compares to others of the same raw stream."""
    result = []
    for divisor in (BARE_LOOP, EMPTY_SHAPE):
        other = cpu_time(results, divisor, stream, burst)
        result.append(f"{time.median / other:.2f}" if time and other else "")
    for peer in (TRIGGERHAPPY, QT_HANDLER):
        # A peer is compared to what the library does in service only.
        value = (ratio(results, peer, LIBRARY, stream, burst)
                 if subject == LIBRARY and parameter == IN_SERVICE else None)
        result.append("" if value is None else f"{value:.2f}")
    return result


def path_lines(results, pictures):
    lines = []
    for burst in sorted({key.burst for key in group_of(results, "path")}, reverse=True):
        lines += ["", f"### {burst} records a burst", ""]
        lines += picture(pictures, f"path-{burst}", f"CPU time a record, {burst} records a burst")
        lines += path_tables(results, burst)
    return lines


# --- Growth ----------------------------------------------------------------------------------


def growths(results):
    """By quantity, then by subject, figure and unit: the figures by value of the quantity."""
    quantities = {}
    for key, figure in group_of(results, "growth").items():
        name, _, value = key.parameter.partition("=")
        if not re.fullmatch("[0-9]+", value):
            raise Failure(f"the parameter '{key.parameter}' of '{key.subject}' does not tell what"
                          " grows")
        subject = ", ".join(text for text in (
            key.subject, key.stream, key.burst and f"{key.burst} records a burst") if text)
        series = quantities.setdefault(name, {}).setdefault((subject, key.figure, figure.unit), {})
        series[int(value)] = figure
    return {name: quantities[name] for name in ordered(quantities, list(QUANTITIES))}


def growth_lines(results, pictures):
    lines = []
    for quantity, series in growths(results).items():
        values = sorted({value for figures in series.values() for value in figures})
        lines += ["", f"### By {QUANTITIES.get(quantity, quantity)}", ""]
        lines += picture(pictures, picture_of(quantity), f"Growth by {quantity}")
        rows = []
        for (subject, figure, unit), figures in series.items():
            first, last = figures[min(figures)].median, figures[max(figures)].median
            rows.append([subject, headed(figure, unit)]
                        + [number(figures[value].median) if value in figures else ""
                           for value in values]
                        + [f"{last / first:.2f}" if first else ""])
        lines += table(["subject", "figure", *(str(value) for value in values), "last ÷ first"],
                       rows, 2)
    return lines


def picture_of(quantity):
    return "growth-" + re.sub("[^a-z0-9]+", "-", quantity.lower())


# --- All other groups ------------------------------------------------------------------------


def group_lines(results, group):
    """A table with a row for each thing that was looked at, and a column for each figure."""
    figures = group_of(results, group)
    rows = {}
    columns = []
    for key, figure in figures.items():
        measure, _, per = figure.unit.partition("/")
        column = headed(key.figure, measure)
        if column not in columns:
            columns.append(column)
        place = (key.subject, key.stream, str(key.burst), key.parameter, per)
        rows.setdefault(place, {})[column] = figure
    names = ["subject", "stream", "burst", "parameter", "per"]
    used = [index for index in range(len(names))
            if index == 0 or any(place[index] for place in rows)]
    return table([names[index] for index in used] + columns,
                 [[place[index] for index in used] + [cell(row.get(column)) for column in columns]
                  for place, row in rows.items()], len(used))


# --- Pictures --------------------------------------------------------------------------------


def picture(pictures, name, text):
    return [f"![{text}]({name}.svg)", ""] if name in pictures else []


def quoted(text):
    """A string of gnuplot."""
    return '"' + text.replace("\\", "\\\\").replace('"', "'") + '"'


def terminal(width, height):
    return [f'set terminal svg size {width},{height} font "sans-serif,13" background "#ffffff"',
            "set encoding utf8",
            "set termoption noenhanced",
            f'set border 3 linecolor rgb "{QUIET}"',
            f'set xtics nomirror textcolor rgb "{INK}"',
            f'set ytics nomirror textcolor rgb "{INK}"']


def block(name, rows):
    """Data in the text of a plot."""
    return [f"${name} << EOD", *(" ".join(str(value) for value in row) for row in rows), "EOD"]


def path_plot(results, burst):
    """The bars of one burst: the text of a plot, or None."""
    bars = []
    ticks = []
    position = 0
    figures = {key: figure for key, figure in group_of(results, "path").items()
               if key.burst == burst and key.figure == CPU_TIME
               and key.parameter in ("", IN_SERVICE)}
    units = {figure.unit for figure in figures.values()}
    if len(units) != 1:
        return None
    streams = ordered((key.stream for key in figures), STREAMS)
    subjects = ordered((key.subject for key in figures), PATH_SUBJECTS)
    for raw in dict.fromkeys(raw_stream(stream) for stream in streams):
        ticks.append((position, raw.upper()))
        position += 1
        for subject in subjects:
            for key, figure in sorted(figures.items(), key=lambda item: streams.index(
                    item[0].stream)):
                if key.subject != subject or raw_stream(key.stream) != raw:
                    continue
                label = subject if key.stream == raw else f"{subject}, {key.stream}"
                ticks.append((position, label))
                bars.append((position, figure, subject == LIBRARY))
                position += 1
        position += 0.6
    largest = max(figure.high for _, figure, _ in bars)
    lines = terminal(860, int(80 + 21 * position))
    for name, is_library in (("peers", False), ("library", True)):
        lines += block(name, [(place, figure.median, figure.low, figure.high)
                              for place, figure, is_ours in bars if is_ours == is_library])
    labels = ", ".join(f"{quoted(label)} {place}" for place, label in ticks)
    lines += [
        "unset key",
        "set border 1",
        f"set yrange [{position - 0.4}:-0.8]",
        f"set xrange [0:{largest * 1.12}]",
        f"set ytics ({labels}) scale 0",
        f'set grid xtics linetype 1 linecolor rgb "{GRID}"',
        f"set xlabel {quoted(f'CPU time, {units.pop()}: median, least and most')}"
        f' textcolor rgb "{INK}"',
        "set style fill solid noborder",
        # A bar lies from 0 to the median, its whisker from the least to the most.
        "plot " + ", ".join(
            f"${name} using ($2/2):1:($2/2):(0.36) with boxxyerror linecolor rgb '{colour}', "
            f"${name} using 2:1:3:4 with xerrorbars pointtype -1 linewidth 1.2"
            f" linecolor rgb '{INK}', "
            f"${name} using 4:1:(sprintf('  %.4g', $2)) with labels left font ',11'"
            f" textcolor rgb '{INK}'"
            for name, colour, is_library in (("peers", PEER_COLOUR, False),
                                             ("library", LIBRARY_COLOUR, True))
            if any(is_ours == is_library for _, _, is_ours in bars)),
    ]
    return "\n".join(lines) + "\n"


def growth_plot(quantity, series):
    """The curves of one quantity: the text of a plot, or None."""
    panels = {}
    for (subject, figure, unit), figures in series.items():
        if figure not in (CPU_TIME, "instructions") or len(figures) < 2:
            continue
        measure, _, per = unit.partition("/")
        title = f"{subject}, per {per}" if per else subject
        panels.setdefault((figure, measure), []).append((title, figures))
    if not panels:
        return None
    # Of its own height each, with room for its key.
    heights = [270 + 19 * len(curves) for curves in panels.values()]
    values = sorted({value for curves in panels.values() for _, figures in curves
                     for value in figures})
    wide = values[-1] / max(values[0], 1) >= 50
    lines = terminal(760, sum(heights))
    lines += ["set multiplot",
              "set lmargin 13",
              *(["set logscale x", f"set xrange [{values[0] / 1.15}:{values[-1] * 1.15}]"] if wide
                else [f"set xrange [0:{values[-1] * 1.03}]"]),
              "set xtics (" + ", ".join(f'"{value}" {value}' for value in values) + ")",
              f'set grid linetype 1 linecolor rgb "{GRID}"',
              "set key bmargin left Left reverse vertical maxcols 1 samplen 2"
              f' textcolor rgb "{INK}"',
              f"set xlabel {quoted(QUANTITIES.get(quantity, quantity))} offset 0,0.4"
              f" textcolor rgb '{INK}'",
              "set bars 0.4"]
    for number_of_panel, ((figure, measure), curves) in enumerate(panels.items()):
        medians = [point.median for _, figures in curves for point in figures.values()]
        below = sum(heights[number_of_panel + 1:])
        lines.append(f"set origin 0,{below / sum(heights)}")
        lines.append(f"set size 1,{heights[number_of_panel] / sum(heights)}")
        # From zero where the curves are near each other, since that shows the growth as it is.
        spread = max(medians) / min(medians) if min(medians) > 0 else 1
        lines.append("set logscale y" if spread > 40 else "unset logscale y")
        lines.append("set yrange [*:*]" if spread > 40 else "set yrange [0:*]")
        lines.append(f"set ylabel {quoted(headed(figure, measure))} textcolor rgb '{INK}'")
        for index, (_, figures) in enumerate(curves):
            lines += block(f"curve{number_of_panel}x{index}",
                           [(value, figures[value].median, figures[value].low, figures[value].high)
                            for value in sorted(figures)])
        lines.append("plot " + ", ".join(
            f"$curve{number_of_panel}x{index} using 1:2:3:4 with yerrorlines linewidth 1.4"
            f" pointtype 7 pointsize 0.5 linecolor rgb '{COLOURS[index % len(COLOURS)]}'"
            f" dashtype {1 + index // len(COLOURS)} title {quoted(title)}"
            for index, (title, _) in enumerate(curves)))
    lines.append("unset multiplot")
    return "\n".join(lines) + "\n"


def plots(results):
    """The texts of all plots, by name."""
    result = {f"path-{burst}": path_plot(results, burst)
              for burst in {key.burst for key in group_of(results, "path")}}
    for quantity, series in growths(results).items():
        result[picture_of(quantity)] = growth_plot(quantity, series)
    return {name: text for name, text in result.items() if text}


def draw(text, path):
    """Has gnuplot draw a plot."""
    try:
        result = subprocess.run(["gnuplot"], input=text.encode(), stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)
    except OSError as error:
        raise Failure(f"cannot run gnuplot: {error.strerror} (--no-plots does without)")
    if result.returncode != 0 or result.stderr:
        raise Failure("gnuplot: " + result.stderr.decode(errors="replace").strip())
    with open(path, "wb") as file:
        file.write(result.stdout)


# --- The report ------------------------------------------------------------------------------


def report(results, pictures):
    """The text of results.md."""
    lines = ["# Results", "",
             "Each figure is the median of its runs, with the least and the most in brackets where",
             "they differ. Tables of growth show the medians only; their pictures show the spread,",
             "too."]
    missing = [title for group, title in GROUPS.items() if not group_of(results, group)]
    if missing:
        lines += ["", "Not measured: " + ", ".join(missing) + "."]
    lines += ["", "## Targets", ""]
    lines += table(["ratio of CPU times", "stream", "burst", "target", "measured", "verdict"],
                   judged(results), 2)
    for group, title in GROUPS.items():
        if not group_of(results, group):
            continue
        lines += ["", f"## {title}"]
        if group == "path":
            lines += path_lines(results, pictures)
        elif group == "growth":
            lines += growth_lines(results, pictures)
        else:
            lines += ["", *group_lines(results, group)]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", metavar="FILE", nargs="+", help="results")
    parser.add_argument("-o", "--output", metavar="FOLDER", required=True,
                        help="made if it is not there; files of the same names are replaced")
    parser.add_argument("--no-plots", action="store_true", help="tables only, without gnuplot")
    options = parser.parse_args()
    try:
        results = read(options.files)
        texts = plots(results)
        # All or nothing: the folder is not touched before everything is there.
        with tempfile.TemporaryDirectory() as folder:
            pictures = [] if options.no_plots else list(texts)
            for name in pictures:
                draw(texts[name], os.path.join(folder, f"{name}.svg"))
            with open(os.path.join(folder, "results.md"), "w", encoding="utf-8") as file:
                file.write(report(results, pictures))
            try:
                os.makedirs(options.output, exist_ok=True)
                for name in sorted(os.listdir(folder)):
                    shutil.copyfile(os.path.join(folder, name), os.path.join(options.output, name))
            except OSError as error:
                raise Failure(f"{error.filename}: {error.strerror}")
    except Failure as failure:
        print(f"report.py: {failure}", file=sys.stderr)
        return 1
    for row in judged(results):
        print("  ".join(column for column in row if column).replace("*", ""))
    missing = [group for group in GROUPS if not group_of(results, group)]
    if missing:
        print("not measured: " + ", ".join(missing))
    return 0


if __name__ == "__main__":
    sys.exit(main())
