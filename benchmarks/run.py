#!/usr/bin/env python3
"""Measures the release worker against the floor, workload by workload, in one run on one machine, and prints the
tables of docs/performance.md.

    run.py BIN_FOLDER WORK_FOLDER [RUNS] [--only NAME]
"""

import base64
import json
import os
import statistics
import subprocess
import sys
from pathlib import Path

import workloads

INSPECTED = ["cells-50000", "near-limit", "sheets-64", "part-16-mib", "strings-50000", "empty-elements",
             "empty-elements-refused", "attributes-64", "distinct-attributes", "one-tag", "deep-nesting"]
INSPECTED_GROWING = ["cells-50000", "sheets-64", "strings-50000", "part-16-mib", "near-limit", "entries-512",
                     "empty-elements", "attributes-64", "distinct-attributes", "one-tag", "deep-nesting"]
CLEANED_GROWING = ["cells-50000", "near-limit", "shared-formula"]
MIB = 1024 * 1024


class Bench:
    def __init__(self, binaries, folder, runs):
        self.binaries, self.folder, self.runs = binaries, folder, runs

    def request(self, workload, **fields):
        path = self.folder / f"{workload}.{fields.get('operation', 'clean')}.json"
        data = base64.b64encode((self.folder / f"{workload}.xlsx").read_bytes()).decode()
        path.write_text(json.dumps({**fields, "data": data, "sourceName": f"{workload}.xlsx"}))
        return path

    def measure(self, stdin, *commands, runs=None):
        """For each command the medians of CPU and wall seconds, its largest peak in bytes, the median of its page
        faults, and each pair's ratios to the first."""
        line = [str(self.binaries / "measure"), str(runs or self.runs), str(stdin)]
        for command in commands:
            line += ["--", *command]
        rows = [[] for _ in commands]
        for text in subprocess.run(line, capture_output=True, text=True, check=True).stdout.splitlines():
            which, status, user, system, wall, peak, faults = text.split()
            assert status == "0", f"{commands[int(which)]} ended with wait status {status} on {stdin}"
            rows[int(which)].append((float(user) + float(system), float(wall), int(peak) * 1024, int(faults)))
        return [{
            "cpu": statistics.median(r[0] for r in row),
            "wall": statistics.median(r[1] for r in row),
            "peak": max(r[2] for r in row),
            "faults": statistics.median(r[3] for r in row),
            "cpu ratio": statistics.median(a[0] / max(b[0], 1e-9) for a, b in zip(row, rows[0])),
            "wall ratio": statistics.median(a[1] / b[1] for a, b in zip(row, rows[0])),
        } for row in rows]

    def program(self, name):
        return [str(self.binaries / name)]


def expanded_bytes(path):
    import zipfile
    with zipfile.ZipFile(path) as archive:
        return sum(entry.file_size for entry in archive.infolist())


def table(title, columns, rows):
    print(f"\n### {title}\n")
    print("| " + " | ".join(columns) + " |")
    print("|---" * len(columns) + "|")
    for row in rows:
        print("| " + " | ".join(row) + " |", flush=True)


def milliseconds(value):
    return f"{value * 1000:.1f}"


def inspect_rows(bench):
    worker, floor = bench.program("zelvo_document_worker"), bench.program("floor")
    for name in INSPECTED:
        stdin = bench.request(name, operation="inspect")
        base, ours = bench.measure(stdin, floor, worker)
        expanded = expanded_bytes(bench.folder / f"{name}.xlsx")
        # If the archive is refused, only entries that were expanded before count.
        allowed = stdin.stat().st_size * 3 + min(expanded, 64 * MIB) * 3 + 32 * MIB
        yield [name, f"{expanded / MIB:.1f}", milliseconds(base["cpu"]), milliseconds(ours["cpu"]),
               f"{ours['cpu ratio']:.2f}", f"{ours['peak'] / MIB:.0f}", f"{allowed / MIB:.0f}",
               f"{base['faults']:.0f}", f"{ours['faults']:.0f}"]


SELECTION = {"sheetName": "Sheet 1", "range": "A1:H201", "firstRowIsHeader": True, "includeHiddenRows": False,
             "allowCachedFormulaValues": True}


