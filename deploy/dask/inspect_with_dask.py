"""Inspects documents with the Python host on a Dask cluster: inspect_with_dask.py SCHEDULER LIST RESULTS.jsonl

SCHEDULER is the address of a running scheduler, as "tcp://10.0.0.1:8786". The machines of its workers share the files
that LIST names, one per line, and have the Python package `zelvo` and its programs ($ZELVO_LIBEXEC, or installed). Writes
lines like those of `zelvo batch inspect`. The same command continues a run that was stopped: files that were answered or
refused are not inspected again. Exits with 0 if no file failed, else with 3.
"""

from __future__ import annotations

import json
import os
import sys
from typing import Any, Dict, Iterator, List, Set

import dask.bag
import distributed

import zelvo

FILES_PER_TASK = 20  # some 50 ms of work; a task costs the scheduler about 1 ms
ATTEMPTS = 3  # of a document whose process fails, which may be for lack of memory


def inspect(name: str) -> Dict[str, Any]:
    """The line of one file. Runs on the cluster."""
    failure = ""
    for _ in range(ATTEMPTS):
        try:
            inspection = zelvo.Worker().inspect(name)
            return {"file": name, "outcome": "answered", "status": 0, "inspection": inspection.raw}
        except zelvo.Refused as refusal:
            return {"file": name, "outcome": "refused", "status": 1, "message": str(refusal)}
        except OSError as error:
            message = f"The file cannot be read: {name}: {error.strerror}"
            return {"file": name, "outcome": "refused", "status": 1, "message": message}
        except zelvo.WorkerFailed as error:
            failure = str(error)
    return {"file": name, "outcome": "failed", "status": 3, "message": failure}


def finished_lines(path: str) -> Iterator[str]:
    """The lines of an earlier run, without those that are to be tried again: failed ones, and one that was cut off."""
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            for line in file:
                if line.endswith("\n") and json.loads(line)["outcome"] != "failed":
                    yield line


def resume(path: str) -> Set[str]:
    """Keeps only the finished lines of an earlier run, and returns their files."""
    finished = set()
    with open(path + ".new", "w", encoding="utf-8") as kept:
        for line in finished_lines(path):
            finished.add(json.loads(line)["file"])
            kept.write(line)
    os.replace(path + ".new", path)
    return finished


def inspect_all(names: List[str], client: distributed.Client) -> Iterator[List[Dict[str, Any]]]:
    """The lines of each task, as tasks end."""
    bag = dask.bag.from_sequence(names, partition_size=FILES_PER_TASK).map(inspect)
    tasks = client.compute(bag.to_delayed())
    first = {task.key: FILES_PER_TASK * index for index, task in enumerate(tasks)}
    for task in distributed.as_completed(tasks):
        if task.status == "finished":
            yield task.result()
        else:  # Dask gives a task up whose worker has ended several times
            start = first[task.key]
            yield [{"file": name, "outcome": "failed", "status": 3, "message": str(task.exception())}
                   for name in names[start:start + FILES_PER_TASK]]
        task.release()


def main() -> int:
    scheduler, list_path, results = sys.argv[1:]
    with open(list_path, encoding="utf-8") as file:
        names = list(dict.fromkeys(line.rstrip("\n") for line in file if line.strip()))
    finished = resume(results)
    remaining = [name for name in names if name not in finished]
    failed = 0
    with distributed.Client(scheduler) as client, open(results, "a", encoding="utf-8") as output:
        for lines in inspect_all(remaining, client) if remaining else ():
            output.writelines(json.dumps(line, ensure_ascii=False) + "\n" for line in lines)
            output.flush()
            failed += sum(line["outcome"] == "failed" for line in lines)
    print(f"{len(names)} files: {len(finished)} finished before, {failed} failed", file=sys.stderr)
    return 3 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
