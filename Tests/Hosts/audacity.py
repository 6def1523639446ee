# SPDX-License-Identifier: LicenseRef-Halyard
"""Audacity: its scan at the first start, then commands over its scripting pipe."""
import contextlib
import errno
import os
import pathlib
import re
import time

from harness import HostFailure, check, check_same_sound, end, wait_for

MODULE = pathlib.Path("/usr/lib/audacity/modules/mod-script-pipe.so")
# The pipes' names are the same for all of a user's Audacity programs.
TO_HOST = pathlib.Path(f"/tmp/audacity_script_pipe.to.{os.getuid()}")
FROM_HOST = pathlib.Path(f"/tmp/audacity_script_pipe.from.{os.getuid()}")
END_OF_ANSWER = r"BatchCommand finished: (.*)\n\n"
FLOAT_WAV = 0x10006  # how libsndfile numbers the format

# Without the version and the module's date the program takes the settings for an old release's and drops them.
SETTINGS = """\
PrefsVersion=1.1.1r1
NewPrefsInitialized=1
[Version]
Major={major}
Minor={minor}
Micro={micro}
[GUI]
ShowSplashScreen=0
[Module]
mod-script-pipe=1
[ModulePath]
mod-script-pipe={module}
[ModuleDateTime]
mod-script-pipe={module_date}
[Directories]
TempDir={temporary}
[SamplingRate]
DefaultProjectSampleRate=48000
[FileFormats]
ExportFormat_SF1={format}
[FileFormats/ExportFormat_SF1_Type]
WAV_10000={format}
"""


def write_settings(place):
    version = place.run("version", ["dpkg-query", "-W", "-f", "${Version}", "audacity"])
    major, minor, micro = re.match(r"(\d+)\.(\d+)\.(\d+)", version).groups()
    module_date = time.strftime("%Y-%m-%dT%H:%M:%S", time.localtime(MODULE.stat().st_mtime))
    place.make("home/.config/audacity").joinpath("audacity.cfg").write_text(SETTINGS.format(
        major=major, minor=minor, micro=micro, module=MODULE, module_date=module_date, format=FLOAT_WAV,
        temporary=place.make("project")), encoding="utf-8")


@contextlib.contextmanager
def pipes_of_our_own():
    """A user's own Audacity would lose its pipes, and might be driven in place of ours."""
    if pipe := open_commands():
        os.close(pipe)
        raise HostFailure(f"another Audacity listens at {TO_HOST}; close it and try again")
    try:
        yield
    finally:
        for path in (TO_HOST, FROM_HOST):
            path.unlink(missing_ok=True)


def scan(place):
    """The first start looks for plug-ins. Its pipes are of no use: the helper that loads plug-ins replaces them."""
    registry = place.config / "audacity/pluginregistry.cfg"
    projects = place.folder / "project"

    def entry():
        if not any(projects.iterdir()):
            return ""  # still at the plug-ins: the first project comes after them
        sections = registry.read_text(encoding="utf-8").split("\n[") if registry.exists() else []
        return next((section for section in sections if "\nName=Halyard\n" in section and "\nValid=1\n" in section), "")

    host = place.start("scan", ["audacity"])
    try:
        found = wait_for(place, "scan", host, 60, entry)
    finally:
        end(host)
    for unsaved in projects.iterdir():
        unsaved.unlink()
    check("scanned", "\nEffectFamily=VST\n" in found and "\nEnabled=1\n" in found)


