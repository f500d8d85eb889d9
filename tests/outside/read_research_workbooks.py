"""read_research_workbooks.py ZELVO: writes workbooks of datasets and of a report, opens them in openpyxl and
LibreOffice, and compares what they see with the datasets as the tool's own check gives them back."""

import datetime
import json
import math
import operator
import re
import subprocess
import sys
import unittest
import zipfile

import openpyxl

import office

ZELVO = sys.argv.pop()
TITLE = 'Prices & "volumes" <2024>'
REPORT = "One.\n\nTwo <b>\tthree & \"four\""
NOTE = ("Formula caches were calculated locally from the frozen dataset. Excel recalculates after inputs change. Missing inputs "
        "and division by zero remain blank.")
TEXTS = ["=1+1", "_x0041_ %41 &#65;", " two  spaces\nline\ttab ", "👩‍👩‍👧 שלום 東京", "12", "2024-01-01", "]]>", None]
DATES = ["1899-12-31", "1900-02-28", "1900-03-01", "9999-12-31", "0001-01-01", "2024-02-29", None, "1970-01-01"]
NUMBERS = [999999999999999, 0.1, 123456.78901234567, 5e-324, -1e-300, None, -12.5, 1e14]
PAGES = {"page-0": "https://a/?0&c", "page-1": "https://a/?1&c", "page-2": "https://b/"}
SCOPE = {"localSnapshotIDs": ["local"], "publicSources": PAGES, "records": [
    {"id": "local", "kind": "localSnapshot", "label": "Notes", "coverage": "Page 1", "provenanceURL": "https://local/"}]}
RECORDS = [("Source ID", "Kind", "Source", "Observed UTC", "Coverage", "URL / local provenance only"),
           ("local", "Local visible excerpt", "Notes", "Not recorded", "Page 1", "Provenance only; no fetch permission: https://local/"),
           *((name, "Public source URL", "Public reference", "Not recorded",
              "Returned public URL; coverage metadata unavailable", url) for name, url in PAGES.items())]


def operand(value):
    """A constant, or a cell at (row, column)."""
    return {"op": "cell", "row": value[0], "column": value[1]} if isinstance(value, tuple) else {"op": "number", "value": value}


def dataset(columns, rows, charts=(), calculations=()):
    """Columns are (name, kind, unit?), charts (kind, value columns), calculations (row, column, operation, operands)."""
    return {"report": REPORT, "columns": [dict(zip(("name", "kind", "unit"), column)) for column in columns],
            "rows": [{"cells": list(cells), "sources": ["https://b/", f"https://a/?{i % 2}&c"]} for i, cells in enumerate(rows)],
            "charts": [{"title": TITLE, "kind": kind, "categoryColumn": 0, "valueColumns": values} for kind, values in charts],
            "calculations": [{"row": row, "column": column, "formula": {"op": operation, "arguments": list(map(operand, operands))}}
                             for row, column, operation, *operands in calculations]}


DATASETS = {
    "plain": dataset([('Key <a&"b">', "text"), ("Day", "date"), ("Amount", "number", "€")], zip(TEXTS, DATES, NUMBERS)),
    "scoped": dataset([("Key", "text"), ("Day", "date")], zip("abc", ["2024-02-29", "1900-02-28", None])),
    "calculated": dataset(
        [("Key", "text"), ("Price", "number"), ("Cost", "number"), ("Result", "number")],
        [["v", 1.1, 2, None], ["w", None, 7, None], ["x", 0, 3.5, None], ["y", 4, 0.25, None], ["z", 1, 2, None]],
        [("line", [1, 2]), ("bar", [3])],
        [(0, 3, "multiply", (0, 1), (3, 3)), (1, 3, "multiply", (1, 1), 2), (2, 3, "divide", (2, 2), (2, 1)),
         (3, 3, "divide", 1, 3), (4, 3, "sum", (1, 1), 2)]),
    # As many rows, columns, calculations, charts and series as there may be.
    "largest": dataset(
        [("Key", "text"), ("Day", "date"), *((f"N{i}", "number") for i in range(10))],
        [[f"Key {i}", f"20{i % 30:02}-01-{i % 28 + 1:02}", *(round(i / (n + 3), 3) for n in range(8)), None, None] for i in range(500)],
        [(kind, [2, 3, 10, 11]) for kind in ("line", "bar") * 2],
        [(i, column, "add", (i, 2), (i, column - 7)) for column in (10, 11) for i in range(500)])}
DATASETS["scoped"]["rows"][0]["sourceIDs"] = ["local"]
# An aggregate over a blank cell passes it over here; in spreadsheets the cell's text is "", which is no number.
BLANK_AGGREGATES = {("calculated-bare", "D6"): "#VALUE!"}


def header(column):
    return column["name"] + (f" ({column['unit']})" if "unit" in column else "")


def rows_of(sheet):
    return [tuple(None if value == "" else value for value in row) for row in sheet.iter_rows(values_only=True)]


