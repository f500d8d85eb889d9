"""Owns `zelvo batch`: which files it takes, what it writes, and that no file is lost when processes are killed."""

import base64
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

TOOL, BOOK, COUNT = sys.argv[1], pathlib.Path(sys.argv[2]).read_bytes(), int(sys.argv[3])
folder = tempfile.TemporaryDirectory()
os.chdir(folder.name)


def zelvo(arguments, status=0, stdin=b""):
    run = subprocess.run([TOOL, "batch", *arguments.split()], input=stdin, capture_output=True)
    assert run.returncode == status, (arguments, run)
    return run


def lines(text):
    return [json.loads(line) for line in text.splitlines()]


def write(name, content=BOOK):
    path = pathlib.Path(name)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


# Folders: workbooks by their endings, no lock files, no links. Names: whatever they are.
for name in ["in/a.xlsx", "in/B.XLSM", "in/deep/er/c.xltx", "in/~$a.xlsx", "in/d.ods", "e.zip"]:
    write(name)
write("in/broken.xlsx", b"PK")
os.symlink("../e.zip", "in/link.xlsx")
os.symlink("deep", "in/more")
write(b"in/\xff.xlsx".decode(errors="surrogateescape"))
os.mkfifo("pipe")  # opening it would wait for ever
run = zelvo("inspect in e.zip in/none.xlsx pipe", 1)
found = {line["file"]: line for line in lines(run.stdout)}
assert {name: line["outcome"] for name, line in found.items()} == {
    "in/a.xlsx": "answered", "in/B.XLSM": "answered", "in/deep/er/c.xltx": "answered", "in/\ufffd.xlsx": "answered",
    "in/broken.xlsx": "refused", "e.zip": "answered", "in/none.xlsx": "refused", "pipe": "refused"}
assert base64.b64decode(found["in/\ufffd.xlsx"]["fileBytes"]) == b"in/\xff.xlsx"
single = subprocess.run([TOOL, "inspect", "--json", "in/a.xlsx"], capture_output=True).stdout
assert found["in/a.xlsx"]["inspection"] == json.loads(single)
assert found["in/none.xlsx"]["message"] == "The file cannot be read: in/none.xlsx: No such file or directory"
assert b"8 files in 0 s, " in run.stderr and b": 5 answered, 3 refused, 0 failed" in run.stderr, run.stderr
assert zelvo("inspect -q --files-from - --null", stdin=b"in/a.xlsx\0e.zip\0").stderr == b""
assert len(lines(zelvo("inspect --files-from -", stdin=b"in/a.xlsx\n\ne.zip").stdout)) == 2

# Shards part a list.
shards = [subprocess.run([TOOL, "batch", "inspect", "in", "--shard", f"{i}/3"], capture_output=True) for i in (1, 2, 3)]
assert sorted(line["file"] for shard in shards for line in lines(shard.stdout)) == [
    "in/B.XLSM", "in/a.xlsx", "in/broken.xlsx", "in/deep/er/c.xltx", "in/\ufffd.xlsx"]
for shard in "0/1", "2/1", "1/0", "1", "-1/2", "1/2x", "1/2147483649":
    zelvo("inspect in --shard " + shard, 2)

# A file of results is continued, never overwritten; only final outcomes stay.
zelvo("inspect in -o r.jsonl", 1)
whole = pathlib.Path("r.jsonl").read_bytes()
zelvo("inspect in -o r.jsonl", 1)
assert pathlib.Path("r.jsonl").read_bytes() == whole
first, second = whole.splitlines(True)[:2]
failed = second.replace(b'"answered","status":0', b'"failed","status":3').replace(b'"refused","status":1', b'"failed","status":3')
pathlib.Path("r.jsonl").write_bytes(failed + first + b'{"file":"torn')
zelvo("inspect in -o r.jsonl --resume", 1)
assert pathlib.Path("r.jsonl").read_bytes().startswith(first)
assert sorted(pathlib.Path("r.jsonl").read_bytes().splitlines()) == sorted(whole.splitlines())
pathlib.Path("r.jsonl").write_bytes(b"a line\nof another file\n")
assert b"Line 1 is not one of a batch" in zelvo("inspect in -o r.jsonl --resume", 1).stderr

# Cleaned workbooks: one output a file, inside the folder, never over an input.
run = zelvo("clean in/a.xlsx in/deep --output-dir out -o c.jsonl")
assert pathlib.Path("out/in/a.xlsx").exists() and pathlib.Path("out/er/c.xlsx").exists()
assert all("report" in line for line in lines(pathlib.Path("c.jsonl").read_bytes()))
pathlib.Path("out/in/a.xlsx").write_bytes(b"kept")
assert b"out/in/a.xlsx: File exists" in zelvo("clean in/a.xlsx --output-dir out --no-clobber", 1).stdout
assert pathlib.Path("out/in/a.xlsx").read_bytes() == b"kept"
zelvo("clean --files-from - --output-dir out", stdin=b"in/a.xlsx")
assert pathlib.Path("out/in/a.xlsx").read_bytes() == pathlib.Path("out/er/c.xlsx").read_bytes()
assert b"output: in/a.xlsx, in/a.xlsm\n" in zelvo("clean in/B.XLSM in/a.xlsx in/a.xlsm --output-dir new", 2).stderr
for arguments in ["../x.xlsx", os.path.abspath("in/a.xlsx"), "in/a.xlsx --output-dir ."]:
    output = "" if "--output-dir" in arguments else " --output-dir new"
    zelvo("clean " + arguments + output, 2)
assert not pathlib.Path("new").exists() and pathlib.Path("in/a.xlsx").read_bytes() == BOOK

# Workers and whole batches are killed; each file is in the results once, with its outcome.
random.seed(1)
for i in range(COUNT):
    write(f"many/{i % 10}/{i}.xlsx", BOOK if i % 7 else b"PK" * i)
done = {i: False for i in (1, 2, 3)}
attempts = 0
while not all(done.values()):
    attempts += 1
    running = {i: subprocess.Popen([TOOL, "batch", "inspect", "many", "-q", "--jobs", "2", "--shard", f"{i}/3", "-o",
                                    f"shard{i}.jsonl", "--resume"], stderr=subprocess.DEVNULL)
               for i in done if not done[i]}
    deadline = time.monotonic() + random.uniform(0.1, 1.5)
    while time.monotonic() < deadline and attempts <= 8:  # then they may end
        parents = ",".join(str(process.pid) for process in running.values())
        subprocess.run(["pkill", "-KILL", "-n", "-P", parents])
        time.sleep(0.05)
    if random.random() < 0.6 and attempts <= 8:
        random.choice(list(running.values())).send_signal(random.choice([signal.SIGKILL, signal.SIGTERM]))
    for i, process in running.items():
        done[i] = process.wait() in (0, 1)
results = [line for i in done for line in lines(pathlib.Path(f"shard{i}.jsonl").read_bytes())]
assert sorted(line["file"] for line in results) == sorted(f"many/{i % 10}/{i}.xlsx" for i in range(COUNT))
for line in results:
    assert line["outcome"] == ("answered" if int(pathlib.Path(line["file"]).stem) % 7 else "refused"), line
