"""Owns: openpyxl and LibreOffice read the research workbooks and decks of the examples, and the most extreme, as
they were given; LibreOffice computes formulas to the same results."""

import datetime
import io
import itertools
import json
import math
import pathlib
import re
import subprocess
import unicodedata
import unittest
import xml.etree.ElementTree as ET
import zipfile

import office
import openpyxl

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"
TITLE = 'Prices <this> & "that"'
URLS = [f"https://example.org/{'a' * 150}/{i}?b=1&c=%3C" for i in range(3)]
TEXTS = ["=1+1", "_x0041_ &#65;", " two  spaces\nline\ttab ", "👩‍👩‍👧 שלום 東京", "1", "2024-01-01", "]]>", None]
DATES = ["1899-12-31", "1900-02-28", "1900-03-01", "9999-12-31", "0001-01-01", "2024-02-29", None, None]
NUMBERS = [999999999999999, 0.1, 123456.78901234567, 5e-324, -1e-300, None, -12.5, 1e14]
CONTENT = (48, 30, 48 + 864, 540 - 10)  # points: left, top, right, bottom
ALPHABETS = ["W" * 160, "the market for heat pumps and boilers doubled once more " * 3,
             "市場規模は過去五年間で二倍に拡大した" * 10, "WMWMWMWMWM WWWWWMMMMM " * 8, 'a&b <c> "d" Ä é ß ﬁ ' * 9]


def dataset(kinds, rows, charts=(), calculations=()):
    return {"report": "One.\n\nTwo <b>\tthree & \"four\"", "calculations": list(calculations),
            "columns": [{"name": f"C{i} <&>", "kind": kind} for i, kind in enumerate(kinds)],
            "rows": [{"cells": list(cells), "sources": ["https://a/?b&c"]} for cells in rows],
            "charts": [{"title": TITLE, "kind": kind, "categoryColumn": 0, "valueColumns": columns}
                       for kind, columns in charts]}


def sums(rows):
    """The formulas of two columns, each the sum of two cells of its row."""
    for column, row in itertools.product((10, 11), range(rows)):
        cells = [{"op": "cell", "row": row, "column": source} for source in (2, column - 7)]
        yield {"row": row, "column": column, "formula": {"op": "add", "arguments": cells}}


DATASETS = {
    "example": json.loads((EXAMPLES / "research-dataset.json").read_text()),
    "unusual": dataset(["text", "date", "number"], zip(TEXTS, DATES, NUMBERS)),
    # As many rows, columns, calculations, charts and series as there may be.
    "largest": dataset(["text", "date"] + ["number"] * 10,
                       [[f"Key {i}", f"20{i % 30:02}-01-01", *(round(i / (n + 3), 3) for n in range(8)), None, None]
                        for i in range(500)],
                       [(kind, [2, 3, 10, 11]) for kind in ("line", "bar") * 2], sums(500))}
FIGURES = [dataset(["text"] + ["number"] * series,
                   [[f"{row:02} {label}", *(round(offset + 7.3 * ((row * 7 + s * 5) % 11), 1) for s in range(series))]
                    for row in range(count)], [(kind, list(range(1, series + 1)))])
           for kind, label, count, series, offset in (("bar", "", 40, 2, -40), ("line", "Quarter", 40, 4, 0),
                                                      ("bar", "Wide label " * 4 + "W" * 13, 12, 3, -30))]


def slide(text, points=4, **more):
    return {"title": text[:80], "body": [text[:160]] * points, "sources": URLS, **more}


POINTS = list(map(slide, ALPHABETS))
CHARTS = [slide(text, 1, chartReference={"datasetID": str(i % 3), "chartIndex": 0}) for i, text in enumerate(ALPHABETS)]
DECKS = {"example": json.loads((EXAMPLES / "research-presentation.json").read_text())["slides"],
         "least": [{"title": "A", "body": ["b"], "sources": []}] * 3, "most": [*POINTS, *CHARTS, *POINTS],
         **{f"cover-{i}": [slide(text)] * 3 for i, text in enumerate(ALPHABETS)}}


def comparable(value):
    """Dates as days: LibreOffice shows those without a format as numbers."""
    if isinstance(value, datetime.datetime):
        value = value.date()
    if isinstance(value, datetime.date):
        return value.toordinal() - datetime.date(1899, 12, 30).toordinal()
    return None if value == "" else value


def rows_of(sheet):
    return [list(map(comparable, row)) for row in sheet.values]


def bare(text):
    """The characters that must be seen, however lines are broken and spaces drawn."""
    return re.sub(r"\s|•", "", unicodedata.normalize("NFKC", text))


