#!/usr/bin/env python3
"""Runs programs in a virtual machine whose input devices belong to the tests.

  guest.py start ARCHITECTURE FOLDER SHARED ...  boots a guest and waits until it is ready
  guest.py run FOLDER COMMAND [ARGUMENT ...]     runs a command in it; passes on output and status
  guest.py stop FOLDER                           shuts it down

ARCHITECTURE is x86_64 or armhf. FOLDER keeps the guest's files: its serial log and the output of
each command. The SHARED folders, those of the sources and the build, are read-only in the guest and
have the same paths there. A guest runs one command at a time.

If this machine cannot run a guest, all three print "SKIPPED: reason" and exit with status 77.
"""

import contextlib
import fcntl
import json
import os
import shlex
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

# Seconds after which a guest that nobody stops is ended.
GUEST_LIFETIME = 900
# Seconds until a guest must be ready; about ten are enough on an idle machine.
BOOT_LIMIT = 180
# Seconds that a command may take.
COMMAND_LIMIT = int(os.environ.get("VORN_VM_COMMAND_LIMIT", "100"))
# Whether each instruction takes one nanosecond of guest time and waiting takes none, so that
# measurements do not depend on the machine or its load. Only for guests with one processor.
COUNT_INSTRUCTIONS = bool(os.environ.get("VORN_VM_COUNT_INSTRUCTIONS"))
SKIPPED = 77

SCRIPTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "guest")


class Failure(Exception):
    """An error; its text is for the user."""


class Skip(Exception):
    """This machine cannot run a guest; the text says why."""


def script(*arguments):
    """Runs a script of the folder "guest" and returns its output."""
    path = os.path.join(SCRIPTS, arguments[0])
    result = subprocess.run([path, *arguments[1:]], stdout=subprocess.PIPE, text=True)
    if result.returncode != 0:
        raise Failure(f"{arguments[0]} failed")
    return result.stdout.strip()


def share(name, path, device, writable=False):
    """QEMU's arguments for a folder of the host that the guest can mount."""
    access = "" if writable else ",readonly=on"
    return [
        "-fsdev", f"local,id={name},path={path.replace(',', ',,')},security_model=none"
                  f",multidevs=remap{access}",
        "-device", f"{device},fsdev={name},mount_tag={name}",
    ]


def x86_64(kernel, initramfs, folder):
    """QEMU's arguments for a PC."""
    table = os.path.join(folder, "keys.aml")
    script("make-acpi-table.sh", table)
    return [
        "qemu-system-x86_64", "-M", "q35,i8042=off", "-cpu", "max", "-smp", "2", "-m", "512",
        "-kernel", kernel, "-initrd", initramfs,
        "-append", "console=ttyS0 quiet panic=-1 mitigations=off tsc=reliable no_timer_check "
                   "random.trust_cpu=on memmap=4K$0x10000000",
        "-acpitable", "file=" + table.replace(",", ",,"),
        "-device", "virtio-serial-pci",
    ]


def armhf(kernel, initramfs, folder):
    """QEMU's arguments for a 32-bit ARM board. A second processor would slow it down."""
    tree = os.path.join(folder, "board.dtb")
    script("make-device-tree.sh", tree)
    return [
        "qemu-system-arm", "-M", "virt,highmem=off", "-cpu", "cortex-a7", "-smp", "1", "-m", "256",
        "-kernel", kernel, "-initrd", initramfs, "-dtb", tree,
        "-append", "console=ttyAMA0 quiet panic=-1",
        "-global", "virtio-mmio.force-legacy=false",
        "-device", "virtio-serial-device",
    ]


MACHINES = {"x86_64": x86_64, "armhf": armhf}


def outermost(folders):
    """The folders that are not inside another one of them."""
    paths = sorted({os.path.abspath(folder) for folder in folders})
    return [path for path in paths
            if not any(path.startswith(other.rstrip("/") + "/") for other in paths)]


