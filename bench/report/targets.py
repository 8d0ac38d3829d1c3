"""The performance targets: how the library's CPU time must compare with that of other readers."""
import collections

from comparison import (BARE_LOOP, EMPTY_SHAPE, LIBRARY, LIBRARY_STREAMS, QT_HANDLER, TRIGGERHAPPY,
                        ratio)

# The ratio of dividend and divisor must be at least or at most the limit.
Target = collections.namedtuple("Target", "burst stream dividend divisor limit is_least")


def targets():
    result = []
    for stream, limit in (("unmapped", 1.5), ("immediate", 3), ("deferred", 4), ("chords", 4)):
        result.append(Target(42, stream, LIBRARY, EMPTY_SHAPE, limit, False))
    for peer in (TRIGGERHAPPY, QT_HANDLER):
        for stream in LIBRARY_STREAMS:
            # Qt's handler drops switch records unread, so there is nothing to compare.
            if peer != QT_HANDLER or stream != "switches":
                result.append(Target(42, stream, peer, LIBRARY, 2, True))
    for stream in LIBRARY_STREAMS:
        limit = 1.3 if stream in ("unmapped", "immediate") else 1.5
        result.append(Target(2, stream, LIBRARY, BARE_LOOP, limit, False))
    return result


def judged(results):
    """Rows of ratio, stream, burst, target, measured value and verdict."""
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
