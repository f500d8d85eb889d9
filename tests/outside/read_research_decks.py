"""Owns: officer, openpyxl and LibreOffice read the most extreme decks: texts are whole and inside their
boxes, no box overlaps another, charts have the datasets' values."""

import collections
import io
import itertools
import json
import pathlib
import re
import subprocess
import unicodedata
import unittest
import xml.etree.ElementTree as ET
import zipfile

import office
import openpyxl
from datasets import IDS, LONG_URLS, SCOPE, TITLE, dataset, header
from openpyxl.chart.chartspace import ChartContainer

SUMMARY = """library(officer)
for (path in commandArgs(TRUE)) { deck <- read_pptx(path); for (i in seq_len(length(deck))) {
  boxes <- slide_summary(deck, i); boxes <- boxes[nzchar(boxes$text), c("offx", "offy", "cx", "cy", "text")]
  writeLines(do.call(paste, c(path, i, boxes, sep = "\\t")), useBytes = TRUE) } }"""
CONTENT = (48, 30, 48 + 864, 540 - 10)  # points, as all boxes: left, top, right, bottom
ALPHABETS = ["W" * 160, "the market for heat pumps and boilers doubled once more " * 3,
             "市場規模は過去五年間で二倍に拡大した" * 10, "WMWMWMWMWM WWWWWMMMMM " * 8, 'a&b <c> "d" Ä é ß ﬁ ' * 9]


def figures(kind, labels, series, offset):
    """Every fifth value is missing; an offset below zero brings negative ones."""
    rows = [[label, *(None if (r + s) % 5 == 2 else round(offset + 7.3 * ((r * 7 + s * 5) % 11), 1)
                      for s in range(series))] for r, label in enumerate(labels)]
    columns = [("Key", "text"), *((f"S{s}", "number", "€") for s in range(series))]
    return dataset(columns, rows, [(kind, list(range(1, series + 1)))])


def slide(text, points=4, **more):
    return {"title": text[:80], "body": [text[:160]] * points, "sources": LONG_URLS, **more}


DATASETS = [figures("bar", map(str, range(1980, 2020)), 2, -40),
            figures("line", [f"Quarter {r % 4 + 1} of {2010 + r // 4}" for r in range(40)], 4, 0),
            figures("bar", [f"{r:02} " + "Wide label " * 4 + "W" * 13 for r in range(12)], 3, -30),
            figures("bar", ["Only"], 1, 5)]
POINTS = list(map(slide, ALPHABETS))
CHARTS = [slide(text, 1, chartReference={"datasetID": str(i % 4), "chartIndex": 0})
          for i, text in enumerate(ALPHABETS)]
DECKS = {"least": [{"title": "A", "body": ["b"], "sources": []}] * 3,
         "most": [*POINTS, *CHARTS, *POINTS, slide("Two lines\nand a tab\there", 1)],
         "scoped": [slide(text, sourceIDs=IDS) for text in ALPHABETS],
         **{f"cover-{i}": [slide(text)] * 3 for i, text in enumerate(ALPHABETS)}}


def within(inner, outer):
    return all(inner[i] >= outer[i] and inner[i + 2] <= outer[i + 2] for i in (0, 1))


def overlap(one, other):
    return all(one[i] < other[i + 2] and other[i] < one[i + 2] for i in (0, 1))


def bare(text):
    """The characters that must be seen, however lines are broken and spaces drawn."""
    return re.sub(r"\s|•", "", unicodedata.normalize("NFKC", text))


def words_of(page):
    """The words of a page with their boxes, a point smaller: letters are taken for larger than they are."""
    for word in page.iterfind("{*}word"):
        left, top, right, bottom = (float(word.get(edge)) for edge in ("xMin", "yMin", "xMax", "yMax"))
        slack = 1 + (bottom - top) / 8
        yield (left + 1, top + slack, right - 1, bottom - slack), word.text


class ResearchDecks(office.Case):
    @classmethod
    def prepare(cls):
        datasets = [{"id": str(i), "content": content} for i, content in enumerate(DATASETS)]
        scope, data = cls.folder / "scope.json", cls.folder / "data.json"
        scope.write_text(json.dumps(SCOPE))
        data.write_text(json.dumps(datasets))
        paths = {cls.folder / f"{name}.pptx": name for name in DECKS}
        for path, name in paths.items():
            given = ["--scope", scope] if name == "scoped" else ["--datasets", data]
            office.zelvo("research", "presentation", "-", *given, "-o", path,
                         stdin=json.dumps({"title": "T", "report": "R", "slides": DECKS[name]}))
        summary = subprocess.run(["Rscript", "-e", SUMMARY, *paths], check=True, capture_output=True)
        cls.boxes = {name: [[] for _ in slides] for name, slides in DECKS.items()}
        for line in summary.stdout.decode().splitlines():
            path, number, *inches, text = line.split("\t")
            left, top, width, height = (round(float(value) * 72, 6) for value in inches)
            box = (left, top, left + width, top + height)
            cls.boxes[pathlib.Path(path).stem][int(number) - 1].append((box, text))
        cls.convert("*.pptx", "pdf")

    def test_texts(self):
        for name in DECKS:
            drawn = subprocess.run(["pdftotext", "-bbox", self.folder / "office" / f"{name}.pdf", "-"],
                                   check=True, stdout=subprocess.PIPE).stdout
            pages = ET.fromstring(drawn).iterfind(".//{*}page")
            for page, given, boxes in zip(pages, DECKS[name], self.boxes[name], strict=True):
                (_, title), (_, body), *_ = boxes
                self.assertEqual(bare(title + body), bare(given["title"] + "".join(given["body"])))
                seen = collections.defaultdict(str)
                for word, text in words_of(page):
                    # Words of a chart are in no box of a text.
                    owner, = [owner for owner in boxes if overlap(word, owner[0])] or [None]
                    self.assertTrue(owner is None or within(word, owner[0]), (name, text))
                    seen[owner] += bare(text)
                self.assertIn(bare(TITLE) if "chartReference" in given else "", seen.pop(None, ""))
                self.assertEqual(seen, {owner: bare(owner[1]) for owner in boxes})
                self.assertTrue(all(within(box, CONTENT) for box, _ in boxes))
                for (one, _), (other, _) in itertools.combinations(boxes, 2):
                    self.assertFalse(overlap(one, other), (name, title))

    def test_charts(self):
        shown = set()
        with zipfile.ZipFile(self.folder / "most.pptx") as deck:
            for part in filter(re.compile(r"ppt/charts/chart\d+\.xml").fullmatch, deck.namelist()):
                related = deck.read(part.replace("charts/", "charts/_rels/") + ".rels").decode()
                book = deck.read("ppt" + re.search(r"/embeddings/[\w.-]+", related)[0])
                columns = list(zip(*openpyxl.load_workbook(io.BytesIO(book)).active.values))
                shown.add(tuple(columns))
                chart = ET.fromstring(deck.read(part)).find("{*}chart")
                plot, = ChartContainer.from_tree(chart).plotArea._charts
                for series, (name, *values) in zip(plot.ser, columns[1:], strict=True):
                    self.assertEqual([series.tx.v, *(point.v for point in series.cat.strRef.strCache.pt)],
                                     [name, *columns[0][1:]])
                    self.assertEqual({point.idx: float(point.v) for point in series.val.numRef.numCache.pt},
                                     {i: value for i, value in enumerate(values) if value is not None})
        given = ([map(header, data["columns"]), *(row["cells"] for row in data["rows"])] for data in DATASETS)
        self.assertEqual(shown, {tuple(zip(*rows)) for rows in given})


if __name__ == "__main__":
    unittest.main()
