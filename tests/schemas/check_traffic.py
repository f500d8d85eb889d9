"""The schemas against what the programs write and accept, the examples, and the documentation:
check_traffic.py ZELVO WORKER CLEANER"""

import base64
import copy
import json
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
    target = instance
    for key in parents:
        target = target[key]
    if value is DELETED:
        del target[last]
    else:
        target[last] = value
    return instance


def run(*command, stdin=b"", folder=None):
    return subprocess.run([str(part) for part in command], input=stdin, cwd=folder, capture_output=True, timeout=120,
                          check=False)


def answer(program, request):
    """None where the request could not be decoded."""
    process = run(program, stdin=json.dumps(request).encode())
    assert process.returncode == (0 if process.stdout else 65), process
    return json.loads(process.stdout) if process.stdout else None


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
        self.accept(name, instance, {key: closed(schema) for key, schema in SCHEMAS.items()})

    def exchange(self, kind, program, request, keys):
        self.accept(kind + "-request", request)
        response = answer(program, request)
        self.accept_output(kind + "-response", response)
        self.assertEqual(set(response), set(keys.split()))
        return response

    def research(self, *arguments):
        process = run(ZELVO, "research", *arguments)
        self.assertIn(process.returncode, (0, 1), process.stderr)
        return process.stdout or None

    def test_they_are_schemas(self):
        self.assertEqual(len(SCHEMAS), 10)
        for name, schema in SCHEMAS.items():
            Draft202012Validator.check_schema(schema)
            self.assertEqual(schema["$id"], f"urn:zelvo:schema:{name}:1")

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
        for refused in (changed(INSPECT, ["data"], ""), changed(CREATE, ["selection", "sheetName"], "None")):
            self.exchange("worker", WORKER, refused, "error")

    def test_cleaner(self):
        self.exchange("cleaner", CLEANER, CLEAN, "version document report")
        self.exchange("cleaner", CLEANER, changed(CLEAN, ["sheets"], None), "version document report")
        self.exchange("cleaner", CLEANER, changed(CLEAN, ["data"], "UEsDBA=="), "error")

    def test_batch_lines(self):
        with tempfile.TemporaryDirectory() as folder:
            files = ["book.xlsx", "odd\udcff.xlsx", "text.xlsx", "missing.xlsx"]
            for file, source in zip(files, (BOOK, BOOK, Path(__file__))):
                Path(folder, file).write_bytes(source.read_bytes())
            for command in (["inspect"], ["clean", "--output-dir", "out"]):
                lines = [json.loads(line) for line in run(ZELVO, "batch", *command, *files, folder=folder).stdout.splitlines()]
                self.assertEqual(sorted(line["outcome"] for line in lines), ["answered"] * 2 + ["refused"] * 2)
                for line in lines:
                    self.accept_output("batch-line", line)

    def test_research(self):
        self.accept("dataset", example("research-dataset.json"))
        self.accept("datasets", example("research-datasets.json"))
        self.accept("deck", example("research-presentation.json"))
        self.accept_output("dataset-check", json.loads(self.research("check", ROOT / "examples/research-dataset.json")))
        deck = self.research("presentation", ROOT / "examples/research-presentation.json",
                             "--datasets", ROOT / "examples/research-datasets.json")
        self.accept_output("deck", json.loads(deck))

    def test_documentation(self):
        examples = documented("protocol.md")
        self.assertEqual(len(examples), 11)
        for name, block in examples:
            self.accept(name, block)

    def refuse(self, name, instance, wrong, is_accepted=lambda changed: False):
        self.accept(name, instance)
        for path, value in wrong + [([key], DELETED) for key in SCHEMAS[name].get("required", [])]:
            broken = changed(instance, path, value)
            with self.subTest(name, path=path):
                self.assertNotEqual(errors(name, broken), [])
                self.assertFalse(is_accepted(broken), "the program accepts it")

    def test_wrong_requests(self):
        def has_result(program):
            return lambda request: "error" not in (answer(program, request) or {"error": ""})

        self.refuse("worker-request", CREATE, [
            (["operation"], "delete"), (["data"], "not base64!"), (["sourceName"], "a" * 513), (["format"], None),
            (["title"], " "), (["selection"], DELETED), (["selection", "range"], DELETED),
            (["selection", "firstRowIsHeader"], "yes"), (["chart", "valueColumn"], 1.5), (["expectedTable"], {}),
        ], has_result(WORKER))
        self.refuse("cleaner-request", CLEAN, [(["version"], 2), (["sheets"], "Orders"), (["sheets", 0], 1),
                                               (["unmerge"], 1)], has_result(CLEANER))

    def test_wrong_research_data(self):
        blocks = dict(documented("research-data.md"))
        with tempfile.TemporaryDirectory() as folder:
            def is_accepted(name):
                def draws(content):
                    files = {key: Path(folder, key) for key in blocks}
                    for key, block in blocks.items():
                        files[key].write_text(json.dumps(content if key == name else block))
                    return self.research("presentation", files["deck"], "--dataset", files["dataset"],
                                         "--scope", files["scope"])
                return draws

            self.assertTrue(is_accepted("deck")(blocks["deck"]))
            formula = ["calculations", 0, "formula"]
            self.refuse("dataset", blocks["dataset"], [
                (["report"], "\n"), (["columns", 0, "kind"], "money"), (["rows"], []), (["rows", 0, "cells", 1], True),
                (["rows", 0, "cells", 1], 1e15), (["rows", 0, "sources", 0], "ftp://a/b"), (["rows", 0, "sources"], DELETED),
                (["rows", 1, "sourceIDs", 0], "a b"), (["charts", 0, "valueColumns"], [1, 1]), (["charts", 0, "title"], ""),
                (formula + ["op"], "power"), (formula + ["value"], 1), (formula + ["arguments"], []),
                (formula + ["arguments", 0, "row"], DELETED),
            ], is_accepted("dataset"))
            self.refuse("deck", blocks["deck"], [
                (["slides"], blocks["deck"]["slides"][:2]), (["slides", 0, "chartIndex"], 0), (["title"], "\u0007"),
                (["slides", 1, "body"], ["one", "two"]), (["slides", 1, "chartIndex"], "0"), (["slides", 1, "sourceIDs"], "levels"),
                (["slides", 1, "chartReference"], {"datasetID": "a", "chartIndex": 0}), (["dataset"], {}),
            ], is_accepted("deck"))
            self.refuse("scope", blocks["scope"], [
                (["localSnapshotIDs"], {}), (["publicSources"], []), (["records", 0, "kind"], "page"),
                (["records", 0, "label"], DELETED), (["records", 0, "observedAt"], "2024-04-02"),
            ], is_accepted("scope"))
        datasets = example("research-datasets.json")
        self.refuse("datasets", datasets, [([0, "id"], "a/b"), ([1, "content"], DELETED), ([0, "content", "rows"], None)])
        self.assertNotEqual(errors("datasets", datasets * 3), [])

    def test_wrong_output(self):
        table = answer(WORKER, {**CREATE, "operation": "extract"})
        self.refuse("worker-response", table, [
            (["error"], "Both."), (["table", "rows", 0, 0, "value"], {"number": {"_0": 12}}),
            (["table", "rows", 0, 0, "value"], {"integer": {"_0": "12"}}), (["table", "rows", 0, 0, "value"], {}),
            (["table", "sourceSHA256"], "9F"), (["table", "rows", 0, 0, "address"], DELETED), (["table"], DELETED)])
        self.refuse("worker-response", answer(WORKER, CREATE), [(["table"], DELETED), (["document", "validation"], DELETED)])
        self.refuse("worker-response", answer(WORKER, INSPECT), [(["inspection", "sheets", 0, "name"], DELETED)])
        self.refuse("cleaner-response", answer(CLEANER, CLEAN), [
            (["version"], DELETED), (["report", "dropped", 0, "parts"], DELETED), (["report", "sheets", 0, "cells"], -1)])
        line = json.loads(run(ZELVO, "batch", "inspect", BOOK).stdout)
        self.refuse("batch-line", line, [(["outcome"], "refused"), (["inspection"], DELETED), (["status"], 3)])
        check = json.loads(self.research("check", ROOT / "examples/research-dataset.json"))
        self.refuse("dataset-check", check, [(["cells", 0, 0], False), (["calculations", 0, "formula"], DELETED)])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
