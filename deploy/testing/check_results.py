"""Checks that each document of `write_documents.py` has one line, with the outcome of its kind: check_results.py LIST RESULTS

A message may go on with the place, which the cleaner adds.
"""

from __future__ import annotations

import collections
import json
import pathlib
import sys
from typing import Dict, Tuple, Union

REFUSALS: Dict[str, Union[str, Tuple[str, ...]]] = {
    "bomb": "The document exceeds a safe processing limit: expanded archive size or compression ratio",
    "malformed": "The document archive is invalid: malformed XML",
    "truncated": "The document archive is invalid: missing ZIP directory",
    "word": ("This document feature is not supported yet: XLSX workbook structure",
             "This document feature is not supported yet: root element of the workbook"),
}


def main() -> None:
    names = pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").splitlines()
    lines = [json.loads(line) for line in pathlib.Path(sys.argv[2]).read_text(encoding="utf-8").splitlines()]
    difference = collections.Counter(line["file"] for line in lines)
    difference.subtract(names)
    wrong = [f"{count:+d} {name}" for name, count in difference.items() if count != 0]
    for line in lines:
        messages = REFUSALS.get(pathlib.Path(line["file"]).name.split()[0])
        outcome = "answered" if messages is None else "refused"
        if line["outcome"] != outcome or not line.get("message", "").startswith(messages or ""):
            wrong.append(f"{line['file']}: {line['outcome']}: {line.get('message')}")
    outcomes = collections.Counter(line["outcome"] for line in lines)
    print(f"{len(names)} documents: " + ", ".join(f"{count} {outcome}" for outcome, count in sorted(outcomes.items())))
    if wrong or not names:
        sys.exit("\n".join(wrong) or "The list is empty.")


main()
