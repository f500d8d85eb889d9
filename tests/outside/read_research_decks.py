"""read_research_decks.py ZELVO: has the most extreme decks drawn, and reads them with R's officer, openpyxl and LibreOffice:
every text is there, whole and inside its box, no box overlaps another, and charts have the datasets' values."""

import collections
import io
import itertools
import json
import re
import subprocess
import sys
import unicodedata
import unittest
import xml.etree.ElementTree as ET
import zipfile

import openpyxl
from openpyxl.chart.chartspace import ChartContainer

import office

ZELVO = sys.argv.pop()
SUMMARY = """library(officer); for (path in commandArgs(TRUE)) { all <- pptx_summary(read_pptx(path)); texts <- all[!is.na(all$text), ]
writeLines(paste(path, texts$slide_id, texts$id, texts$text, sep = "\\t"), useBytes = TRUE) }"""
POINT = 12700  # EMU, as all boxes are: left, top, right, bottom
CONTENT = (609600, 381000, 609600 + 10972800, 6858000 - 127000)
URLS = [f"https://example.org/{'a' * 150}/{i}?b=1&c=%3C" for i in range(3)]
IDS = [f"local-{i}" for i in range(3)]
SCOPE = {"localSnapshotIDs": IDS, "publicSources": {f"page-{i}": url for i, url in enumerate(URLS)}, "records": [
    {"id": name, "kind": "localSnapshot", "label": "Label " * 26, "coverage": "Page 1", "observedAt": "2024-02-29T12:00:00Z"} for name in IDS]}
TITLE = "What <this> & that came to"
ALPHABETS = ["W" * 160, "the market for heat pumps and boilers doubled once more " * 3, "市場規模は過去五年間で二倍に拡大した" * 10,
             "WMWMWMWMWM WWWWWMMMMM " * 8, 'a&b <c> "d" Ä é ß ﬁ ' * 9]


def dataset(kind, rows, label, series, offset):
    """Every fifth value is missing; an offset below zero brings negative ones."""
    cells = [[label(r), *(None if (r + s) % 5 == 2 else round(offset + 7.3 * ((r * 7 + s * 5) % 11), 1) for s in range(series))] for r in range(rows)]
    return {"report": "R", "columns": [{"name": "Key", "kind": "text"}, *({"name": f"S{s}", "kind": "number", "unit": "€"} for s in range(series))],
            "rows": [{"cells": row, "sources": URLS[:1]} for row in cells],
            "charts": [{"title": TITLE, "kind": kind, "categoryColumn": 0, "valueColumns": list(range(1, series + 1))}]}


def slide(text, points=4, **more):
    return {"title": text[:80], "body": [text[:160]] * points, "sources": URLS, **more}


DATASETS = [dataset("bar", 40, lambda r: str(1980 + r), 2, -40), dataset("line", 40, lambda r: f"Quarter {r % 4 + 1} of {2010 + r // 4}", 4, 0),
            dataset("bar", 12, lambda r: f"{r:02} " + "Wide label " * 4 + "W" * 13, 3, -30), dataset("bar", 1, lambda r: "Only", 1, 5)]
POINTS = [slide(text) for text in ALPHABETS]
CHARTS = [slide(text, 1, chartReference={"datasetID": str(i % 4), "chartIndex": 0}) for i, text in enumerate(ALPHABETS)]
DECKS = {"least": [{"title": "A", "body": ["b"], "sources": []}] * 3, "most": [*POINTS, *CHARTS, *POINTS, slide("Two lines\nand a tab\there", 1)],
         "scoped": [slide(text, sourceIDs=IDS) for text in ALPHABETS], **{f"cover-{i}": [slide(text)] * 3 for i, text in enumerate(ALPHABETS)}}


Shape = collections.namedtuple("Shape", "id name box texts")


def shape_of(element):
    """What a slide's XML says of a shape."""
    properties = element.find(".//{*}cNvPr")
    x, y, width, height = (int(element.find(f".//{{*}}{tag}").get(key)) for tag, key in (("off", "x"), ("off", "y"), ("ext", "cx"), ("ext", "cy")))
    return Shape(properties.get("id"), properties.get("name"), (x, y, x + width, y + height),
                 ["".join(paragraph.itertext()) for paragraph in element.iterfind("{*}txBody/{*}p")])


def within(inner, outer, slack=0.0):
    return all(o - slack <= i for i, o in zip(inner[:2], outer[:2])) and all(i <= o + slack for i, o in zip(inner[2:], outer[2:]))


def bare(texts):
    """The characters that must be seen, however lines are broken and spaces drawn."""
    return re.sub(r"\s|•", "", unicodedata.normalize("NFKC", "".join(texts)))