class Session:
    """Audacity while the block runs, driven by commands over its pipe."""

    def __init__(self, place, step):
        self.place, self.step, self.tries, self.has_sound = place, step, 0, False

    def __enter__(self):
        self.host = self.place.start(self.step, ["audacity"])
        try:
            self.commands = wait_for(self.place, self.step, self.host, 60, open_commands)
            self.answers = os.open(FROM_HOST, os.O_RDONLY | os.O_NONBLOCK)
            wait_for(self.place, self.step, self.host, 60, self.is_ready)
        except BaseException:
            end(self.host)
            raise
        return self

    def __exit__(self, kind, failure, trace):
        try:
            if kind is None:
                # Unsaved, it would ask the user before it ends.
                self.command(f'SaveProject2: Filename="{self.place.folder / self.step}.aup3"')
                self.command("Exit:")
                self.place.finish(self.step, self.host, 30)
        finally:
            end(self.host)
            os.close(self.commands)
            os.close(self.answers)

    def is_ready(self):
        """A command that comes while the host still starts is lost; its answer is an empty line. So each try has a text
        of its own, which comes back in the answer to it and in no other."""
        self.tries += 1
        text = f"try {self.tries}"
        os.write(self.commands, f'Message: Text="{text}"\n'.encode())
        time.sleep(0.5)
        return re.search(f"{text}\n.*{END_OF_ANSWER}$", self.read(), re.DOTALL)

    def read(self):
        try:
            return os.read(self.answers, 1 << 16).decode()
        except BlockingIOError:
            return ""

    def command(self, text):
        """Result: what the host answers, with the line that tells of success."""
        os.write(self.commands, f"{text}\n".encode())
        return self.answer_to(text)

    def answer_to(self, text, seconds=60):
        answer = ""
        limit = time.monotonic() + seconds
        while not (ended := re.search(END_OF_ANSWER, answer)):
            if time.monotonic() > limit:
                raise self.place.failure(self.step, f"does not answer '{text}' within {seconds} s")
            if self.host.poll() is not None:
                raise self.place.ended(self.step, self.host.returncode)
            time.sleep(0.02)
            answer += self.read()
        if ended[1] != "OK":
            raise self.place.failure(self.step, f"answers '{answer.strip()}' to '{text}'")
        return answer

    def load_music(self):
        if self.has_sound:
            self.command("SelectAll:")
            self.command("RemoveTracks:")
        self.command(f'Import2: Filename="{self.place.music()}"')
        self.command("SelectAll:")
        self.has_sound = True

    def apply(self, preset=None):
        """The plug-in over all of the music: with a preset, or with the settings that the host has stored last."""
        self.command("Halyard:" + (f' Use_Preset="{preset}"' if preset else ""))

    def apply_by_hand(self, *keys):
        """Opens the plug-in's dialog, which has the focus on its first slider, and applies what the keys have set."""
        menus = self.command("GetInfo: Type=Menus Format=JSON")
        item = re.search(r'"id":"(Effect_VST_[^"]*_Halyard_[^"]*)"', menus)
        check("in the menu", item)
        os.write(self.commands, f"{item[1]}:\n".encode())
        self.place.run("focus", ["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Halyard$",
                                 "windowfocus", "--sync"])
        self.place.run("keys", ["xdotool", "key", "--delay", "200", *keys, "Return"])
        self.answer_to("the plug-in's dialog")

    def exported(self, name):
        path = self.place.folder / f"{name}.wav"
        self.command(f'Export2: Filename="{path}" NumChannels=2')
        return path


def open_commands():
    """The pipe to the host, or None as long as it doesn't listen."""
    try:
        return os.open(TO_HOST, os.O_WRONLY | os.O_NONBLOCK)
    except OSError as error:
        if error.errno in (errno.ENOENT, errno.ENXIO):
            return None
        raise


def set_by_hand(place):
    return place.rendered("by-hand-rendered", "--gain", "24", "--hardness", "0")


def first_session(place):
    with Session(place, "first-session") as host:
        host.load_music()
        check_same_sound("without the plug-in as it was", host.exported("untouched"), place.music())
        for number, program in enumerate(("Default", "+3dB Hard-Clip", "+8dB Soft-Clip")):
            host.load_music()
            host.apply(f"Factory Preset:{program}")
            check_same_sound(f"program '{program}' as rendered", host.exported(f"program-{number}"),
                             place.rendered(f"program-{number}-rendered", "--preset", program))
        host.load_music()
        host.apply_by_hand("Tab", "End", "Tab", "Home", "Tab", "End")  # gain, hardness, output gain
        check_same_sound("set by hand as rendered", host.exported("by-hand"), set_by_hand(place))


def second_session(place):
    with Session(place, "second-session") as host:
        host.load_music()
        host.apply()
        check_same_sound("settings come back at the next start", host.exported("restored"), set_by_hand(place))


def test(place):
    """Sounds are the same only if the host has read the latency: it gives the plug-in as many frames more, and drops as
    many at the beginning."""
    write_settings(place)
    with pipes_of_our_own():
        scan(place)
        first_session(place)
        second_session(place)
