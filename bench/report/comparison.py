"""What the report compares: the readers, the streams they read, and the ratios of their times."""
from results import Key

LIBRARY = "library"
BARE_LOOP = "bare loop"
EMPTY_SHAPE = "empty Qt shape"
TRIGGERHAPPY = "triggerhappy"
QT_HANDLER = "Qt evdev keyboard"
# In the order of the report.
SUBJECTS = [BARE_LOOP, "libevdev loop", EMPTY_SHAPE, TRIGGERHAPPY, "interception-tools", QT_HANDLER,
            LIBRARY]

STREAMS = ["clicks", "unmapped", "immediate", "deferred", "chords", "held", "switches"]
LIBRARY_STREAMS = STREAMS[1:]
# The library's three names for the same clicks: what it makes of them depends on its registrations.
RAW_STREAMS = {"unmapped": "clicks", "immediate": "clicks", "deferred": "clicks"}

CPU_TIME = "CPU time"
# The parameter of the library as a product runs it.
IN_SERVICE = "logging off"


def raw_stream(stream):
    """The records that are fed for a stream."""
    return RAW_STREAMS.get(stream, stream)


def cpu_time(results, subject, stream, burst):
    """The median CPU time of a subject per record of a stream; None if it was not measured."""
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


def ordered(values, known):
    """The values in @p known first, in its order, then the others in theirs."""
    found = list(dict.fromkeys(values))
    return ([value for value in known if value in found]
            + [value for value in found if value not in known])
