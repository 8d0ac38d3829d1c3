#!/usr/bin/env python3
"""Runs programs in a virtual machine whose input devices belong to the tests.

  guest.py start ARCHITECTURE FOLDER SHARED ...  boots a guest and waits until it is ready
  guest.py run FOLDER COMMAND [ARGUMENT ...]     runs a command in it, with its output and status
  guest.py stop FOLDER                           shuts it down

ARCHITECTURE is x86_64 or armhf. FOLDER keeps what belongs to the guest: its serial log, and the
output of each command. The SHARED folders are those of the sources and the build, which the guest
sees read-only and under the same paths. The commands of a guest run one after the other.

Where a guest cannot be had on this machine, all three say "SKIPPED: why" and end with status 77.
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

# A guest that nobody stops ends by itself after so many seconds.
GUEST_LIFETIME = 900
# So long may it take until a guest is ready; it is some ten seconds on a machine that is not busy.
BOOT_LIMIT = 180
# What a single command may take, unless the environment says otherwise.
COMMAND_LIMIT = int(os.environ.get("VORN_VM_COMMAND_LIMIT", "100"))
# Whether a nanosecond of the guest is an instruction, and a wait takes no time: figures that come
# out the same on every machine, however busy. Only for a guest with one processor.
COUNT_INSTRUCTIONS = bool(os.environ.get("VORN_VM_COUNT_INSTRUCTIONS"))
SKIPPED = 77

SCRIPTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "guest")


class Failure(Exception):
    """Something that did not work; its text is for the user."""


class Skip(Exception):
    """Something that cannot work on this machine; its text says why."""


def script(*arguments):
    """What one of the scripts in the folder "guest" prints."""
    path = os.path.join(SCRIPTS, arguments[0])
    result = subprocess.run([path, *arguments[1:]], stdout=subprocess.PIPE, text=True)
    if result.returncode != 0:
        raise Failure(f"{arguments[0]} failed")
    return result.stdout.strip()


def share(name, path, device, writable=False):
    """Arguments of QEMU for a folder of the host that the guest can mount."""
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
    """QEMU's arguments for a 32-bit ARM board. A second processor would make it slower."""
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
    """Those of the folders that lie in none of the others."""
    paths = sorted({os.path.abspath(folder) for folder in folders})
    return [path for path in paths
            if not any(path.startswith(other.rstrip("/") + "/") for other in paths)]


def qemu_arguments(architecture, folder, shared, sockets):
    """The whole command line of a guest."""
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
        # The commands that are run come through one port. Another hands QEMU's own monitor to the
        # guest, so that a test can plug emulated hardware and press its keys.
        "-chardev", f"socket,id=agent,path={sockets}/agent,server=on,wait=off",
        "-device", "virtserialport,chardev=agent,name=agent",
        "-qmp", f"unix:{sockets}/monitor,server=on,wait=off",
        "-chardev", f"socket,id=monitor,path={sockets}/monitor",
        "-device", "virtserialport,chardev=monitor,name=monitor",
    ]


class Agent:
    """The connection to the guest's end of the port "agent"."""

    def __init__(self, sockets):
        self.socket = socket.socket(socket.AF_UNIX)
        try:
            self.socket.connect(os.path.join(sockets, "agent"))
        except OSError as error:
            raise Failure(f"the guest has ended ({error.strerror})") from error
        self.received = b""

    def send(self, line):
        """Sends a line to the guest."""
        try:
            self.socket.sendall(line.encode() + b"\n")
        except OSError as error:
            raise Failure(f"the guest has ended ({error.strerror})") from error

    def receive(self, seconds):
        """The next line, or None when none comes in time."""
        end = time.monotonic() + seconds
        while b"\n" not in self.received:
            self.socket.settimeout(max(0.01, end - time.monotonic()))
            try:
                data = self.socket.recv(4096)
            except TimeoutError:
                return None
            except OSError as error:
                raise Failure(f"the guest has ended ({error.strerror})") from error
            if not data:
                raise Failure("the guest has ended")
            self.received += data
        line, self.received = self.received.split(b"\n", 1)
        return line.decode(errors="replace").strip()


def serial_log(folder, start=0):
    """What the guest's kernel and first process wrote, from an offset on."""
    with contextlib.suppress(OSError):
        with open(os.path.join(folder, "serial.log"), errors="replace", newline="\n") as log:
            log.seek(start)
            return "".join(line for line in log if line.strip())
    return ""


def is_alive(process):
    """Whether a process is still there and no zombie."""
    try:
        with open(f"/proc/{process}/stat") as stat:
            return stat.read().rsplit(")", 1)[1].split()[0] != "Z"
    except OSError:
        return False


def read_state(folder):
    """What start() left for run() and stop()."""
    try:
        with open(os.path.join(folder, "state.json")) as file:
            state = json.load(file)
    except OSError as error:
        raise Failure(f"no guest was started in {folder}") from error
    if "skipped" in state:
        raise Skip(state["skipped"])
    return state


def write_state(folder, state):
    """Leaves a note for run() and stop()."""
    path = os.path.join(folder, "state.json")
    with open(path + ".new", "w") as file:
        json.dump(state, file)
    os.replace(path + ".new", path)


def check_tools(architecture):
    """Skips where a program that a guest needs is missing."""
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
    """Ends a guest's process group and waits so long for that."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        with contextlib.suppress(OSError):
            os.killpg(process, number)
        end = time.monotonic() + seconds
        while is_alive(process) and time.monotonic() < end:
            time.sleep(0.05)


def remove_guest(folder):
    """Ends a guest that an earlier run left behind."""
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

    # Not in the folder: a socket's path must be short.
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
                raise Failure("QEMU has ended")
            # Not yet there, or there and not yet listening.
            with contextlib.suppress(Failure):
                agent = Agent(sockets)
            time.sleep(0.05)
        while True:
            # A guest that is not yet there may lose what it is sent.
            agent.send("hello")
            answer = agent.receive(2)
            if answer == "ready":
                break
            if answer:
                raise Failure("the guest does not see all of its folders")
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
                    raise Failure("the guest does not answer any more")
                # Answers to someone who did not wait for them come as well.
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
            print("--- the guest's serial log meanwhile")
            print(serial_log(folder, serial_start))
        return status


def show_output(path):
    """Prints the output of a command."""
    with contextlib.suppress(OSError):
        with open(path, errors="replace") as file:
            print(file.read(), end="")


def stop(folder):
    """Shuts the guest down. One that had ended before is a failure."""
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
        raise Failure("the guest did not shut down by itself")


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
            print("guest.py: expected start, run or stop, with what it needs (see --help)",
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
