# SPDX-License-Identifier: LicenseRef-Halyard
"""Ardour: its plug-in scanner, sessions by its Lua interpreter, and its exporter, all without a window."""
import pathlib
import re
import shutil
import xml.etree.ElementTree as ElementTree

import soundfile

from harness import HostCrash, HostFailure, LATENCY_FRAMES, check, check_same_sound, check_same_values

LIBRARIES = pathlib.Path("/usr/lib/ardour7")
SESSION_SCRIPT = pathlib.Path(__file__).with_name("ardour_session.lua")
EXPORT_ATTEMPTS = 4
SUPERCLOCKS_PER_SECOND = 282240000  # the unit of time in session files

# Each value is exact in 32-bit float and as text: dB and percent for the tool, 0 to 1 for the host.
FIRST = {"Bypass": 0, "Gain": 0.375, "Hardnes": 0.5, "OutGain": 0.9375, "Residue": 0}
FIRST_RENDERED = ("--gain", "9", "--hardness", "50", "--out-gain", "-1.5")
SECOND = {"Bypass": 0, "Gain": 0.25, "Hardnes": 1, "OutGain": 0.75, "Residue": 0}
SECOND_RENDERED = ("--gain", "6", "--hardness", "100", "--out-gain", "-6")


def scan(place):
    report = place.run("scan", [LIBRARIES / "ardour-vst-scanner", "-f", "-v", place.plugin],
                       LD_LIBRARY_PATH=str(LIBRARIES))
    if not re.search('name="Halyard" .*n_inputs="2" n_outputs="2"', report):
        raise place.failure("scan", "does not find a stereo plug-in")
    check("scanned", True)
    # A cache entry counts only if it is younger than the plug-in, but the scanner gives both the same time.
    for entry in place.cache.glob("ardour7/vst/*.v2i"):
        entry.touch()


def session(place, step, mode, values=None):
    """Opens the session as ardour_session.lua tells. Result: what the host sees of the plug-in."""
    settings = [f"{name}={value}" for name, value in (values or {}).items()]
    printed = place.run(step, ["ardour7-lua", SESSION_SCRIPT, place.folder / "session", mode, *settings])
    lines = printed.splitlines()
    if "done" not in lines:
        raise place.failure(step, "failed")
    return dict(line.split("=", 1) for line in lines if "=" in line)


def parameters(facts):
    prefix = "parameter."
    return {name: float(facts[prefix + name]) for name in FIRST if prefix + name in facts}


def edit_session(place, edit):
    path = place.folder / "session" / "halyard.ardour"
    document = ElementTree.parse(path)
    edit(document.getroot())
    document.write(path, encoding="UTF-8", xml_declaration=True)


def put_music_on_track(place):
    """The Lua interpreter cannot import sounds; the session file can name one."""
    music = place.music()
    frames = soundfile.info(music).frames
    shutil.copy(music, place.folder / "session/interchange/session/audiofiles/music.wav")

    def edit(root):
        first_id = int(root.get("id-counter"))
        root.set("id-counter", str(first_id + 4))
        left, right, region, location = map(str, range(first_id, first_id + 4))
        end = f"a{frames * SUPERCLOCKS_PER_SECOND // 48000}"
        for channel, source in enumerate((left, right)):
            ElementTree.SubElement(root.find("Sources"), "Source", {
                "id": source, "name": "music.wav", "origin": "music.wav", "type": "audio", "channel": str(channel),
                "flags": "", "gain": "1"})
        ElementTree.SubElement(root.find("Playlists/Playlist"), "Region", {
            "id": region, "name": "music", "type": "audio", "channels": "2", "source-0": left, "source-1": right,
            "master-source-0": left, "master-source-1": right, "start": "a0", "length": f"{end}@a0", "opaque": "1",
            "fade-in-active": "0", "fade-out-active": "0", "scale-amplitude": "1"})
        ElementTree.SubElement(root.find("Locations"), "Location", {
            "id": location, "name": "session", "start": "a0", "end": end, "flags": "IsSessionRange"})

    edit_session(place, edit)


def forget_parameters(place):
    """Leaves the plug-in's chunk as the only place where its values are stored."""
    def edit(root):
        for value in root.findall(".//Processor[@type='lxvst']/Controllable"):
            value.set("value", "0")

    edit_session(place, edit)


def exported(place, name):
    """The exporter of 7.3 spoils its own heap: without any plug-in it was ended by the C library in 15 of 120 runs, when
    it freed its ports' buffers. So it may try again; a plug-in that ends it every time is found all the same."""
    path = place.folder / f"{name}.wav"
    command = ["ardour7-export", "-b", "float", "-o", path, place.folder / "session", "halyard"]
    for attempt in range(1, EXPORT_ATTEMPTS + 1):
        try:
            place.run(f"{name}-{attempt}", command)
            break
        except HostCrash as crash:
            if attempt == EXPORT_ATTEMPTS:
                raise
            print(f"  --  tries again: {crash}")
    if not path.exists():
        raise HostFailure(f"step '{name}' wrote no sound")
    return path


def test(place):
    scan(place)

    facts = session(place, "create", "create", FIRST)
    check("instantiated", facts.get("name") == "Halyard", facts.get("name"))
    check("latency seen", facts.get("latency") == str(LATENCY_FRAMES), facts.get("latency"))
    check_same_values("parameters set", parameters(facts), FIRST)

    put_music_on_track(place)
    first_sound = place.rendered("first-rendered", *FIRST_RENDERED)
    check_same_sound("as rendered", exported(place, "first-exported"), first_sound)

    check_same_values("reopened", parameters(session(place, "reopen", "look")), FIRST)
    check_same_values("changed", parameters(session(place, "change", "look", SECOND)), SECOND)
    check_same_values("change given up", parameters(session(place, "reopen-old", "look")), FIRST)
    forget_parameters(place)
    check_same_sound("restored by the chunk alone", exported(place, "chunk-exported"), first_sound)

    check_same_values("changed and saved", parameters(session(place, "save", "save", SECOND)), SECOND)
    check_same_values("reopened", parameters(session(place, "reopen-new", "look")), SECOND)
    check_same_sound("as rendered", exported(place, "second-exported"),
                     place.rendered("second-rendered", *SECOND_RENDERED))