class ResearchDecks(office.Case):
    @classmethod
    def prepare(cls):
        folder = cls.folder
        (folder / "scope.json").write_text(json.dumps(SCOPE))
        (folder / "data.json").write_text(json.dumps([{"id": str(i), "content": content} for i, content in enumerate(DATASETS)]))
        cls.paths = [folder / f"{name}.pptx" for name in DECKS]
        cls.shapes = {}
        for path, (name, slides) in zip(cls.paths, DECKS.items()):
            given = ["--scope", folder / "scope.json"] if name == "scoped" else ["--datasets", folder / "data.json"]
            subprocess.run([ZELVO, "research", "presentation", "-", *given, "-o", path], check=True, stdout=subprocess.DEVNULL,
                           input=json.dumps({"title": "T", "report": "R", "slides": slides}).encode())
            with zipfile.ZipFile(path) as deck:
                roots = [ET.fromstring(deck.read(f"ppt/slides/slide{i + 1}.xml")) for i in range(len(slides))]
            cls.shapes[name] = [[shape_of(found) for kind in ("sp", "graphicFrame") for found in root.iterfind(f".//{{*}}{kind}")
                                 if kind != "sp" or found.find("{*}txBody") is not None] for root in roots]

    def test_officer(self):
        lines = subprocess.run(["Rscript", "-e", SUMMARY, *self.paths], check=True, capture_output=True).stdout.decode().splitlines()
        self.assertEqual(lines, [f"{path}\t{number}\t{shape.id}\t{text}" for path, slides in zip(self.paths, self.shapes.values())
                                 for number, shapes in enumerate(slides, 1) for shape in shapes for text in shape.texts])
        for name, slides in DECKS.items():
            for given, shapes in zip(slides, self.shapes[name]):
                texts = {shape.name: shape.texts for shape in shapes}
                self.assertEqual(texts["Title"] + texts["Points"], [re.sub(r"[\n\t]", " ", text) for text in (given["title"], *given["body"])])
                self.assertEqual(sum(key.startswith("Source ") for key in texts), len(given["sources"] + given.get("sourceIDs", [])))

    def test_openpyxl(self):
        with zipfile.ZipFile(self.folder / "most.pptx") as deck:
            related = [deck.read(f"ppt/slides/_rels/slide{i + 1}.xml.rels").decode() for i in range(16)]
            self.assertEqual(["".join(re.findall(r"charts/chart(\d)", text)) for text in related], [""] * 5 + ["1", "2", "3", "4", "1"] + [""] * 6)
            for number, content in enumerate(DATASETS, 1):
                names = ["Key", *(f"{column['name']} (€)" for column in content["columns"][1:])]
                rows = [tuple(row["cells"]) for row in content["rows"]]
                book = openpyxl.load_workbook(io.BytesIO(deck.read(f"ppt/embeddings/chart-data{number}.xlsx")))
                self.assertEqual([list(sheet.values) for sheet in book], [[tuple(names), *rows]])
                chart = ET.fromstring(deck.read(f"ppt/charts/chart{number}.xml")).find("{*}chart")
                plot, = ChartContainer.from_tree(chart).plotArea._charts
                self.assertEqual(plot.tagname, content["charts"][0]["kind"] + "Chart")
                for series, name, values in zip(plot.ser, names[1:], list(zip(*rows))[1:], strict=True):
                    self.assertEqual([series.tx.v, *(point.v for point in series.cat.strRef.strCache.pt)], [name, *(row[0] for row in rows)])
                    self.assertEqual({point.idx: float(point.v) for point in series.val.numRef.numCache.pt},
                                     {i: value for i, value in enumerate(values) if value is not None})

    def test_libreoffice(self):
        office.convert(self.paths, "pdf", self.folder)
        for name, slides in self.shapes.items():
            drawn = subprocess.run(["pdftotext", "-bbox", self.folder / f"{name}.pdf", "-"], check=True, stdout=subprocess.PIPE).stdout
            for page, shapes in zip(ET.fromstring(drawn).iterfind(".//{*}page"), slides, strict=True):
                for (left, top, right, bottom), other in itertools.combinations([shape.box for shape in shapes], 2):
                    self.assertFalse(left < other[2] and other[0] < right and top < other[3] and other[1] < bottom, (name, other))
                seen = {shape.name: "" for shape in shapes if within(shape.box, CONTENT)}
                for word in page.iterfind("{*}word"):
                    left, top, right, bottom = (float(word.get(edge)) * POINT for edge in ("xMin", "yMin", "xMax", "yMax"))
                    margin = (bottom - top) / 8  # letters are taken for higher and deeper than they are
                    owner, = (shape.name for shape in shapes if within((left, top + margin, right, bottom - margin), shape.box, POINT))
                    seen[owner] += word.text
                for shape in shapes:
                    self.assertIn(bare(TITLE if shape.name == "Chart" else shape.texts), bare(seen[shape.name]), name)


if __name__ == "__main__":
    unittest.main()
