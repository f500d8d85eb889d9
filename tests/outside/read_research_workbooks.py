"""Owns: openpyxl and LibreOffice read a research workbook's values, table and charts as `research check`
prints them, and LibreOffice computes its formulas to the same results."""

import datetime
import json
import math
import operator
import re
import subprocess
import unittest
import zipfile

import office
import openpyxl
from datasets import IDS, SCOPE, TITLE, URL, RandomFormulas, cell, dataset, header, operation

TEXTS = ["=1+1", "_x0041_ &#65;", " two  spaces\nline\ttab ", "👩‍👩‍👧 שלום 東京", "1", "2024-01-01", "]]>", None]
DATES = ["1899-12-31", "1900-02-28", "1900-03-01", "9999-12-31", "0001-01-01", "2024-02-29", None, None]
NUMBERS = [999999999999999, 0.1, 123456.78901234567, 5e-324, -1e-300, None, -12.5, 1e14]
DATASETS = {
    "plain": dataset([('Key <a&"b">', "text"), ("Day", "date"), ("Amount", "number", "€")],
                     zip(TEXTS, DATES, NUMBERS)),
    "scoped": dataset([("Key", "text"), ("Day", "date")], zip("abc", ["2024-02-29", "1900-02-28", None])),
    # As many rows, columns, calculations, charts and series as there may be.
    "largest": dataset(
        [("Key", "text"), ("Day", "date"), *((f"N{i}", "number") for i in range(10))],
        [[f"Key {i}", f"20{i % 30:02}-01-01", *(round(i / (n + 3), 3) for n in range(8)), None, None]
         for i in range(500)],
        [(kind, [2, 3, 10, 11]) for kind in ("line", "bar") * 2],
        [(row, column, operation("add", cell((row, 2)), cell((row, column - 7))))
         for column in (10, 11) for row in range(500)]),
    **{f"random{seed}": RandomFormulas(seed).dataset() for seed in range(30)}}
DATASETS["scoped"]["rows"][0]["sourceIDs"] = IDS


def rows_of(sheet):
    return [tuple(None if value == "" else value for value in row) for row in sheet.values]


def day(text):
    return (datetime.date.fromisoformat(text) - datetime.date(1899, 12, 30)).days


class ResearchWorkbooks(office.Case):
    @classmethod
    def prepare(cls):
        (cls.folder / "scope.json").write_text(json.dumps(SCOPE))
        cls.checked = {}
        for name, content in DATASETS.items():
            given = ["-", *(["--scope", cls.folder / "scope.json"] if name == "scoped" else [])]
            path = cls.folder / f"{name}.xlsx"
            try:
                checked = office.zelvo("research", "check", *given, stdin=json.dumps(content))
            except subprocess.CalledProcessError:
                if not name.startswith("random"):
                    raise
                continue  # a random formula may be too large
            cls.checked[name] = json.loads(checked)
            given += ["--title", TITLE, "-o", path]
            office.zelvo("research", "workbook", *given, stdin=json.dumps(content))
            # LibreOffice computes only where it finds no result.
            without = cls.folder / f"bare-{name}.xlsx"
            with zipfile.ZipFile(path) as book, zipfile.ZipFile(without, "w") as bare:
                for part in book.namelist():
                    bare.writestr(part, re.sub(rb"</f><v>[^<]*</v>", b"</f>", book.read(part)))
        (cls.folder / "report.md").write_text("Two\n\n| Key | N |\n|---|---|\n| a<b | 1,5 |\n| 01 | |")
        office.zelvo("research", "report", cls.folder / "report.md", "--title", TITLE, "--source", URL,
                     "-o", cls.folder / "report.xlsx")
        cls.convert("*.xlsx", "xlsx:Calc MS Excel 2007 XML")

    def assert_values(self, path, name, date, same_number):
        """Checks a workbook's sheets; returns the workbook."""
        book = openpyxl.load_workbook(path, data_only=True)
        self.assertEqual(book["Sources"].max_column, 6 if name == "scoped" else 1)
        content, cells = self.checked[name]["dataset"], self.checked[name]["cells"]
        head, *found = rows_of(book["Data"])
        self.assertEqual(head, (*map(header, content["columns"]), "Sources"))
        for values, wanted, row in zip(found, cells, content["rows"], strict=True):
            evidence = ["Source ID: " + source for source in row.get("sourceIDs", [])] + row["sources"]
            self.assertEqual(values[-1], "\n".join(evidence) or None)
            for value, cell, column in zip(values[:-1], wanted, content["columns"], strict=True):
                if isinstance(value, (int, float)) and isinstance(cell, (int, float)):
                    self.assertTrue(same_number(value, cell), (value, cell))
                else:
                    self.assertEqual(value, date(cell) if cell and column["kind"] == "date" else cell)
        prose = [(line or None,) for line in (TITLE, *content["report"].split("\n"))]
        self.assertEqual(rows_of(book["Report"])[:len(prose)], prose)
        return book

    def test_openpyxl(self):
        for name in self.checked:
            with self.subTest(name):
                content = self.checked[name]["dataset"]
                path, last = self.folder / f"{name}.xlsx", len(content["rows"]) + 1
                book = self.assert_values(path, name, datetime.date.fromisoformat, operator.eq)
                table = book["Data"].tables["ResearchData"]
                self.assertEqual(table.ref, f"A1:{chr(65 + len(content['columns']))}{last}")
                found = [(chart.tagname, series.tx.v, series.val.numRef.f) for sheet in book
                         for chart in sheet._charts for series in chart.series]
                self.assertEqual(found, [(chart["kind"] + "Chart", header(content["columns"][c]),
                                          f"'Data'!${chr(65 + c)}$2:${chr(65 + c)}${last}")
                                         for chart in content["charts"] for c in chart["valueColumns"]])

    def test_libreoffice(self):
        results = [cell for name in self.checked if name.startswith("random")
                   for row in self.checked[name]["cells"] for cell in row[RandomFormulas.INPUTS:]]
        self.assertTrue(len(results) > 2000 and 0.05 < results.count(None) / len(results) < 0.5)
        for name in self.checked:
            # LibreOffice shows dates without a format as numbers, and saves 15 digits of a number.
            date = datetime.datetime.fromisoformat if name == "scoped" else day
            for stem in (name, "bare-" + name):
                with self.subTest(stem):
                    self.assert_values(self.folder / "office" / f"{stem}.xlsx", name, date,
                                       lambda a, b: math.isclose(a, b, rel_tol=6e-15))

    def test_report(self):
        for path in (self.folder / "report.xlsx", self.folder / "office" / "report.xlsx"):
            sheets = {sheet.title: rows_of(sheet) for sheet in openpyxl.load_workbook(path)}
            lines = (TITLE, "Two", None, "| Key | N |", "|---|---|", "| a<b | 1,5 |", "| 01 | |")
            self.assertEqual(sheets, {"Data": [("Key", "N"), ("a<b", 1.5), ("01", None)],
                                      "Report": [(line,) for line in lines],
                                      "Sources": [("Source URL",), (URL,)]})


if __name__ == "__main__":
    unittest.main()
