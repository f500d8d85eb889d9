"""The schemas against what the programs write and accept, the examples, and the documentation:
check_traffic.py ZELVO WORKER CLEANER"""

import base64
import copy
import functools
import json
import operator
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from jsonschema import Draft202012Validator, RefResolver

ROOT = Path(__file__).resolve().parents[2]
ZELVO, WORKER, CLEANER = sys.argv[1:4]
BOOK = ROOT / "examples/quarterly-sales.xlsx"
SCHEMAS = {path.stem: json.loads(path.read_text()) for path in sorted((ROOT / "schemas").glob("*.json"))}
INSPECT = {"operation": "inspect", "data": base64.b64encode(BOOK.read_bytes()).decode(), "sourceName": BOOK.name}
SELECTION = {"sheetName": "Quarter", "range": "A1:D5", "firstRowIsHeader": True, "includeHiddenRows": False,
             "allowCachedFormulaValues": True}
CREATE = {**INSPECT, "operation": "create", "selection": SELECTION, "format": "pptx", "title": "Sales",
          "chart": {"categoryColumn": 0, "valueColumn": 1, "title": "Products"}}
CLEAN = {"version": 1, "sourceName": BOOK.name, "data": INSPECT["data"], "sheets": ["Orders"], "plainFormats": True}
DELETED = object()