def words_of(page):
    """The words of a page with their boxes, a point smaller: letters are taken for larger than they are."""
    for word in page.iterfind("{*}word"):
        left, top, right, bottom = (float(word.get(edge)) for edge in ("xMin", "yMin", "xMax", "yMax"))
        slack = 1 + (bottom - top) / 8
        yield (left + 1, top + slack, right - 1, bottom - slack), word.text


class Research(office.Case):
    @classmethod
    def prepare(cls):
        cls.checked = {}
        for name, content in DATASETS.items():
            text, path = json.dumps(content), cls.folder / f"{name}.xlsx"
            cls.checked[name] = json.loads(office.zelvo("research", "check", "-", stdin=text))
            office.zelvo("research", "workbook", "-", "--title", TITLE, "-o", path, stdin=text)
            # LibreOffice computes only where it finds no result.
            with zipfile.ZipFile(path) as book, zipfile.ZipFile(cls.folder / f"bare-{name}.xlsx", "w") as changed:
                for part in book.namelist():
                    changed.writestr(part, re.sub(rb"</f><v>[^<]*</v>", b"</f>", book.read(part)))
        cls.convert("*.xlsx", "xlsx:Calc MS Excel 2007 XML")
        data = cls.folder / "data.json"
        data.write_text(json.dumps([{"id": str(i), "content": content} for i, content in enumerate(FIGURES)]))
        for name, slides in DECKS.items():
            given = EXAMPLES / "research-datasets.json" if name == "example" else data
            office.zelvo("research", "presentation", "-", "--datasets", given, "-o", cls.folder / f"{name}.pptx",
                         stdin=json.dumps({"title": "T", "report": "R", "slides": slides}))
        cls.convert("*.pptx", "pdf")

    def assert_values(self, name, path, tolerance):
        book = openpyxl.load_workbook(path, data_only=True)
        content, cells = self.checked[name]["dataset"], self.checked[name]["cells"]
        _, *found = rows_of(book["Data"])
        for (*values, sources), wanted, row in zip(found, cells, content["rows"], strict=True):
            self.assertEqual(sources, "\n".join(row["sources"]))
            for value, cell, column in zip(values, wanted, content["columns"], strict=True):
                if column["kind"] == "number" and None not in (value, cell):
                    self.assertTrue(math.isclose(value, cell, rel_tol=tolerance), (value, cell))
                else:
                    is_date = cell and column["kind"] == "date"
                    self.assertEqual(value, comparable(datetime.date.fromisoformat(cell) if is_date else cell))
        return book

    def test_workbooks(self):
        for name in DATASETS:
            book = self.assert_values(name, self.folder / f"{name}.xlsx", 0)
            given = [chart["kind"] + "Chart" for chart in DATASETS[name].get("charts", [])]
            self.assertEqual([chart.tagname for sheet in book for chart in sheet._charts], given)
            for stem in (name, "bare-" + name):  # LibreOffice saves 15 digits of a number
                self.assert_values(name, self.folder / "office" / f"{stem}.xlsx", 6e-15)

    def test_texts_of_decks(self):
        for name, slides in DECKS.items():
            drawn = subprocess.run(["pdftotext", "-bbox", self.folder / "office" / f"{name}.pdf", "-"], check=True,
                                   stdout=subprocess.PIPE).stdout
            for page, given in zip(ET.fromstring(drawn).iterfind(".//{*}page"), slides, strict=True):
                words = list(words_of(page))
                seen = "".join(bare(text) for _, text in words)
                for text in (given["title"], *given["body"]):
                    self.assertIn(bare(text), seen)
                for box, text in words:
                    is_inside = all(box[i] >= CONTENT[i] and box[i + 2] <= CONTENT[i + 2] for i in (0, 1))
                    self.assertTrue(is_inside, (name, text))
                for (one, text), (other, _) in itertools.combinations(words, 2):
                    is_apart = any(one[i] >= other[i + 2] or other[i] >= one[i + 2] for i in (0, 1))
                    self.assertTrue(is_apart or "chartReference" in given, (name, text))

    def test_charts_of_decks(self):
        with zipfile.ZipFile(self.folder / "most.pptx") as deck:
            books = [deck.read(name) for name in deck.namelist() if name.endswith(".xlsx")]
        shown = {str(rows_of(openpyxl.load_workbook(io.BytesIO(book)).active)[1:]) for book in books}
        self.assertEqual(shown, {str([row["cells"] for row in data["rows"]]) for data in FIGURES})


if __name__ == "__main__":
    unittest.main()