def extract_rows(bench):
    worker, floor = bench.program("zelvo_document_worker"), bench.program("floor")
    openpyxl = ["/usr/bin/python3", str(Path(__file__).with_name("read_with_openpyxl.py"))]
    for name in ("cells-50000", "part-16-mib", "near-limit"):
        stdin = bench.request(name, operation="extract", selection=SELECTION)
        base, ours = bench.measure(stdin, floor, worker)
        book = str(bench.folder / f"{name}.xlsx")
        others = bench.measure(stdin, worker, [*openpyxl, book, "A1:H201"],
                               ["/usr/bin/xlsx2csv", "-n", "Sheet 1", book], runs=2)
        yield [name, milliseconds(base["cpu"]), milliseconds(ours["cpu"]), f"{ours['cpu ratio']:.2f}",
               milliseconds(others[1]["cpu"]), milliseconds(others[2]["cpu"]), f"{ours['peak'] / MIB:.0f}"]


def create_rows(bench):
    worker, floor = bench.program("zelvo_document_worker"), bench.program("floor")
    plan = {"title": "Benchmark", "selection": SELECTION}
    chart = {"categoryColumn": 0, "valueColumn": 2, "title": "Chart"}
    for label, rows, fields in (("DOCX, 200 x 8", 201, {"format": "docx"}),
                                ("PPTX with a chart, 30 x 8", 31, {"format": "pptx", "chart": chart})):
        selection = {**SELECTION, "range": f"A1:H{rows}"}
        create = bench.request("table-200x8", operation="create", **{**plan, "selection": selection}, **fields)
        base, ours = bench.measure(create, floor, worker, runs=100)
        yield [label, f"{base['cpu'] * 1000:.2f}", f"{ours['cpu'] * 1000:.2f}", f"{ours['cpu ratio']:.2f}",
               f"{base['faults']:.0f}", f"{ours['faults']:.0f}"]


def clean_rows(bench):
    cleaner, floor = bench.program("zelvo_document_cleaner"), bench.program("floor")
    for name in ("cells-50000", "near-limit.half", "shared-formula"):
        stdin = bench.request(name, version=1)
        base, ours = bench.measure(stdin, floor, cleaner)
        expanded = expanded_bytes(bench.folder / f"{name}.xlsx")
        # The written parts are about as large as those that were read, except for a formula that grows up to its limit.
        result = expanded if name != "shared-formula" else 16 * MIB
        allowed = stdin.stat().st_size * 3 + expanded * 3 + result * 2 + 32 * MIB
        yield [name, milliseconds(base["cpu"]), milliseconds(ours["cpu"]), f"{ours['cpu ratio']:.2f}",
               f"{ours['peak'] / MIB:.0f}", f"{allowed / MIB:.0f}"]


def picture_rows(bench):
    cleaner = bench.program("zelvo_document_cleaner")
    alone = bench.measure(bench.request("pictures-25-mb.none", version=1), cleaner)[0]
    request = bench.request("pictures-25-mb", version=1)
    digest, ours = bench.measure(request, [*bench.program("floor"), "digest"], cleaner)
    yield [*map(milliseconds, (alone["cpu"], digest["cpu"], ours["cpu"])),
           f"{ours['cpu'] / (alone['cpu'] + digest['cpu']):.2f}"]


def research_workbook_rows(bench):
    line = [*bench.program("research_workbook"), str(bench.runs), str(bench.folder)]
    runs = {}
    for text in subprocess.run(line, capture_output=True, text=True, check=True).stdout.splitlines():
        name, seconds, size = text.split()
        runs.setdefault(name, []).append((float(seconds), int(size)))
    for name, row in runs.items():
        ratio = statistics.median(a[0] / b[0] for a, b in zip(row, runs["libxlsxwriter"]))
        yield [name, milliseconds(statistics.median(r[0] for r in row)), f"{ratio:.2f}", f"{row[0][1] / 1024:.0f}"]


def growth_rows(bench):
    """At an eighth, a quarter, a half and the whole. Linear growth at most doubles at each step: a process has a
    constant part."""
    create = {"operation": "create", "title": "Benchmark", "format": "docx"}
    runs = [*(("zelvo_document_worker", name, {"operation": "inspect"}) for name in INSPECTED_GROWING),
            ("zelvo_document_worker", "table-200x8", create),
            *(("zelvo_document_cleaner", name, {"version": 1}) for name in CLEANED_GROWING)]
    for program, name, fields in runs:
        times = []
        for suffix, share in ((".eighth", 1 / 8), (".quarter", 1 / 4), (".half", 1 / 2), ("", 1)):
            if fields is create:
                fields["selection"] = {**SELECTION, "range": f"A1:H{int(200 * share) + 1}"}
            times.append(bench.measure(bench.request(name + suffix, **fields), bench.program(program))[0]["cpu"])
        yield [f"{fields.get('operation', 'clean')} {name}", *map(milliseconds, times),
               *(f"{b / a:.2f}" for a, b in zip(times, times[1:]))]