def closed(schema):
    """The same schema, refusing keys that it does not describe. For what the programs write."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    strict = {key: closed(part) for key, part in schema.items()}
    if schema.get("type") == "object" and isinstance(schema.get("properties"), dict):
        strict["additionalProperties"] = False
    return strict


def errors(name, instance, schemas=SCHEMAS):
    store = {schema["$id"]: schema for schema in schemas.values()}
    schema = schemas[name]
    found = Draft202012Validator(schema, resolver=RefResolver(schema["$id"], schema, store)).iter_errors(instance)
    return [f"{name}: {'/'.join(map(str, error.path))}: {error.message[:200]}" for error in found]


def changed(instance, path, value):
    instance = copy.deepcopy(instance)
    *parents, last = path
    target = functools.reduce(operator.getitem, parents, instance)
    target[last] = value
    if value is DELETED:
        del target[last]
    return instance


def run(*command, stdin=b"", folder=None):
    return subprocess.run(command, input=stdin, cwd=folder, capture_output=True, timeout=120, check=False)


def answer(program, request):
    """None where the request could not be decoded."""
    process = run(program, stdin=json.dumps(request).encode())
    assert process.returncode == (0 if process.stdout else 65), process
    return json.loads(process.stdout or "null")


def documented(page):
    """The JSON of a page, by the schema that stands above it; "…" shortens texts."""
    text = (ROOT / "docs" / page).read_text()
    blocks = re.findall(r"<!-- schema: ([a-z-]+) -->\n```json\n(.*?)```", text, re.S)
    return [(name, json.loads(block.replace("…", ""))) for name, block in blocks]


def example(name):
    return json.loads((ROOT / "examples" / name).read_text())


class Schemas(unittest.TestCase):
    def accept(self, name, instance, schemas=SCHEMAS):
        self.assertEqual(errors(name, instance, schemas), [])

    def accept_output(self, name, instance):
        self.accept(name, instance, closed(SCHEMAS))

    def exchange(self, kind, program, request, keys):
        self.accept(kind + "-request", request)
        response = answer(program, request)
        self.accept_output(kind + "-response", response)
        self.assertEqual(set(response), set(keys.split()))
        return response

    def test_worker(self):
        self.exchange("worker", WORKER, INSPECT, "inspection")
        table = self.exchange("worker", WORKER, {**CREATE, "operation": "extract"}, "table")["table"]
        everything = {**SELECTION, "sheetName": "Orders", "range": "A1:H25", "includeHiddenRows": True}
        self.exchange("worker", WORKER, {**INSPECT, "operation": "extract", "selection": everything}, "table")
        for kind in ("docx", "pptx"):
            made = self.exchange("worker", WORKER, {**CREATE, "format": kind}, "table document")["document"]
            request = {"operation": "validate", "data": made["data"], "sourceName": "", "format": kind,
                       "chart": CREATE["chart"], "expectedTable": table, "title": None, "unknown": 1}
            self.exchange("worker", WORKER, request, "validation")
        self.exchange("worker", WORKER, changed(CREATE, ["selection", "sheetName"], "None"), "error")

    def test_cleaner(self):
        self.exchange("cleaner", CLEANER, CLEAN, "version document report")
        self.exchange("cleaner", CLEANER, changed(CLEAN, ["data"], "UEsDBA=="), "error")

    def test_batch_lines(self):
        with tempfile.TemporaryDirectory() as folder:
            files = ["book.xlsx", "odd\udcff.xlsx", "missing.xlsx"]
            for file in files[:2]:
                Path(folder, file).write_bytes(BOOK.read_bytes())
            for command in (["inspect"], ["clean", "--output-dir", "out"]):
                lines = run(ZELVO, "batch", *command, *files, folder=folder).stdout.splitlines()
                self.assertEqual(len(lines), 3)
                for line in map(json.loads, lines):
                    self.accept_output("batch-line", line)

    def test_research(self):
        for name in ("dataset", "datasets", "presentation"):
            self.accept("deck" if name == "presentation" else name, example(f"research-{name}.json"))
        check = run(ZELVO, "research", "check", ROOT / "examples/research-dataset.json")
        self.accept_output("dataset-check", json.loads(check.stdout))
        deck = run(ZELVO, "research", "presentation", ROOT / "examples/research-presentation.json",
                   "--datasets", ROOT / "examples/research-datasets.json")
        self.accept_output("deck", json.loads(deck.stdout))

    def test_documentation(self):
        examples = documented("protocol.md")
        self.assertEqual(len(examples), 11)
        for name, block in examples:
            self.accept(name, block)

    def refuse(self, name, instance, wrong, program=None):
        """Each change, and each missing key that is required, is an error, for the program, too."""
        self.accept(name, instance)
        Draft202012Validator.check_schema(SCHEMAS[name])
        for path, value in wrong + [([key], DELETED) for key in SCHEMAS[name].get("required", [])]:
            broken = changed(instance, path, value)
            self.assertNotEqual(errors(name, broken), [], (name, path))
            self.assertTrue(program is None or "error" in (answer(program, broken) or "error"), (name, path))

    def test_wrong_requests(self):
        self.refuse("worker-request", CREATE, [
            (["operation"], "delete"), (["data"], "not base64!"), (["sourceName"], "a" * 513), (["format"], None),
            (["title"], " "), (["selection", "range"], DELETED), (["chart", "valueColumn"], 1.5)], WORKER)
        self.refuse("cleaner-request", CLEAN, [(["version"], 2), (["sheets", 0], 1), (["unmerge"], 1)], CLEANER)

    def test_wrong_research_data(self):
        blocks = dict(documented("research-data.md"))
        formula = ["calculations", 0, "formula"]
        self.refuse("dataset", blocks["dataset"], [
            (["report"], "\n"), (["columns", 0, "kind"], "money"), (["rows"], []), (["rows", 0, "cells", 1], 1e15),
            (["rows", 0, "sources", 0], "ftp://a/b"), (["rows", 1, "sourceIDs", 0], "a b"),
            (["charts", 0, "valueColumns"], [1, 1]), (formula + ["op"], "power"), (formula + ["arguments"], [])])
        self.refuse("deck", blocks["deck"], [
            (["slides"], blocks["deck"]["slides"][:2]), (["slides", 0, "chartIndex"], 0), (["title"], "\u0007"),
            (["slides", 1, "body"], ["one", "two"]), (["slides", 1, "sourceIDs"], "levels"), (["dataset"], {})])
        self.refuse("scope", blocks["scope"], [(["localSnapshotIDs"], {}), (["records", 0, "kind"], "page")])
        self.refuse("datasets", example("research-datasets.json"), [([0, "id"], "a/b"), ([1, "content"], DELETED)])

    def test_wrong_output(self):
        self.refuse("worker-response", answer(WORKER, {**CREATE, "operation": "extract"}), [
            (["error"], "Both."), (["table", "rows", 0, 0, "value"], {"integer": {"_0": "12"}}), (["table"], DELETED)])
        self.refuse("cleaner-response", answer(CLEANER, CLEAN), [(["report", "dropped", 0, "parts"], DELETED)])
        line = json.loads(run(ZELVO, "batch", "inspect", BOOK).stdout)
        self.refuse("batch-line", line, [(["outcome"], "refused"), (["inspection"], DELETED)])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