class ResearchWorkbooks(office.Case):
    @classmethod
    def prepare(cls):
        folder = cls.folder
        (folder / "scope.json").write_text(json.dumps(SCOPE))
        cls.checked = {}
        for name, content in DATASETS.items():
            (folder / f"{name}.json").write_text(json.dumps(content))
            given = [folder / f"{name}.json", *(["--scope", folder / "scope.json"] if name == "scoped" else [])]
            cls.checked[name] = json.loads(cls.zelvo("check", *given))
            cls.zelvo("workbook", *given, "--title", TITLE, "-o", folder / f"{name}.xlsx")
            # LibreOffice computes only where it finds no result.
            with zipfile.ZipFile(folder / f"{name}.xlsx") as book, zipfile.ZipFile(folder / f"{name}-bare.xlsx", "w") as bare:
                for part in book.namelist():
                    bare.writestr(part, re.sub(rb"</f><v>[^<]*</v>", b"</f>", book.read(part)))
        (folder / "report.md").write_text("Two\n\n| Key | N |\n|---|---|\n| a<b | 1,5 |\n| 01 | |")
        cls.zelvo("report", folder / "report.md", "--title", TITLE, "--source", "https://a/", "-o", folder / "report.xlsx")
        office.convert(sorted(folder.glob("*.xlsx")), "xlsx:Calc MS Excel 2007 XML", folder / "office")

    @staticmethod
    def zelvo(*arguments):
        return subprocess.run([ZELVO, "research", *arguments], check=True, stdout=subprocess.PIPE).stdout

    def assert_values(self, book, stem, checked, date, same_number):
        content = checked["dataset"]
        columns = content["columns"]
        self.assertEqual(book.sheetnames, ["Overview"] * bool(content["charts"]) + ["Data", "Report", "Sources"])
        head, *found = rows_of(book["Data"])
        self.assertEqual(head, (*map(header, columns), "Sources"))
        for r, (row, cells, origin) in enumerate(zip(found, checked["cells"], content["rows"], strict=True), 2):
            evidence = ["Source ID: " + name for name in origin.get("sourceIDs", [])] + origin["sources"]
            for c, (value, cell) in enumerate(zip(row, [*cells, "\n".join(evidence)], strict=True)):
                other = BLANK_AGGREGATES.get((stem, f"{chr(65 + c)}{r}"))
                if isinstance(cell, (int, float)) and not other:
                    self.assertTrue(isinstance(value, (int, float)) and same_number(value, cell), (value, cell))
                else:
                    is_date = cell and c < len(columns) and columns[c]["kind"] == "date"
                    self.assertEqual(value, other or (date(cell) if is_date else cell))
        prose = [TITLE, *REPORT.split("\n"), *([NOTE] if content["calculations"] else [])]
        self.assertEqual(rows_of(book["Report"]), [(line or None,) for line in prose])
        urls = [("Source URL",), *((url,) for url in PAGES.values())]
        self.assertEqual(rows_of(book["Sources"]), RECORDS if stem.startswith("scoped") else urls)

    def test_openpyxl(self):
        for name, checked in self.checked.items():
            with self.subTest(name):
                content, columns = checked["dataset"], checked["dataset"]["columns"]
                book = openpyxl.load_workbook(self.folder / f"{name}.xlsx", data_only=True)
                # Dates are dates with or without a format that says so.
                self.assert_values(book, name, checked, datetime.date.fromisoformat, operator.eq)
                last = len(content["rows"]) + 1
                table = book["Data"].tables["ResearchData"]
                self.assertEqual((table.ref, table.column_names), (f"A1:{chr(65 + len(columns))}{last}", [*map(header, columns), "Sources"]))
                charts = [[(drawn.tagname, series.tx.v, series.cat.strRef.f, series.val.numRef.f) for series in drawn.series]
                          for drawn in (book["Overview"]._charts if content["charts"] else [])]
                self.assertEqual(charts, [[(f"{plan['kind']}Chart", header(columns[c]), f"'Data'!$A$2:$A${last}",
                                            f"'Data'!${chr(65 + c)}$2:${chr(65 + c)}${last}") for c in plan["valueColumns"]]
                                          for plan in content["charts"]])
                data = openpyxl.load_workbook(self.folder / f"{name}.xlsx")["Data"]
                self.assertEqual({cell.coordinate: cell.value for row in data for cell in row if cell.data_type == "f"},
                                 {f"{chr(65 + made['column'])}{made['row'] + 2}": "=" + made["formula"] for made in checked["calculations"]})

    def test_libreoffice(self):
        def day(text):
            return (datetime.date.fromisoformat(text) - datetime.date(1899, 12, 30)).days

        for name, checked in self.checked.items():
            for stem in (name, name + "-bare"):
                with self.subTest(stem):
                    book = openpyxl.load_workbook(self.folder / "office" / f"{stem}.xlsx", data_only=True)
                    # It shows dates without a format as the number of their day, and saves 15 digits of a number.
                    self.assert_values(book, stem, checked, datetime.datetime.fromisoformat if name == "scoped" else day,
                                       lambda a, b: math.isclose(a, b, rel_tol=6e-15))

    def test_report(self):
        for path in (self.folder / "report.xlsx", self.folder / "office" / "report.xlsx"):
            with self.subTest(path.parent.name):
                sheets = {sheet.title: rows_of(sheet) for sheet in openpyxl.load_workbook(path)}
                self.assertEqual(sheets, {
                    "Data": [("Key", "N"), ("a<b", 1.5), ("01", None)], "Sources": [("Source URL",), ("https://a/",)],
                    "Report": [(line,) for line in (TITLE, "Two", None, "| Key | N |", "|---|---|", "| a<b | 1,5 |", "| 01 | |")]})


if __name__ == "__main__":
    unittest.main()
