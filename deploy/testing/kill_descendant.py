"""Kills one descendant of a process, once there is one whose command line has a text: kill_descendant.py PID TEXT"""

from __future__ import annotations

import os
import pathlib
import signal
import sys
import time
from typing import Dict, List

SECONDS = 30


def descendants(ancestor: int) -> List[int]:
    children: Dict[int, List[int]] = {}
    for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            # The name, in parentheses, may hold anything.
            parent = int(status.read_text(errors="replace").rpartition(")")[2].split()[1])
        except (FileNotFoundError, ProcessLookupError):
            continue  # it has ended
        children.setdefault(parent, []).append(int(status.parent.name))
    found = [ancestor]
    for process in found:
        found += children.get(process, [])
    return found[1:]


def kill_one(ancestor: int, text: str) -> bool:
    for process in descendants(ancestor):
        try:
            command = pathlib.Path(f"/proc/{process}/cmdline").read_bytes().replace(b"\0", b" ")
            if os.fsencode(text) in command:
                os.kill(process, signal.SIGKILL)
                print(f"killed: {text}")
                return True
        except (FileNotFoundError, ProcessLookupError):
            continue
    return False


def main() -> None:
    deadline = time.monotonic() + SECONDS
    while not kill_one(int(sys.argv[1]), sys.argv[2]):
        if time.monotonic() > deadline:
            sys.exit(f"No process {sys.argv[2]} was found to kill.")


main()