def qemu_arguments(architecture, folder, shared, sockets):
    """The complete QEMU command line of a guest."""
    kernel = script("fetch-kernel.sh", architecture)
    if architecture == "x86_64":
        sysroot, busybox, share_device = "/", shutil.which("busybox"), "virtio-9p-pci"
    else:
        sysroot = script("../../../scripts/make-sysroot.sh")
        busybox, share_device = sysroot + "/bin/busybox", "virtio-9p-device"
    initramfs = os.path.join(folder, "initramfs.cpio")
    script("make-initramfs.sh", kernel, busybox, initramfs)

    return MACHINES[architecture](os.path.join(kernel, "kernel"), initramfs, folder) + [
        "-accel", "tcg", "-nodefaults", "-no-user-config", "-display", "none", "-no-reboot",
        *(["-icount", "shift=0,sleep=off"] if COUNT_INSTRUCTIONS else []),
        "-serial", "file:" + os.path.join(folder, "serial.log"),
        *share("sysroot", sysroot, share_device),
        *(argument for number, path in enumerate(shared)
          for argument in share(f"shared{number}", path, share_device)),
        *share("out", os.path.join(folder, "out"), share_device, writable=True),
        "-device", "qemu-xhci,id=xhci",
        # One port carries the commands to run. The other gives the guest access to QEMU's monitor,
        # so that tests can plug in emulated hardware and press its keys.
        "-chardev", f"socket,id=agent,path={sockets}/agent,server=on,wait=off",
        "-device", "virtserialport,chardev=agent,name=agent",
        "-qmp", f"unix:{sockets}/monitor,server=on,wait=off",
        "-chardev", f"socket,id=monitor,path={sockets}/monitor",
        "-device", "virtserialport,chardev=monitor,name=monitor",
    ]


class Agent:
    """A connection to the port "agent", which the guest's init serves."""

    def __init__(self, sockets):
        self.socket = socket.socket(socket.AF_UNIX)
        try:
            self.socket.connect(os.path.join(sockets, "agent"))
        except OSError as error:
            raise Failure(f"the guest is gone ({error.strerror})") from error
        self.received = b""

    def send(self, line):
        """Sends a line to the guest."""
        try:
            self.socket.sendall(line.encode() + b"\n")
        except OSError as error:
            raise Failure(f"the guest is gone ({error.strerror})") from error

    def receive(self, seconds):
        """Returns the next line, or None if none arrives in time."""
        end = time.monotonic() + seconds
        while b"\n" not in self.received:
            self.socket.settimeout(max(0.01, end - time.monotonic()))
            try:
                data = self.socket.recv(4096)
            except TimeoutError:
                return None
            except OSError as error:
                raise Failure(f"the guest is gone ({error.strerror})") from error
            if not data:
                raise Failure("the guest is gone")
            self.received += data
        line, self.received = self.received.split(b"\n", 1)
        return line.decode(errors="replace").strip()


def serial_log(folder, start=0):
    """Output of the guest's kernel and init, from an offset."""
    with contextlib.suppress(OSError):
        with open(os.path.join(folder, "serial.log"), errors="replace", newline="\n") as log:
            log.seek(start)
            return "".join(line for line in log if line.strip())
    return ""


def is_alive(process):
    """Whether a process exists and is not a zombie."""
    try:
        with open(f"/proc/{process}/stat") as stat:
            return stat.read().rsplit(")", 1)[1].split()[0] != "Z"
    except OSError:
        return False


def read_state(folder):
    """Reads the state that start() left for run() and stop()."""
    try:
        with open(os.path.join(folder, "state.json")) as file:
            state = json.load(file)
    except OSError as error:
        raise Failure(f"no guest was started in {folder}") from error
    if "skipped" in state:
        raise Skip(state["skipped"])
    return state


def write_state(folder, state):
    """Leaves the state for run() and stop()."""
    path = os.path.join(folder, "state.json")
    with open(path + ".new", "w") as file:
        json.dump(state, file)
    os.replace(path + ".new", path)


def check_tools(architecture):
    """Raises Skip if a program that a guest needs is missing."""
    needed = {"busybox": "busybox-static", "cpio": "cpio"}
    if architecture == "x86_64":
        needed["qemu-system-x86_64"] = "qemu-system-x86"
        needed["iasl"] = "acpica-tools"
    else:
        needed["qemu-system-arm"] = "qemu-system-arm"
        needed["fdtput"] = "device-tree-compiler"
    for program, package in needed.items():
        if not shutil.which(program):
            raise Skip(f"no {program} here (Debian package {package})")


