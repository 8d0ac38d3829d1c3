"""The readers that are measured, and one measurement of one of them."""
import json
import os
import re
import subprocess
import time
from pathlib import Path

RAW_STREAMS = ["clicks", "chords", "held", "switches"]
# The library's streams, each with the raw one it is fed; its registrations make the difference.
STREAMS = {"unmapped": "clicks", "immediate": "clicks", "deferred": "clicks", "chords": "chords",
           "held": "held", "switches": "switches"}
# The most that one read of the library takes on a 64-bit machine, and one press with its SYN_REPORT.
BURSTS = [42, 2]


class Bench:
    """The programs of a build, and how to run them."""

    def __init__(self, build, peers, scratch):
        self.folder = Path(build).resolve() / "bench" / "path"
        self.scratch = Path(scratch)
        self.node = self.folder / "libvorn_bench_node.so"
        self.allocations = self.folder / "libvorn_bench_allocations.so"
        # A trigger on a key that is never pressed, so that the daemon starts nothing.
        trigger = self.scratch / "one.conf"
        trigger.write_text("KEY_MUTE 1 /bin/true\n")
        self.peers = {
            "bare loop": [self.program("bare_loop")],
            "libevdev loop": [self.program("libevdev_loop")],
            "empty Qt shape": [self.program("empty_qt")],
            "Qt evdev keyboard": [self.program("qt_evdev")],
        }
        if peers:
            peers = Path(peers).resolve()
            self.peers["triggerhappy"] = [str(peers / "usr/sbin/thd"), "--triggers", str(trigger),
                                          "/dev/input/event0"]
            self.peers["interception-tools"] = [str(peers / "usr/bin/interception"),
                                                "/dev/input/event0"]

    def program(self, name):
        return str(self.folder / f"vorn_bench_{name}")

    def library(self, stream, *options):
        return [self.program("library"), stream, *options]

    def feed(self, command, stream, burst, records, preload=(), options=()):
        """The feeder's figures for one run."""
        arguments = [self.program("feeder"), "--stream", stream, "--burst", str(burst),
                     "--records", str(records), *options]
        for library in [self.node, *preload]:
            arguments += ["--preload", str(library)]
        result = subprocess.run([*arguments, "--", *command], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True, env=environment())
        if result.returncode != 0:
            raise SystemExit(f"bench/path: {result.stderr.strip()}")
        return json.loads(result.stdout)

    def nanoseconds(self, command, stream, burst, records, options=()):
        """CPU time per record."""
        run = self.feed(command, stream, burst, records, options=options)
        return run["nanoseconds"] / run["records"]

    def allocated(self, command, stream, burst, options=()):
        """Allocations per record."""
        run = self.feed(command, stream, burst, 100 * burst, [self.allocations], options)
        return run["allocations"] / run["records"]

    def instructions(self, command, stream, burst, options=()):
        """Instructions per record: the difference of two runs, which leaves out the start."""
        output = self.scratch / "callgrind.out"
        bursts = [100, 300]
        totals = []
        for number in bursts:
            output.unlink(missing_ok=True)
            self.feed(["valgrind", "--tool=callgrind", "--quiet",
                       f"--callgrind-out-file={output}", *command], stream, burst,
                      number * burst, options=["--warm-up", str(10 * burst), *options])
            totals.append(int(re.search(r"^(?:totals|summary): (\d+)", output.read_text(),
                                        re.MULTILINE).group(1)))
        return (totals[1] - totals[0]) / ((bursts[1] - bursts[0]) * burst)

    def system_calls(self, command, stream, burst, options=()):
        """System calls per burst, by name; the difference of two runs as well."""
        output = self.scratch / "strace.out"
        bursts = [100, 300]
        counts = []
        for number in bursts:
            output.unlink(missing_ok=True)
            # -D makes the tracer a grandchild: the feeder's child must be the subject.
            self.feed(["strace", "-D", "-f", "-c", "-o", str(output), *command], stream, burst,
                      number * burst, options=["--warm-up", str(10 * burst), *options])
            counts.append(count_calls(output))
        return {name: (counts[1].get(name, 0) - counts[0].get(name, 0)) / (bursts[1] - bursts[0])
                for name in counts[1]}


def environment():
    """A fixed environment: its size and contents change a program's instruction count."""
    kept = {name: os.environ[name] for name in ("PATH", "HOME", "QT_NO_GLIB") if name in os.environ}
    # Without a fixed seed, Qt salts its hash tables.
    return {**kept, "LC_ALL": "C.UTF-8", "QT_HASH_SEED": "0"}


def count_calls(table):
    """The counts in strace's table, once it is complete."""
    # The tracer writes it after its subject has ended, and nobody waits for the tracer.
    for _ in range(100):
        if table.exists() and "total" in table.read_text():
            break
        time.sleep(0.05)
    else:
        raise SystemExit("bench/path: strace counted nothing; is tracing allowed here?")
    calls = {}
    for line in table.read_text().splitlines():
        fields = line.split()
        if len(fields) >= 5 and fields[0][0].isdigit():
            calls[fields[-1]] = int(fields[3])
    return calls
