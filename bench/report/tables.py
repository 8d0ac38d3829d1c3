"""Results as lines of Markdown: tables, and the headings and pictures between them."""
from comparison import (BARE_LOOP, CPU_TIME, EMPTY_SHAPE, IN_SERVICE, LIBRARY, QT_HANDLER, STREAMS,
                        SUBJECTS, TRIGGERHAPPY, cpu_time, ordered, ratio, raw_stream)
from growth import QUANTITIES, growths, picture_of
from results import Key, group_of


def number(value):
    """Three digits, or all of a large number; no trailing zeros."""
    if value >= 100:
        return f"{value:.0f}"
    digits = 1 if value >= 10 else 2 if value >= 1 else 3
    return f"{value:.{digits}f}".rstrip("0").rstrip(".")


def cell(figure):
    """A median, with its spread if there is one."""
    if figure is None:
        return ""
    median, low, high = (number(value) for value in (figure.median, figure.low, figure.high))
    return median if low == high else f"{median} ({low}–{high})"


def table(header, rows, texts=1):
    """The lines of a table whose first @p texts columns are text, and the others numbers."""
    escaped = [[text.replace("|", "\\|") for text in row] for row in [header, *rows]]
    lines = ["| " + " | ".join(row) + " |" for row in escaped]
    rule = ["---"] * texts + ["---:"] * (len(header) - texts)
    lines.insert(1, "|" + "|".join(rule) + "|")
    return lines


def headed(figure, unit):
    """A column heading: "CPU time, ns/record", "reads/burst"."""
    return figure + unit[1:] if unit == "1" or unit.startswith("1/") else f"{figure}, {unit}"


def picture(pictures, name, text):
    return [f"![{text}]({name}.svg)", ""] if name in pictures else []


def path_lines(results, pictures):
    lines = []
    for burst in sorted({key.burst for key in group_of(results, "path")}, reverse=True):
        lines += ["", f"### {burst} records per burst", ""]
        lines += picture(pictures, f"path-{burst}",
                         f"CPU time per record, {burst} records per burst")
        lines += path_table(results, burst)
    return lines


def path_table(results, burst):
    """One row per subject, stream and parameter; rows of the same raw stream are together."""
    figures = {key: figure for key, figure in group_of(results, "path").items()
               if key.burst == burst}
    kinds = ordered((key.figure for key in figures),
                    [CPU_TIME, "instructions", "allocations", "system calls", "reads"])
    units = {key.figure: figure.unit for key, figure in figures.items()}
    header = ["subject", "stream"] + [headed(kind, units[kind]) for kind in kinds]
    header += [f"÷ {BARE_LOOP}", f"÷ {EMPTY_SHAPE}", f"{TRIGGERHAPPY} ÷ this",
               f"{QT_HANDLER} ÷ this"]
    rows = []
    for subject, stream, parameter in path_order(figures):
        row = [subject if parameter in ("", IN_SERVICE) else f"{subject}, {parameter}", stream]
        row += [cell(figures.get(Key("path", subject, stream, burst, parameter, kind)))
                for kind in kinds]
        time = figures.get(Key("path", subject, stream, burst, parameter, CPU_TIME))
        rows.append(row + ratios(results, subject, stream, burst, parameter, time))
    return table(header, rows, 2)


def path_order(figures):
    """What the rows of one burst are about, in the order of the report."""
    seen = dict.fromkeys((key.subject, key.stream, key.parameter) for key in figures)
    streams = ordered((stream for _, stream, _ in seen), STREAMS)
    raw_streams = ordered((raw_stream(stream) for stream in streams), [])
    subjects = ordered((subject for subject, _, _ in seen), SUBJECTS)
    return sorted(seen, key=lambda about: (
        raw_streams.index(raw_stream(about[1])), subjects.index(about[0]),
        about[2] not in ("", IN_SERVICE), about[2], streams.index(about[1])))


def ratios(results, subject, stream, burst, parameter, time):
    """The last cells of a row: its time compared with others of the same raw stream."""
    result = []
    for divisor in (BARE_LOOP, EMPTY_SHAPE):
        other = cpu_time(results, divisor, stream, burst)
        result.append(f"{time.median / other:.2f}" if time and other else "")
    for peer in (TRIGGERHAPPY, QT_HANDLER):
        # The peers do not log, so only a library that does not either compares fairly.
        value = (ratio(results, peer, LIBRARY, stream, burst)
                 if subject == LIBRARY and parameter == IN_SERVICE else None)
        result.append("" if value is None else f"{value:.2f}")
    return result


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


def group_lines(results, group):
    """A table with one row per measured thing and one column per figure."""
    rows = {}
    columns = []
    for key, figure in group_of(results, group).items():
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
