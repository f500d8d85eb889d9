"""Owns: openpyxl and LibreOffice read the research workbooks and decks of the examples, and the most extreme, as
they were given; LibreOffice computes formulas to the same results."""

import collections
import datetime
import io
import itertools
import json
import math
import pathlib
import random
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
NUMBER = re.compile(r"[-−]?[\d,]*\.?\d*(E[-+]\d+)?")
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


VOCABULARY = [["market", "for", "heat", "pumps", "I", "€12", "W" * 12, "Rindfleischetikettierungsüberwachung"],
              ["市場規模", "は過去五年間で、", "拡大した。", "GDP"], ["שלום", "ירושלים", "גדולה", "2023"],
              ["Рост", "насосов", "щ" * 9]]


def random_deck(seed):
    """Slides and their datasets: texts and numbers of every size in four scripts."""
    chance = random.Random(seed)

    def text(limit):
        words = " ".join(chance.choices(chance.choice(VOCABULARY), k=chance.randint(1, max(1, limit // 4))))
        return words[:chance.randint(1, limit)].strip() or "A"

    data = []
    for kind in ("bar", "line"):
        count, series, most, scale = (chance.choice(list(sizes)) for sizes in (
            range(2, 41), range(1, 5), [4, 12, 60], [10 ** power for power in range(-9, 13)]))
        rows = [[1] * series] * 2  # as many values as a line must have
        rows += [[chance.choice([None, 0, 7, round(chance.uniform(-9, 90), 2)]) for _ in range(series)]
                 for _ in range(count - 2)]
        content = dataset(["text"] + ["number"] * series,
                          [[f"{i} {text(most)}"[:60], *(n and n * scale for n in row)] for i, row in enumerate(rows)],
                          [(kind, list(range(1, series + 1)))])
        for column in content["columns"]:
            column["name"], column["unit"] = f"{column['name']} {text(most)}", "kWh"
        data.append(content | {"charts": [content["charts"][0] | {"title": text(160)}]})
    charts = [{}, {}, {}, *({"chartReference": {"datasetID": id, "chartIndex": 0}} for id in "01")]
    return [{"title": text(80), "body": [text(160) for _ in range(1 if chart else chance.randint(1, 4))],
             "sources": URLS[:chance.randint(0, 3)], **chart} for chart in charts], data


def slide(text, points=4, **more):
    return {"title": text[:80], "body": [text[:160]] * points, "sources": URLS, **more}


POINTS = list(map(slide, ALPHABETS))
CHARTS = [slide(text, 1, chartReference={"datasetID": str(i % 3), "chartIndex": 0}) for i, text in enumerate(ALPHABETS)]
DECKS = {"example": json.loads((EXAMPLES / "research-presentation.json").read_text())["slides"],
         "least": [{"title": "A", "body": ["b"], "sources": []}] * 3, "most": [*POINTS, *CHARTS, *POINTS],
         **{f"cover-{i}": [slide(text)] * 3 for i, text in enumerate(ALPHABETS)}}
RANDOM = {f"random-{seed}": random_deck(seed) for seed in range(200)}
ALL = DECKS | {name: slides for name, (slides, _) in RANDOM.items()}


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


def shapes_of(deck, index):
    """The boxes of a slide's shapes in points, with their texts; a chart's text is that of its part."""
    slide = ET.fromstring(deck.read(f"ppt/slides/slide{index}.xml"))
    for shape in (*slide.iterfind(".//{*}sp"), *slide.iterfind(".//{*}graphicFrame")):
        x, y, width, height = (int(value) / 12700 for edge in ("off", "ext")
                               for node in shape.iterfind(f".//{{*}}{edge}") for value in node.attrib.values())
        if shape.tag.endswith("}graphicFrame"):
            relationships = deck.read(f"ppt/slides/_rels/slide{index}.xml.rels").decode()
            chart = deck.read("ppt/charts/" + re.search(r"chart\d+\.xml", relationships)[0])
            texts = list(ET.fromstring(chart).itertext())
            if b'rot="-2700000"' in chart:  # diagonal words are read in pieces
                texts = [" ".join(texts)]
        else:
            texts = [" ".join(node.text for node in shape.iterfind(".//{*}t"))]
        yield (x, y, x + width, y + height), texts


def texts_hold(word, texts):
    """Whether a word that is seen, perhaps in the order of its glyphs, is in texts; in a chart as a whole word."""
    seen = [bare(part) for part in (word, word[::-1])]
    if len(texts) == 1 or re.search("[\u3000-\u9fff]", word):
        return any(part in bare("".join(texts)) for part in seen)
    return any(part.strip("()") in map(str.strip, re.split(r"[\s()]", " ".join(texts))) for part in seen)


def colours_of(package, theme):
    return {node.tag.split("}")[1]: node[0].get("val")
            for node in ET.fromstring(package.read(theme)).find(".//{*}clrScheme")}


def linear(colour):
    values = (byte / 255 for byte in bytes.fromhex(colour))
    return [value / 12.92 if value <= 0.04045 else ((value + 0.055) / 1.055) ** 2.4 for value in values]


def product(matrix, vector):
    return [min(1, max(0, sum(a * b for a, b in zip(row, vector)))) for row in matrix]


LUMINANCE = [0.2126, 0.7152, 0.0722]
# How colours are seen: by most, without red, green or blue cones (Machado and others, 2009), and in greyscale.
SIGHTS = [[[1, 0, 0], [0, 1, 0], [0, 0, 1]], [LUMINANCE] * 3,
          [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216], [-0.003882, -0.048116, 1.051998]],
          [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413], [-0.01182, 0.04294, 0.968881]],
          [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602], [0.004733, 0.691367, 0.3039]]]


def lab(colour):
    """CIELAB, in which a distance of 2 can just be seen."""
    tristimulus = product([[0.4124, 0.3576, 0.1805], LUMINANCE, [0.0193, 0.1192, 0.9505]], colour)
    relative = (value / white for value, white in zip(tristimulus, (0.9505, 1, 1.089)))
    x, y, z = (value ** (1 / 3) if value > 0.008856 else 7.787 * value + 16 / 116 for value in relative)
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def contrast(one, other):
    light = sorted(product([LUMINANCE], linear(colour))[0] + 0.05 for colour in (one, other))
    return light[1] / light[0]


def pixels_like(pdf, page, colour, box):
    """How many pixels of a page have nearly that colour; `box` is in points."""
    left, top, right, bottom = map(round, box)
    size = ["-x", left, "-y", top, "-W", right - left, "-H", bottom - top]
    command = map(str, ["pdftoppm", "-r", 72, "-f", page, "-l", page, *size, pdf])
    bitmap = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout.split(b"\n", 3)[3]
    return sum(max(abs(a - b) for a, b in zip(bitmap[i:i + 3], bytes.fromhex(colour))) < 12
               for i in range(0, len(bitmap), 3))


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
        office.zelvo("research", "workbook", EXAMPLES / "research-dataset.json", "--title", TITLE, "--theme", "-o",
                     cls.folder / "themed.xlsx")
        cls.convert("themed.xlsx", "pdf")
        examples = json.loads((EXAMPLES / "research-datasets.json").read_text())
        data = cls.folder / "data.json"
        for name, slides in ALL.items():
            contents = RANDOM[name][1] if name in RANDOM else FIGURES
            given = [{"id": str(i), "content": content} for i, content in enumerate(contents)]
            data.write_text(json.dumps(examples if name == "example" else given))
            office.zelvo("research", "presentation", "-", "--datasets", data, "-o", cls.folder / f"{name}.pptx",
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
        for name, slides in ALL.items():
            drawn = subprocess.run(["pdftotext", "-bbox", self.folder / "office" / f"{name}.pdf", "-"], check=True,
                                   stdout=subprocess.PIPE).stdout
            with zipfile.ZipFile(self.folder / f"{name}.pptx") as deck:
                pages = ET.fromstring(drawn).iterfind(".//{*}page")
                for i, (page, given) in enumerate(zip(pages, slides, strict=True), 1):
                    with self.subTest(deck=name, slide=i):
                        self.assert_page(list(words_of(page)), given, list(shapes_of(deck, i)))

    def assert_page(self, words, given, shapes):
        """Every text is seen, inside its shape; no word of a chart is broken, and no two words overlap."""
        texts = bare("".join((given["title"], *given["body"])))  # not read in their order if directions are mixed
        self.assertFalse(collections.Counter(texts) - collections.Counter(bare("".join(text for _, text in words))))
        for box, text in words:
            held = [texts for area, texts in shapes
                    if all(box[i] >= area[i] and box[i + 2] <= area[i + 2] for i in (0, 1))]
            self.assertTrue(any(map(texts_hold, itertools.repeat(text), held)) or NUMBER.fullmatch(text), (text, box))
        for (one, text), (other, _) in itertools.combinations(words, 2):
            is_apart = any(one[i] >= other[i + 2] or other[i] >= one[i + 2] for i in (0, 1))
            self.assertTrue(is_apart or "chartReference" in given, text)

    def test_colours(self):
        with zipfile.ZipFile(self.folder / "most.pptx") as deck:
            colours = colours_of(deck, "ppt/theme/theme1.xml")
            slides = [list(shapes_of(deck, i + 1)) for i in range(len(DECKS["most"]))]
        accents = [colours[f"accent{i}"] for i in range(1, 5)]
        for sight in SIGHTS:
            seen = [lab(product(sight, linear(colour))) for colour in accents]
            self.assertGreater(min(math.dist(*pair) for pair in itertools.combinations(seen, 2)), 15)
        for text, paper in (("dk1", "lt1"), ("dk1", "lt2"), ("dk2", "lt1"), ("lt1", "dk2"), ("accent5", "lt1")):
            self.assertGreaterEqual(contrast(colours[text], colours[paper]), 4.5)
        for i, given in enumerate(DECKS["most"]):
            if "chartReference" not in given:
                continue
            frame = max((box for box, _ in slides[i]), key=lambda box: box[3] - box[1])
            data = FIGURES[int(given["chartReference"]["datasetID"])]
            for accent in accents[:len(data["columns"]) - 1]:
                self.assertGreater(pixels_like(self.folder / "office" / "most.pdf", i + 1, accent, frame), 30)
        for accent in accents[:2]:
            self.assertGreater(pixels_like(self.folder / "office" / "themed.pdf", 1, accent, (0, 0, 999, 999)), 30)

    def test_charts_of_decks(self):
        with zipfile.ZipFile(self.folder / "most.pptx") as deck:
            books = [deck.read(name) for name in deck.namelist() if name.endswith(".xlsx")]
        shown = {str(rows_of(openpyxl.load_workbook(io.BytesIO(book)).active)[1:]) for book in books}
        self.assertEqual(shown, {str([row["cells"] for row in data["rows"]]) for data in FIGURES})


if __name__ == "__main__":
    unittest.main()