def reader_rows(bench):
    script = str(Path(__file__).with_name("read_with_openpyxl.py"))
    for name in ("tiny", "table-200x8", "cells-50000"):
        stdin = bench.request(name, operation="inspect")
        ours, other = bench.measure(stdin, bench.program("zelvo_document_worker"),
                                    ["/usr/bin/python3", script, str(bench.folder / f"{name}.xlsx")], runs=3)
        yield [name, milliseconds(ours["cpu"]), milliseconds(other["cpu"]), f"{other['cpu ratio']:.0f}",
               f"{ours['peak'] / MIB:.0f}", f"{other['peak'] / MIB:.0f}"]


def python_docx_rows(bench):
    """The same table of texts, written by python-docx. It neither extracts nor validates."""
    create = bench.request("table-200x8", operation="create", title="Benchmark", format="docx", selection=SELECTION)
    script = str(Path(__file__).with_name("write_with_python_docx.py"))
    ours, other = bench.measure(create, bench.program("zelvo_document_worker"), ["/usr/bin/python3", script], runs=3)
    yield [milliseconds(ours["cpu"]), milliseconds(other["cpu"]), f"{other['cpu ratio']:.0f}",
           f"{ours['peak'] / MIB:.0f}", f"{other['peak'] / MIB:.0f}"]


def main():
    bench = Bench(Path(sys.argv[1]), Path(sys.argv[2]), int(sys.argv[3]) if len(sys.argv) > 3 else 7)
    sys.argv[1:] = [str(bench.folder)]
    workloads.main()

    table("Inspect against the floor",
          ["workload", "expanded MiB", "floor CPU ms", "worker CPU ms", "ratio", "peak MiB", "allowed MiB", "floor faults",
           "worker faults"], inspect_rows(bench))

    tiny = bench.request("tiny", operation="inspect")
    empty, ours = bench.measure(tiny, bench.program("empty"), bench.program("zelvo_document_worker"), runs=200)
    table("A tiny workbook, whole process",
          ["empty program wall ms", "worker wall ms", "ratio", "worker peak MiB", "empty faults", "worker faults"],
          [[f"{empty['wall'] * 1000:.2f}", f"{ours['wall'] * 1000:.2f}", f"{ours['wall ratio']:.2f}",
            f"{ours['peak'] / MIB:.1f}", f"{empty['faults']:.0f}", f"{ours['faults']:.0f}"]])

    table("Extract 201 x 8 cells",
          ["workload", "floor CPU ms", "worker CPU ms", "ratio", "openpyxl CPU ms", "xlsx2csv CPU ms", "worker peak MiB"],
          extract_rows(bench))
    table("Create, validation included, against the floor of reading its source",
          ["document", "floor CPU ms", "worker CPU ms", "ratio", "floor faults", "worker faults"], create_rows(bench))
    table("Clean against the floor",
          ["workload", "floor CPU ms", "cleaner CPU ms", "ratio", "peak MiB", "allowed MiB"], clean_rows(bench))
    table("Clean a workbook with 25 MB of pictures, against its sheets alone and the floor's base64 and SHA-256",
          ["without pictures CPU ms", "base64 and SHA-256 CPU ms", "cleaner CPU ms", "ratio to the sum"],
          picture_rows(bench))
    table("The workbook of the largest dataset, not read back, against libxlsxwriter",
          ["writer", "CPU ms", "ratio", "package KiB"], research_workbook_rows(bench))
    table("Growth: CPU ms at an eighth, a quarter, a half and the whole",
          ["workload", "1/8", "1/4", "1/2", "1", "1/4 : 1/8", "1/2 : 1/4", "1 : 1/2"], growth_rows(bench))
    table("Inspect beside openpyxl (read-only mode)", ["workload", "worker CPU ms", "openpyxl CPU ms", "times",
                                                       "worker peak MiB", "openpyxl peak MiB"], reader_rows(bench))
    table("Create a Word document of 200 x 8 beside python-docx",
          ["worker CPU ms", "python-docx CPU ms", "times", "worker peak MiB", "python-docx peak MiB"],
          python_docx_rows(bench))


if __name__ == "__main__":
    main()
