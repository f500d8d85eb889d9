#!/usr/bin/env python3
"""system_calls_test.py WORKER WORKBOOK

Runs the worker under strace over its operations. From the first read of standard input on, it may read that, use
memory, write standard output and end, and must do so in this order: all reads, then the writes, then the end.
"""

import base64
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77

PROTECTION = r"(PROT_NONE|PROT_READ|PROT_WRITE|PROT_READ\|PROT_WRITE)"
ALLOWED = [
    r"read\(0, .*",
    r"write\(1, .*",
    r"brk\(.*",
    r"mmap\((NULL|0x[0-9a-f]+), \d+, " + PROTECTION + r", MAP_PRIVATE\|MAP_ANONYMOUS, -1, 0\).*",
    r"mprotect\(0x[0-9a-f]+, \d+, " + PROTECTION + r"\).*",
    r"munmap\(.*",
    r"mremap\(0x[0-9a-f]+, \d+, \d+, (0|MREMAP_MAYMOVE)\).*",
    r"madvise\(0x[0-9a-f]+, \d+, MADV_DONTNEED\).*",
    r"futex\(0x[0-9a-f]+, FUTEX_WAKE(_PRIVATE)?, .*",
    r"exit_group\(\d+\).*",
    r"\+\+\+ exited with \d+ \+\+\+",
]


def trace(worker, request):
    """The worker's status, its output, and its system calls from the first read of standard input on."""
    with tempfile.TemporaryDirectory() as folder:
        log = os.path.join(folder, "log")
        result = subprocess.run(["strace", "-f", "-qq", "-o", log, worker], input=request, capture_output=True,
                                timeout=100, check=False)
        with open(log, encoding="utf-8", errors="replace") as lines:
            calls = [re.sub(r"^\d+ +", "", line.rstrip("\n")) for line in lines]
    if result.stderr:
        sys.exit(f"standard error: {result.stderr!r}")
    first = next((i for i, call in enumerate(calls) if call.startswith("read(0, ")), None)
    if first is None:
        sys.exit("standard input was never read:\n" + "\n".join(calls))
    if sum(bool(re.match(r"seccomp\(SECCOMP_SET_MODE_FILTER, .* = 0$", call)) for call in calls[:first]) != 2:
        sys.exit("the two filters were not loaded before the first read:\n" + "\n".join(calls[:first]))
    return result.returncode, result.stdout, calls[first:]


def check(name, worker, request, status, keys):
    """Traces one request and gives back the decoded response, if there is one."""
    text = request if isinstance(request, bytes) else json.dumps(request).encode()
    found, output, calls = trace(worker, text)
    strange = [call for call in calls if not any(re.fullmatch(pattern, call) for pattern in ALLOWED)]
    if strange:
        sys.exit(f"{name}: calls off the list:\n" + "\n".join(strange))
    reads = [i for i, call in enumerate(calls) if call.startswith("read(0, ")]
    writes = [i for i, call in enumerate(calls) if call.startswith("write(1, ")]
    if writes and writes[0] < reads[-1]:
        sys.exit(f"{name}: standard output was written before standard input had been read")
    response = json.loads(output) if output else None
    if found != status or sorted(response or {}) != sorted(keys):
        sys.exit(f"{name}: status {found}, response {output[:300]!r}")
    print(f"{name}: {len(calls)} calls, {len(reads)} reads, {len(writes)} writes")
    return response


def main():
    if shutil.which("strace") is None:
        print("skipped: strace is not installed")
        return SKIPPED
    worker, workbook = sys.argv[1:]
    with open(workbook, "rb") as file:
        data = base64.b64encode(file.read()).decode()
    selection = {"sheetName": "Quarter", "range": "A1:F6", "firstRowIsHeader": True, "includeHiddenRows": False,
                 "allowCachedFormulaValues": True}
    chart = {"categoryColumn": 0, "valueColumn": 1, "title": "Sales"}
    base = {"data": data, "sourceName": "book.xlsx", "selection": selection, "title": "Quarter", "chart": chart}

    def run(name, keys, **fields):
        return check(name, worker, {**base, **fields}, 0, keys)

    run("inspect", ["inspection"], operation="inspect")
    run("extract", ["table"], operation="extract")
    for form in ("docx", "pptx"):
        created = run(f"create {form}", ["table", "document"], operation="create", format=form)
        run(f"validate {form}", ["validation"], operation="validate", format=form, data=created["document"]["data"],
            expectedTable=created["table"])
    run("a refused workbook", ["error"], operation="inspect", data=data[:4000])
    prices = {**selection, "sheetName": "Prices 価格", "range": "A1:E6"}
    run("a selection outside ASCII", ["table"], operation="extract", selection=prices)
    run("a sheet that is not there", ["error"], operation="extract", selection={**selection, "sheetName": "İ価́"})
    run("a request of 20 MB", ["error"], operation="inspect", data="A" * 20_000_000)
    check("malformed JSON", worker, b"{", 65, [])
    return 0


if __name__ == "__main__":
    sys.exit(main())
