"""Owns: a whole sheet, extracted in each row form, has the cells that openpyxl reads."""

import csv
import datetime
import io
import itertools
import json
import random
import re
import unittest

import office
import openpyxl

TEXTS = ["plain", 'a "quoted", text', "two\nlines", "tab\tand \\ back\\|slash|", " spaces ", "東京 👩‍👩‍👧", "=1+1", "-5", "@x"]


def unescaped(text, escapes):
    return re.sub(r"\\(.)", lambda match: escapes[match.group(1)], text)


def read_tsv(text):
    escapes = {"t": "\t", "n": "\n", "r": "\r", "\\": "\\"}
    return [[unescaped(field, escapes) for field in line.split("\t")] for line in text.split("\n")[:-1]]


FORMS = {"--csv": lambda text: list(csv.reader(io.StringIO(text, newline=""))), "--tsv": read_tsv,
         "--jsonl": lambda text: [list(json.loads(line).values()) for line in text.split("\n")[:-1]]}


def expected(sheet, include_hidden):
    """The visible cells, without trailing rows that have no content."""
    hidden = {number for c in sheet.column_dimensions.values() if c.hidden for number in range(c.min, c.max + 1)}
    rows = [[cell for cell in row if cell.column not in hidden] for row in sheet.iter_rows()
            if include_hidden or not sheet.row_dimensions[row[0].row].hidden]
    while rows and all(cell.value in (None, "") for cell in rows[-1]):
        rows.pop()
    return rows


def is_same(cell, found):
    """Whether a stored value, as JSON or text, is the cell's."""
    value = cell.value
    if value is None or value == "":
        return found in (None, "")
    if isinstance(value, bool):
        return found in (value, str(value).upper())
    if isinstance(value, (int, float)):
        return float(found) == value
    if isinstance(value, datetime.datetime):
        return found.replace(" ", "T")[:16] == value.isoformat()[:16]
    return found == value


class Sheets(office.Case):
    @classmethod
    def prepare(cls):
        chance = random.Random(7)
        values = [*TEXTS, 0.1, -5, 1e21, 123456789, True, False, None, datetime.datetime(2024, 2, 29, 12, 30)]
        for name, (height, width) in {"large": (620, 12), "tall": (3000, 1), "wide": (3, 300)}.items():
            book = openpyxl.Workbook()
            for _ in range(height):
                book.active.append([chance.choice(values) for _ in range(width)])
            book.active.append(["end"])
            for cell in itertools.chain(*book.active):
                if cell.is_date:
                    cell.number_format = "yyyy-mm-dd hh:mm:ss"
                elif isinstance(cell.value, str):
                    cell.data_type = "s"  # whatever it begins with
            if name == "large":
                for row in range(60, 560):
                    book.active.row_dimensions[row].hidden = True
                for column in "CK":
                    book.active.column_dimensions[column].hidden = True
            book.save(cls.folder / f"{name}.xlsx")

    def test_forms(self):
        for name, include_hidden, form in itertools.product(["large", "tall", "wide"], [False, True], FORMS):
            path = self.folder / f"{name}.xlsx"
            rows = expected(openpyxl.load_workbook(path).active, include_hidden)
            given = ["--no-header", form] + ["--raw"] * (form != "--jsonl") + ["--include-hidden"] * include_hidden
            found = FORMS[form](office.zelvo("extract", path, *given))
            self.assertEqual([len(row) for row in found], [len(row) for row in rows])
            for cell, value in zip(itertools.chain(*rows), itertools.chain(*found)):
                self.assertTrue(is_same(cell, value), (form, cell.coordinate, cell.value, value))


if __name__ == "__main__":
    unittest.main()
