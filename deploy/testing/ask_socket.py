"""Inspects documents by a worker behind a socket: ask_socket.py SOCKET LIST RESULTS [KILL_COMMAND...]

With a command that kills the worker, sends half a request first, kills the worker and expects an empty response.
"""

from __future__ import annotations

import base64
import concurrent.futures
import json
import pathlib
import socket
import subprocess
import sys
import time
from typing import Any, Dict, List

ATTEMPTS = 3


def connect(path: str) -> socket.socket:
    connection = socket.socket(socket.AF_UNIX)
    connection.settimeout(60)
    connection.connect(path)
    return connection


def read(connection: socket.socket) -> bytes:
    chunks = []
    while chunk := connection.recv(1 << 16):
        chunks.append(chunk)
    return b"".join(chunks)


def ask(path: str, request: bytes) -> bytes:
    """The response; empty if the worker failed."""
    with connect(path) as connection:
        try:
            connection.sendall(request)
            connection.shutdown(socket.SHUT_WR)
            return read(connection)
        except (BrokenPipeError, ConnectionResetError):
            return b""


def request_of(name: str) -> bytes:
    data = base64.b64encode(pathlib.Path(name).read_bytes()).decode()
    # The worker reads "operation", the cleaner "version"; both ignore the keys that they do not know.
    return json.dumps({"operation": "inspect", "version": 1, "sourceName": name, "data": data}).encode()


def line_of(path: str, name: str) -> Dict[str, Any]:
    for _ in range(ATTEMPTS):
        response = ask(path, request_of(name))
        if response:
            message = json.loads(response).get("error")
            if message is None:
                return {"file": name, "outcome": "answered"}
            return {"file": name, "outcome": "refused", "message": message}
    return {"file": name, "outcome": "failed"}


def kill_one(path: str, request: bytes, command: List[str]) -> None:
    """Kills a worker that has read half of its request."""
    with connect(path) as connection:
        connection.sendall(request[:len(request) // 2])
        connection.settimeout(0.2)
        deadline = time.monotonic() + 30
        while time.monotonic() < deadline:
            subprocess.run(command, stderr=subprocess.DEVNULL, check=False)  # there may be no process yet
            try:
                assert read(connection) == b"", "A killed worker has answered."
                return
            except socket.timeout:
                continue
            except ConnectionResetError:
                return
    raise AssertionError("The worker was not killed.")


def inspect_all(path: str, names: List[str], results: str) -> None:
    with concurrent.futures.ThreadPoolExecutor(4) as pool, open(results, "w", encoding="utf-8") as output:
        for line in pool.map(lambda name: line_of(path, name), names):
            print(json.dumps(line), file=output)


def main() -> None:
    path, names = sys.argv[1], pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").splitlines()
    if sys.argv[4:]:
        kill_one(path, request_of(names[0]), sys.argv[4:])
    inspect_all(path, names, sys.argv[3])


if __name__ == "__main__":
    main()