def end_process(process, seconds):
    """Kills a guest's process group and waits until it is gone, at most this long per signal."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        with contextlib.suppress(OSError):
            os.killpg(process, number)
        end = time.monotonic() + seconds
        while is_alive(process) and time.monotonic() < end:
            time.sleep(0.05)


def remove_guest(folder):
    """Kills a guest that an earlier run left behind."""
    with contextlib.suppress(Failure, Skip):
        state = read_state(folder)
        if is_alive(state["process"]):
            end_process(state["process"], 5)
        shutil.rmtree(state["sockets"], ignore_errors=True)


def start(architecture, folder, shared):
    """Boots a guest and waits until it is ready for commands."""
    if architecture not in MACHINES:
        raise Failure(f"unknown architecture '{architecture}' (see --help)")
    folder, shared = os.path.abspath(folder), outermost(shared)
    remove_guest(folder)
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(os.path.join(folder, "out"))
    try:
        check_tools(architecture)
    except Skip as reason:
        write_state(folder, {"skipped": str(reason)})
        raise
    with open(os.path.join(folder, "out", "shared"), "w") as file:
        file.writelines(path + "\n" for path in shared)

    # Not in the folder: the path of a socket has to be short.
    sockets = tempfile.mkdtemp(prefix="vorn-vm-")
    command = qemu_arguments(architecture, folder, shared, sockets)
    with open(os.path.join(folder, "qemu.log"), "w") as log:
        process = subprocess.Popen(
            ["timeout", "--kill-after=10", str(GUEST_LIFETIME), *command],
            stdin=subprocess.DEVNULL, stdout=log, stderr=log, start_new_session=True)
    write_state(folder, {"process": process.pid, "sockets": sockets})

    begin = time.monotonic()
    try:
        agent = None
        while not agent:
            if process.poll() is not None:
                raise Failure("QEMU has exited")
            # The socket may not exist yet, or QEMU may not be listening yet.
            with contextlib.suppress(Failure):
                agent = Agent(sockets)
            time.sleep(0.05)
        while True:
            # What is sent before init listens may be lost, so repeat it.
            agent.send("hello")
            answer = agent.receive(2)
            if answer == "ready":
                break
            if answer:
                raise Failure("the guest could not mount all of its folders")
            if time.monotonic() > begin + BOOT_LIMIT:
                raise Failure(f"the guest was not ready within {BOOT_LIMIT} s")
    except Failure:
        with open(os.path.join(folder, "qemu.log")) as log:
            sys.stderr.write(log.read())
        sys.stderr.write(serial_log(folder))
        end_process(process.pid, 5)
        raise
    print(f"ready after {time.monotonic() - begin:.1f} s")


def run(folder, command):
    """Runs a command in the guest; returns its status."""
    folder = os.path.abspath(folder)
    state = read_state(folder)
    with open(os.path.join(folder, "lock"), "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        serial_start = os.path.getsize(os.path.join(folder, "serial.log"))
        identity = f"{time.time_ns():x}"
        out = os.path.join(folder, "out", identity)
        with open(out + ".sh", "w") as file:
            file.write(f"exec {shlex.join(command)}\n")
        try:
            agent = Agent(state["sockets"])
            agent.send(f"run {identity} {COMMAND_LIMIT}")
            end = time.monotonic() + COMMAND_LIMIT + 15
            status = None
            while status is None:
                line = agent.receive(max(0, end - time.monotonic()))
                if line is None:
                    raise Failure("the guest no longer answers")
                # Answers to a caller that gave up waiting arrive here as well.
                words = line.split()
                if words[:2] == ["exit", identity]:
                    status = int(words[2])
        except Failure as failure:
            show_output(out + ".log")
            print("--- the guest's serial log")
            print(serial_log(folder))
            raise failure
        show_output(out + ".log")
        if status != 0:
            print(f"--- status {status}" + (
                f", not finished within {COMMAND_LIMIT} s" if status in (137, 143) else ""))
            print("--- the guest's serial log during the command")
            print(serial_log(folder, serial_start))
        return status


def show_output(path):
    """Prints the output of a command."""
    with contextlib.suppress(OSError):
        with open(path, errors="replace") as file:
            print(file.read(), end="")


def stop(folder):
    """Shuts the guest down; fails if it is already gone."""
    folder = os.path.abspath(folder)
    state = read_state(folder)
    process = state["process"]
    try:
        Agent(state["sockets"]).send("stop")
    finally:
        end = time.monotonic() + 20
        while is_alive(process) and time.monotonic() < end:
            time.sleep(0.05)
        ended = not is_alive(process)
        if not ended:
            end_process(process, 5)
        shutil.rmtree(state["sockets"], ignore_errors=True)
    if not ended:
        print(serial_log(folder))
        raise Failure("the guest did not shut down")


def main(arguments):
    """Returns the exit status."""
    if arguments[:1] == ["--help"]:
        print(__doc__.strip())
        return 0
    try:
        if arguments[:1] == ["start"] and len(arguments) >= 4:
            start(arguments[1], arguments[2], arguments[3:])
        elif arguments[:1] == ["run"] and len(arguments) >= 3:
            return run(arguments[1], arguments[2:])
        elif arguments[:1] == ["stop"] and len(arguments) == 2:
            stop(arguments[1])
        else:
            print("guest.py: expected start, run or stop, with their arguments (see --help)",
                  file=sys.stderr)
            return 2
    except Skip as reason:
        print(f"SKIPPED: {reason}")
        return SKIPPED
    except Failure as failure:
        print(f"guest.py: {failure}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
