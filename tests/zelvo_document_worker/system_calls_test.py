#!/usr/bin/env python3
"""system_calls_test.py WORKER WORKBOOK

Runs the worker under strace over its operations. From the first read of standard input on, it may read that,
use memory, write standard output and end, and must do so in this order: all reads, then the writes, then the
end.
"""

import base64
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
READ, WRITE = r"read\(0, .*", r"write\(1, .*"
# The filter judges the arguments of the others.
ALLOWED = rf"{READ}|{WRITE}|(brk|mmap|mprotect|munmap|mremap|madvise|futex|exit_group)\(.*|\+\+\+ exited with .*"


def check(worker, name, request, status, keys):
    """Traces one request; returns the response, which must have these keys."""
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder, "log")
        command = ["strace", "-f", "-qq", "-o", log, worker]
        result = subprocess.run(command, input=request, capture_output=True, timeout=100, check=False)
        calls = re.sub(r"(?m)^\d+ +", "", log.read_text(encoding="utf-8", errors="replace")).splitlines()

    def positions(pattern):
        return [i for i, call in enumerate(calls) if re.fullmatch(pattern, call)]

    reads, writes, filters = map(positions, (READ, WRITE, r"seccomp\(SECCOMP_SET_MODE_FILTER, .* = 0"))
    response = json.loads(result.stdout or "{}")
    for failure, is_met in {
            "not two filters before the first read": len(filters) != 2 or filters[1] > reads[0],
            "calls off the list": not all(re.fullmatch(ALLOWED, call) for call in calls[reads[0]:]),
            "written before everything was read": writes and writes[0] < reads[-1],
            "another response": [result.returncode, *response] != [status, *keys.split()],
            "standard error is not empty": result.stderr}.items():
        if is_met:
            sys.exit("\n".join([f"{name}: {failure}", *calls, f"{result}"[:1000]]))
    print(f"{name}: {len(calls)} calls, {len(reads)} reads, {len(writes)} writes")
    return response


def main():
    if shutil.which("strace") is None:
        print("skipped: strace is not installed")
        return SKIPPED
    worker, workbook = sys.argv[1:]
    data = base64.b64encode(pathlib.Path(workbook).read_bytes()).decode()
    selection = {"sheetName": "Quarter", "range": "A1:F6", "firstRowIsHeader": True,
                 "includeHiddenRows": False, "allowCachedFormulaValues": True}
    base = {"data": data, "sourceName": "book.xlsx", "selection": selection, "title": "Quarter",
            "chart": {"categoryColumn": 0, "valueColumn": 1, "title": "Sales"}}

    def run(keys, operation, **fields):
        request = json.dumps({**base, "operation": operation, **fields}).encode()
        return check(worker, operation, request, 0, keys)

    run("inspection", "inspect")
    run("table", "extract", selection={**selection, "sheetName": "Prices 価格", "range": "A1:E6"})
    for form in ("docx", "pptx"):
        created = run("table document", "create", format=form)
        document, table = created["document"]["data"], created["table"]
        run("validation", "validate", format=form, data=document, expectedTable=table)
    run("error", "inspect", data=data[:4000])
    run("error", "inspect", data="A" * 20_000_000)
    run("error", "extract", selection={**selection, "sheetName": "İ価́"})
    check(worker, "malformed JSON", b"{", 65, "")
    return 0


if __name__ == "__main__":
    sys.exit(main())
