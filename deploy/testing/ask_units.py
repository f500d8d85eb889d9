"""Runs inside a booted systemd: tests the units of worker and cleaner, then writes `passed`."""

from __future__ import annotations

import os
import pathlib
import subprocess
import time
from typing import Dict

import ask_socket


def systemctl(*arguments: str) -> str:
    return subprocess.run(["systemctl", *arguments], check=True, stdout=subprocess.PIPE, encoding="utf-8").stdout


def wait_for_process(units: str, name: str) -> str:
    """The identifier of the one process, when it has confined itself and waits for the rest of its request."""
    while True:
        pid = systemctl("show", "--property=MainPID", "--value", units).strip()
        if pid and os.path.basename(os.path.realpath(f"/proc/{pid}/exe")) == name:
            time.sleep(1)
            return pid
        time.sleep(0.1)


def check_process(pid: str) -> None:
    """What the unit, not the worker, has to do. The worker makes itself undumpable, but root may read /proc."""
    process = pathlib.Path("/proc", pid)
    # systemd's own mount points, and the way to the executable.
    allowed = {"dev", "run", os.environ["PREFIX"].split("/")[1]}
    assert set(os.listdir(process / "root")) <= allowed, os.listdir(process / "root")
    assert os.listdir(f"{process}/root/dev") == ["mqueue"] and os.listdir(f"{process}/root/run") == ["systemd"]
    assert len(os.listdir(f"{process}/root{os.environ['PREFIX']}/libexec/zelvo")) == 1
    for kind in "net", "ipc", "mnt":
        assert os.readlink(process / "ns" / kind) != os.readlink(f"/proc/self/ns/{kind}"), kind
    status: Dict[str, str] = dict(line.split(":\t", 1) for line in (process / "status").read_text().splitlines())
    assert "0" not in status["Uid"].split() and int(status["CapBnd"], 16) == 0, status
    # The worker's own two filters, and those of the unit.
    assert status["NoNewPrivs"] == "1" and int(status["Seccomp_filters"]) > 2, status


def check_unit(program: str) -> None:
    path, units = f"/run/zelvo/{program}.sock", f"zelvo-{program}@*.service"
    systemctl("start", f"zelvo-{program}.socket")
    names = pathlib.Path("list").read_text(encoding="utf-8").splitlines()
    with ask_socket.connect(path) as connection:
        connection.sendall(b"{")
        check_process(wait_for_process(units, f"zelvo_document_{program}"))
    ask_socket.kill_one(path, ask_socket.request_of(names[0]), ["systemctl", "kill", "--signal=KILL", units])
    journal = subprocess.run(["journalctl", "--unit", units], check=True, stdout=subprocess.PIPE).stdout
    assert b"status=9/KILL" in journal, journal
    started = time.monotonic()
    ask_socket.inspect_all(path, names, f"{program}.jsonl")
    print(f"{program}: {len(names) / (time.monotonic() - started):.0f} documents a second", flush=True)
    assert systemctl("list-units", "--all", "--no-legend", units) == "", "Units of ended processes are left."


check_unit("worker")
check_unit("cleaner")
pathlib.Path("passed").touch()
