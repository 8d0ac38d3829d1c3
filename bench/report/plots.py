"""Results as pictures, drawn by gnuplot."""
import subprocess

from comparison import CPU_TIME, IN_SERVICE, LIBRARY, STREAMS, SUBJECTS, ordered, raw_stream
from growth import QUANTITIES, growths, picture_of
from results import Failure, group_of
from tables import headed

INK = "#222222"
QUIET = "#767676"
GRID = "#dddddd"
# Distinguishable for the colour-blind.
COLOURS = ["#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00", "#8a6d3b", "#222222"]
PEER_COLOUR = "#9db7c9"
LIBRARY_COLOUR = "#d55e00"


def plots(results):
    """The gnuplot scripts of all pictures, by name."""
    result = {f"path-{burst}": path_plot(results, burst)
              for burst in {key.burst for key in group_of(results, "path")}}
    for quantity, series in growths(results).items():
        result[picture_of(quantity)] = growth_plot(quantity, series)
    return {name: text for name, text in result.items() if text}


def draw(text, path):
    """Has gnuplot draw a picture."""
    try:
        result = subprocess.run(["gnuplot"], input=text.encode(), stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)
    except OSError as error:
        raise Failure(f"cannot run gnuplot: {error.strerror} (--no-plots works without it)")
    if result.returncode != 0 or result.stderr:
        raise Failure("gnuplot: " + result.stderr.decode(errors="replace").strip())
    with open(path, "wb") as file:
        file.write(result.stdout)


def quoted(text):
    """A gnuplot string."""
    return '"' + text.replace("\\", "\\\\").replace('"', "'") + '"'


def terminal(width, height):
    return [f'set terminal svg size {width},{height} font "sans-serif,13" background "#ffffff"',
            "set encoding utf8",
            "set termoption noenhanced",
            f'set border 3 linecolor rgb "{QUIET}"',
            f'set xtics nomirror textcolor rgb "{INK}"',
            f'set ytics nomirror textcolor rgb "{INK}"']


def block(name, rows):
    """Inline data."""
    return [f"${name} << EOD", *(" ".join(str(value) for value in row) for row in rows), "EOD"]


def path_plot(results, burst):
    """The script for the bars of one burst, or None."""
    figures = {key: figure for key, figure in group_of(results, "path").items()
               if key.burst == burst and key.figure == CPU_TIME
               and key.parameter in ("", IN_SERVICE)}
    units = {figure.unit for figure in figures.values()}
    if len(units) != 1:
        return None
    ticks, bars, end = path_bars(figures)
    largest = max(figure.high for _, figure, _ in bars)
    lines = terminal(860, int(80 + 21 * end))
    for name, is_library in (("peers", False), ("library", True)):
        lines += block(name, [(place, figure.median, figure.low, figure.high)
                              for place, figure, is_ours in bars if is_ours == is_library])
    labels = ", ".join(f"{quoted(label)} {place}" for place, label in ticks)
    lines += [
        "unset key",
        "set border 1",
        f"set yrange [{end - 0.4}:-0.8]",
        f"set xrange [0:{largest * 1.12}]",
        f"set ytics ({labels}) scale 0",
        f'set grid xtics linetype 1 linecolor rgb "{GRID}"',
        f"set xlabel {quoted(f'CPU time, {units.pop()}: median, minimum, maximum')}"
        f' textcolor rgb "{INK}"',
        "set style fill solid noborder",
        # A bar goes from 0 to the median, its whisker from minimum to maximum.
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


def path_bars(figures):
    """Ticks (position, label), bars (position, figure, is the library's), and where they end."""
    streams = ordered((key.stream for key in figures), STREAMS)
    subjects = ordered((key.subject for key in figures), SUBJECTS)
    ticks, bars = [], []
    position = 0
    for raw in dict.fromkeys(raw_stream(stream) for stream in streams):
        ticks.append((position, raw.upper()))
        position += 1
        for key in sorted((key for key in figures if raw_stream(key.stream) == raw),
                          key=lambda key: (subjects.index(key.subject), streams.index(key.stream))):
            label = key.subject if key.stream == raw else f"{key.subject}, {key.stream}"
            ticks.append((position, label))
            bars.append((position, figures[key], key.subject == LIBRARY))
            position += 1
        position += 0.6
    return ticks, bars, position


def growth_plot(quantity, series):
    """The script for the curves of one quantity, or None."""
    panels = {}
    for (subject, figure, unit), figures in series.items():
        if figure not in (CPU_TIME, "instructions") or len(figures) < 2:
            continue
        measure, _, per = unit.partition("/")
        title = f"{subject}, per {per}" if per else subject
        panels.setdefault((figure, measure), []).append((title, figures))
    if not panels:
        return None
    # Each panel is as high as its legend needs.
    heights = [270 + 19 * len(curves) for curves in panels.values()]
    values = sorted({value for curves in panels.values() for _, figures in curves
                     for value in figures})
    lines = terminal(760, sum(heights)) + growth_axes(quantity, values)
    for index, ((figure, measure), curves) in enumerate(panels.items()):
        below = sum(heights[index + 1:])
        lines += [f"set origin 0,{below / sum(heights)}",
                  f"set size 1,{heights[index] / sum(heights)}",
                  *growth_panel(index, headed(figure, measure), curves)]
    lines.append("unset multiplot")
    return "\n".join(lines) + "\n"


def growth_axes(quantity, values):
    """What all panels of a quantity share."""
    is_wide = values[-1] / max(values[0], 1) >= 50
    return ["set multiplot",
            "set lmargin 13",
            *(["set logscale x", f"set xrange [{values[0] / 1.15}:{values[-1] * 1.15}]"] if is_wide
              else [f"set xrange [0:{values[-1] * 1.03}]"]),
            "set xtics (" + ", ".join(f'"{value}" {value}' for value in values) + ")",
            f'set grid linetype 1 linecolor rgb "{GRID}"',
            "set key bmargin left Left reverse vertical maxcols 1 samplen 2"
            f' textcolor rgb "{INK}"',
            f"set xlabel {quoted(QUANTITIES.get(quantity, quantity))} offset 0,0.4"
            f" textcolor rgb '{INK}'",
            "set bars 0.4"]


def growth_panel(panel, label, curves):
    medians = [point.median for _, figures in curves for point in figures.values()]
    # From zero where the curves are close to each other, which shows the growth in proportion.
    spread = max(medians) / min(medians) if min(medians) > 0 else 1
    lines = ["set logscale y" if spread > 40 else "unset logscale y",
             "set yrange [*:*]" if spread > 40 else "set yrange [0:*]",
             f"set ylabel {quoted(label)} textcolor rgb '{INK}'"]
    for index, (_, figures) in enumerate(curves):
        lines += block(f"curve{panel}x{index}",
                       [(value, figures[value].median, figures[value].low, figures[value].high)
                        for value in sorted(figures)])
    lines.append("plot " + ", ".join(
        f"$curve{panel}x{index} using 1:2:3:4 with yerrorlines linewidth 1.4"
        f" pointtype 7 pointsize 0.5 linecolor rgb '{COLOURS[index % len(COLOURS)]}'"
        f" dashtype {1 + index // len(COLOURS)} title {quoted(title)}"
        for index, (title, _) in enumerate(curves)))
    return lines
