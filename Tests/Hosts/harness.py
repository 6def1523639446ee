# SPDX-License-Identifier: LicenseRef-Halyard
"""What every host's script needs: a place of its own, programs with a time limit, sounds to compare, checks.

A host runs with a home, a configuration and a cache in a folder of its own, so that nothing of the user's is read or
changed, and on a display of its own. Whatever goes wrong ends in a HostFailure that tells which step it was.
"""
import contextlib
import os
import pathlib
import signal
import subprocess
import time

import numpy
import soundfile

LATENCY_FRAMES = 1667


class HostFailure(Exception):
    """A host did not do what was asked; the text tells the step, and the end of what the host printed."""


class HostCrash(HostFailure):
    """A host was ended by a signal that nobody sent."""


def check(what, is_true, seen=""):
    """One line per fact that was looked at; the first that is wrong ends the host's test."""
    if not is_true:
        raise HostFailure(f"{what}: not so{f' ({seen})' if str(seen) else ''}")
    print(f"  ok  {what}{f': {seen}' if str(seen) else ''}", flush=True)


def check_same_values(what, seen, expected):
    check(what, seen == expected, ", ".join(f"{name} {value:g}" for name, value in seen.items()))


class Place:
    """The folder of one host's run: home, plug-in folder and sounds. Stays behind when a test fails."""

    def __init__(self, folder, plugin, halyard):
        self.folder = pathlib.Path(folder)
        self.plugins = self.make("plugins")
        self.plugin = self.plugins / "halyard.so"
        self.halyard = halyard
        os.symlink(pathlib.Path(plugin).resolve(), self.plugin)
        home = self.make("home")
        self.config = self.make("home/.config")
        self.cache = self.make("home/.cache")
        self.environment = {name: os.environ[name] for name in ("PATH", "LANG", "DISPLAY") if name in os.environ} | {
            "HOME": str(home),
            "XDG_CONFIG_HOME": str(self.config),
            "XDG_CACHE_HOME": str(self.cache),
            "XDG_DATA_HOME": str(self.make("home/.local/share")),
            "XDG_STATE_HOME": str(self.make("home/.local/state")),
            "XDG_RUNTIME_DIR": str(self.make("runtime")),
            "TMPDIR": str(self.make("tmp")),
            "VST_PATH": str(self.plugins),
            "LXVST_PATH": str(self.plugins),
        }

    def make(self, name):
        folder = self.folder / name
        folder.mkdir(mode=0o700, parents=True, exist_ok=True)
        return folder

    def start(self, step, command, **environment):
        """Starts a program in a process group of its own; what it prints goes to STEP.log."""
        with open(self.folder / f"{step}.log", "w", encoding="utf-8") as log:
            return subprocess.Popen(list(map(str, command)), env=self.environment | environment, cwd=self.folder,
                                    stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT,
                                    start_new_session=True)

    def finish(self, step, process, seconds):
        """Waits for a program that start() began, and ends it when its time is over. Result: what it printed."""
        try:
            status = process.wait(seconds)
        except subprocess.TimeoutExpired:
            end(process)
            raise self.failure(step, f"did not end within {seconds} s") from None
        if status:
            raise self.ended(step, status)
        return self.log(step)

    def run(self, step, command, seconds=60, **environment):
        return self.finish(step, self.start(step, command, **environment), seconds)

    def log(self, step):
        return (self.folder / f"{step}.log").read_text(encoding="utf-8", errors="replace")

    def ended(self, step, status):
        if status < 0:
            return self.failure(step, f"ended by {signal.Signals(-status).name}", HostCrash)
        return self.failure(step, f"ended with status {status}")

    def failure(self, step, reason, kind=HostFailure):
        last_lines = "".join(f"\n    | {line}" for line in self.log(step).splitlines()[-15:])
        return kind(f"step '{step}' {reason}; see {self.folder}/{step}.log, which ends with{last_lines}")

    def music(self):
        """Ten seconds of stereo at 48 kHz as 32-bit float, so that neither a host nor the tool rounds or dithers it."""
        path = self.folder / "music.wav"
        if not path.exists():
            self.run("demo-signal", [self.halyard, "demo-signal", path])
            samples, rate = soundfile.read(path, dtype="float32")
            soundfile.write(path, samples, rate, subtype="FLOAT")
        return path

    def rendered(self, name, *settings):
        path = self.folder / f"{name}.wav"
        self.run(name, [self.halyard, "render", self.music(), path, "--format", "float", "--force", *settings])
        return path


@contextlib.contextmanager
def display(folder):
    """A display server of our own, on the first free number, while the block runs."""
    read_end, write_end = os.pipe()
    with open(folder / "display.log", "w", encoding="utf-8") as log:
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
            pass_fds=[write_end], stdout=log, stderr=log, start_new_session=True)
    os.close(write_end)
    try:
        with open(read_end, encoding="ascii") as answer:
            number = answer.readline().strip()  # empty if the server has ended
        if not number:
            raise HostFailure(f"Xvfb does not start; see {folder}/display.log")
        os.environ["DISPLAY"] = f":{number}"
        yield
    finally:
        end(server)


def end(process):
    """Ends a program and all that it started."""
    for which in (signal.SIGTERM, signal.SIGKILL):
        try:
            os.killpg(process.pid, which)
            process.wait(5)
        except (ProcessLookupError, subprocess.TimeoutExpired):
            continue


def wait_for(place, step, process, seconds, is_there):
    """Looks ten times a second until is_there() gives something, which is the result."""
    limit = time.monotonic() + seconds
    while time.monotonic() < limit:
        if found := is_there():
            return found
        if process.poll() is not None:
            raise place.ended(step, process.returncode)
        time.sleep(0.1)
    raise place.failure(step, f"did not get ready within {seconds} s")


def check_same_sound(what, path, expected_path):
    """The same length, and no sample further from the other's than one step of 32-bit float at the peak: where the host
    begins its blocks moves the grid of the clipper's transforms, which changes the sound by about 1e-10 before it is
    rounded."""
    sound, rate = soundfile.read(path)
    expected, expected_rate = soundfile.read(expected_path)
    form, expected_form = (f"{samples.shape[0]} frames, {samples.shape[1]} channels, {hertz} Hz"
                           for samples, hertz in ((sound, rate), (expected, expected_rate)))
    if form != expected_form:
        raise HostFailure(f"{what}: {form}, not {expected_form}")
    error, peak = numpy.abs(sound - expected).max(), numpy.abs(expected).max()
    check(what, error <= numpy.spacing(numpy.float32(peak)), f"largest difference {error:.2g}, peak {peak:.4f}")
