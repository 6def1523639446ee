#!/usr/bin/python3
# SPDX-License-Identifier: LicenseRef-Halyard
"""usage: hosts.py PLUGIN HALYARD [HOST...]

Loads the plug-in into real hosts, as their users would, and checks what they hear and store. HALYARD is the tool, which
renders what a host should give. Each host runs on a display and in a home of its own; all of it stays below a new
folder in TMPDIR, which is deleted if everything was right.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

import ardour
import audacity
from harness import HostFailure, Place, display

HOSTS = {"ardour": ardour.test, "audacity": audacity.test}


def test(host, folder, plugin, halyard):
    """Result: whether all was right."""
    print(f"{host}", flush=True)
    try:
        HOSTS[host](Place(folder / host, plugin, halyard))
        return True
    except (HostFailure, OSError) as failure:
        print(f"  FAILED  {failure}", flush=True)
        return False


def main(arguments):
    if len(arguments) < 2 or not set(arguments[2:]) <= set(HOSTS):
        print(f"{__doc__}\nhosts: {' '.join(HOSTS)}", file=sys.stderr)
        return 2
    plugin, halyard = (pathlib.Path(argument).resolve() for argument in arguments[:2])
    folder = pathlib.Path(tempfile.mkdtemp(prefix="halyard-hosts-"))
    with display(folder):
        results = [test(host, folder, plugin, halyard) for host in arguments[2:] or HOSTS]
    if not all(results):
        print(f"What the hosts left is in {folder}")
        return 1
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
