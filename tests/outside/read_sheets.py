"""Owns: a whole sheet, extracted in each row form, has the cells that openpyxl reads."""

import csv
import datetime
import io
import json
import random
import re
import subprocess
import unittest
import warnings

import openpyxl
from openpyxl.utils import range_boundaries

import office

warnings.simplefilter("ignore")  # openpyxl says what it does not read itself
TEXTS = ["plain", 'a "quoted", text', "two\nlines", "tab\tand \\ back\\|slash|", " spaces ", "東京 👩‍👩‍👧", "=1+1", "-5", "@x"]


def unescaped(text, escapes):
    return re.sub(r"\\(.)", lambda match: escapes[match.group(1)], text)


def read_tsv(text):
    escapes = {"t": "\t", "n": "\n", "r": "\r", "\\": "\\"}
    return [[unescaped(field, escapes) for field in line.split("\t")] for line in text.split("\n")[:-1]]


def read_markdown(text):
    """Without the header, which is empty. Backslashes are doubled before an escaped pipe only."""
    fields = [re.split(r"(?<=[^\\]) \| ", line[1:-2].replace("|  |", "|   |")) for line in text.split("\n")[2:-1]]
    return [[re.sub(r"(\\*)\\\|", lambda m: m.group(1)[::2] + "|", field.strip(" ")).replace("<br>", "\n")
             for field in line] for line in fields]


FORMS = {"--csv": lambda text: list(csv.reader(io.StringIO(text, newline=""))), "--tsv": read_tsv,
         "--jsonl": lambda text: [list(json.loads(line).values()) for line in text.split("\n")[:-1]]}


def extracted(path, sheet, *options):
    run = subprocess.run([office.ZELVO, "extract", path, "--sheet", sheet, "--no-header", "--cached-formulas", *options],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    return run.returncode, run.stdout.decode(), run.stderr.decode()


def hidden_columns(sheet):
    spans = [range(c.min, c.max + 1) for c in sheet.column_dimensions.values() if c.hidden and c.min]
    return {number for span in spans for number in span}


def expected(sheet, area, include_hidden=False):
    """The visible cells of an area, without trailing rows that have no content."""
    left, top, right, bottom = range_boundaries(area)
    skipped = hidden_columns(sheet)
    rows = [[cell for cell in row if cell.column not in skipped]
            for row in sheet.iter_rows(top, bottom, left, right)
            if include_hidden or not sheet.row_dimensions[row[0].row].hidden]
    while rows and all(cell.value in (None, "") for cell in rows[-1]):
        rows.pop()
    return rows


def is_same(cell, found):
    """Whether a stored value, as JSON or text, is the cell's."""
    value = cell.value
    if cell.data_type == "e":
        return found in ({"error": value}, value)
    if value is None or value == "":
        return found in (None, "")
    if isinstance(value, bool):
        return found in (value, str(value).upper())
    if isinstance(value, (int, float)):
        return float(found) == value
    if isinstance(value, (datetime.datetime, datetime.date, datetime.time)):
        shortest = value.isoformat().replace("T00:00:00", "")
        return found[:19].replace(" ", "T").replace("T00:00:00", "") == shortest[:19]
    return found == value


def difference(path, sheet, area, include_hidden=False):
    """What first differs in any form; None if nothing does."""
    rows = expected(sheet, area, include_hidden)
    options = ["--raw"] + ["--include-hidden"] * include_hidden
    for form, read in FORMS.items():
        status, output, errors = extracted(path, sheet.title, form, *options[form == "--jsonl":])
        found = read(output) if status == 0 else errors
        if [len(row) for row in found] != [len(row) for row in rows]:
            return form, len(found), len(rows)
        for cells, values in zip(rows, found):
            for cell, value in zip(cells, values):
                if not is_same(cell, value):
                    return form, cell.coordinate, cell.value, value
    return None


def area_of(path, sheet):
    """The populated range as the tool says, so that cells without content count alike."""
    inspection = json.loads(office.zelvo("inspect", "--json", path))
    return next(s.get("populatedRange") for s in inspection["sheets"] if s["name"] == sheet)


class Sheets(office.Case):
    @classmethod
    def prepare(cls):
        cls.books = {}
        chance = random.Random(7)
        values = [*TEXTS, 0.1, -5, 1e21, 123456789, True, False, None, datetime.datetime(2024, 2, 29, 12, 30)]
        sizes = {"large": (620, 12), "tall": (3000, 1), "wide": (3, 300), "table": (40, 6)}
        for name, (height, width) in sizes.items():
            rows = [[chance.choice(values) for _ in range(width)] for _ in range(height)] + [["end"]]
            book = openpyxl.load_workbook(office.write_workbook(cls.folder / f"{name}.xlsx", rows))
            cls.hide(book.active, name)
            for cell in (cell for row in book.active.iter_rows() for cell in row):
                if cell.is_date:
                    cell.number_format = "yyyy-mm-dd hh:mm:ss"
            book.save(cls.folder / f"{name}.xlsx")
            cls.books[name] = openpyxl.load_workbook(cls.folder / f"{name}.xlsx").active

    @staticmethod
    def hide(sheet, name):
        """A block of 500 rows and two columns of the large sheet."""
        if name == "large":
            for row in range(60, 560):
                sheet.row_dimensions[row].hidden = True
            for column in "CK":
                sheet.column_dimensions[column].hidden = True

    def test_forms(self):
        for name, sheet in self.books.items():
            path = self.folder / f"{name}.xlsx"
            self.assertIsNone(difference(path, sheet, area_of(path, sheet.title)), name)
            self.assertIsNone(difference(path, sheet, area_of(path, sheet.title), include_hidden=True), name)

    def test_markdown(self):
        path, sheet = self.folder / "table.xlsx", self.books["table"]
        texts = [[cell.value if isinstance(cell.value, str) else None for cell in row] for row in expected(sheet, "A1:F41")]
        found = read_markdown(extracted(path, "Sheet", "--markdown")[1])
        self.assertEqual([len(row) for row in found], [6] * 41)
        for cells, values in zip(texts, found):
            for text, value in zip(cells, values):
                self.assertTrue(text is None or value == text.strip(" "), (text, value))

    def test_what_is_left_out_is_named(self):
        _, output, errors = extracted(self.folder / "large.xlsx", "Sheet", "--csv")
        self.assertEqual(errors, "zelvo: Left out 500 hidden rows: 60-559. --include-hidden includes them.\n"
                                 "zelvo: Left out 2 hidden columns: C, K.\n")


if __name__ == "__main__":
    unittest.main()
