"""Reads measured results: CSV rows that each hold one figure."""
import collections
import csv
import re

HEADER = ["group", "subject", "stream", "burst", "parameter", "figure", "unit", "median", "low",
          "high", "runs"]

# In the order of the report.
GROUPS = {
    "path": "Whole path",
    "wakeup": "Wake-ups",
    "hold": "A held key",
    "growth": "Growth",
    "parts": "Parts",
    "scan": "Device scan",
    "start": "Start",
    "latency": "Latency",
    "silence": "Silence",
    "memory": "Memory",
    "footprint": "Footprint",
}

Key = collections.namedtuple("Key", "group subject stream burst parameter figure")
Figure = collections.namedtuple("Figure", "unit median low high runs")


class Failure(Exception):
    """Why there is no report; its text is shown to the user."""


def read(paths):
    """The figures of all files by key, in file order."""
    results = {}
    places = {}
    for path in paths:
        try:
            with open(path, encoding="utf-8", newline="") as file:
                for place, key, figure in rows_of(path, file):
                    if key in results:
                        raise Failure(f"{place}: duplicate of {places[key]}")
                    results[key] = figure
                    places[key] = place
        except OSError as error:
            raise Failure(f"{path}: {error.strerror}")
        except UnicodeDecodeError:
            raise Failure(f"{path}: not UTF-8 text")
        except csv.Error as error:
            raise Failure(f"{path}: {error}")
    if not results:
        raise Failure("no results in " + ", ".join(paths))
    return results


def rows_of(path, file):
    """Yields the place, key and figure of each row of a file."""
    reader = csv.reader(file, strict=True)
    if next(reader, None) != HEADER:
        raise Failure(f"{path}:1: expected the header '{','.join(HEADER)}'")
    for row in reader:
        place = f"{path}:{reader.line_num}"
        if len(row) != len(HEADER):
            raise Failure(f"{place}: {len(row)} columns instead of {len(HEADER)}")
        values = dict(zip(HEADER, row))
        if values["group"] not in GROUPS:
            raise Failure(f"{place}: unknown group '{values['group']}'")
        for column in ("subject", "figure", "unit"):
            if not values[column]:
                raise Failure(f"{place}: {column} is empty")
        burst = values["burst"] and whole(place, "burst", values["burst"])
        figure = Figure(values["unit"], *(real(place, column, values[column])
                                          for column in ("median", "low", "high")),
                        whole(place, "runs", values["runs"]))
        if not figure.low <= figure.median <= figure.high:
            raise Failure(f"{place}: the median is not between low and high")
        yield place, Key(values["group"], values["subject"], values["stream"], burst,
                         values["parameter"], values["figure"]), figure


def whole(place, column, text):
    """A count of at least one."""
    if not re.fullmatch("[0-9]+", text) or int(text) == 0:
        raise Failure(f"{place}: {column} is '{text}', not a whole number above 0")
    return int(text)


def real(place, column, text):
    """A measured value, which is never negative."""
    if not re.fullmatch(r"[0-9]+(\.[0-9]*)?([eE][-+]?[0-9]+)?", text):
        raise Failure(f"{place}: {column} is '{text}', not a number")
    return float(text)


def group_of(results, group):
    return {key: figure for key, figure in results.items() if key.group == group}


def missing_groups(results):
    measured = {key.group for key in results}
    return [group for group in GROUPS if group not in measured]
