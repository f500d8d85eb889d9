"""Owns: python-docx and LibreOffice read a created document's table, header row and chart as its source."""

import itertools
import unittest
import xml.etree.ElementTree as ET
import zipfile

import docx
import office
import openpyxl

TEXTS = ["Straße, Ærø, e\u0301", "שלום 12 ש", "- – — − \u00AD", '<a href="x">&amp;</a>', "'quoted' \"twice\"",
         " space at both ends ", "two  spaces   and three", "東京 トウキョウ", "👩‍👩‍👧 🇫🇷 𝔘", "_x0041_ %41 &#65;",
         "=1+1", "]]>", "one\ntwo\tthree", None, "last"]
FIGURES = [["Month & year", "Revenue <net>", "Note"],
           *([f"Month {i}", 1000.125 + 137 * (i % 7) - 300 * (i % 5), f"{i},3"] for i in range(30))]
TABLES = {"large": [[f"{r},{c}" for c in range(8)] for r in range(201)],
          "texts": [TEXTS[i:i + 3] for i in range(0, 15, 3)], "chart": FIGURES, "chart-of-one": FIGURES[:2]}
SPACES = {"tab": "\t", "line-break": "\n", "s": " "}


def shown(value):
    return f"${value:,.2f}" if isinstance(value, float) else value or ""


EXPECTED = {name: [list(map(shown, row)) for row in rows] for name, rows in TABLES.items()}


def attribute(element, name, default=""):
    return next((value for key, value in element.items() if key.endswith("}" + name)), default)


def text_of(element):
    """The text of an OpenDocument paragraph, whose runs of spaces, tabs and line breaks are elements."""
    space = SPACES.get(element.tag.partition("}")[2], "") * int(attribute(element, "c", "1"))
    return space + (element.text or "") + "".join(text_of(child) + (child.tail or "") for child in element)


def rows_of(table):
    return [["\n".join(map(text_of, cell.iterfind("{*}p"))) for cell in row.iterfind("{*}table-cell")]
            for row in table.iterfind(".//{*}table-row")]


class Documents(office.Case):
    @classmethod
    def prepare(cls):
        for name, rows in TABLES.items():
            book, path = openpyxl.Workbook(), cls.folder / f"{name}.xlsx"
            for row in rows:
                book.active.append(row)
            for cell in itertools.chain(*book.active):
                cell.number_format = '"$"#,##0.00'
                if isinstance(cell.value, str):
                    cell.data_type = "s"  # whatever it begins with
            book.save(path)
            given = [path, "--sheet", "Sheet", "--range", f"A1:{chr(64 + len(rows[0]))}{len(rows)}"]
            chart = ["--chart", "0:1", "--chart-title", "Revenue"] if rows[0] is FIGURES[0] else []
            for ending, options in (("docx", []), ("pptx", chart)):
                office.zelvo("create", *given, "--title", "Quarterly <figures> & more", *options,
                             "-o", cls.folder / f"{name}.{ending}")
        cls.convert("*.docx", "odt")
        cls.convert("*.pptx", "odp")

    def content(self, name, part=""):
        with zipfile.ZipFile(self.folder / "office" / name) as archive:
            return ET.fromstring(archive.read(part + "content.xml"))

    def test_word_document(self):
        for name, rows in EXPECTED.items():
            table, = docx.Document(self.folder / f"{name}.docx").tables
            self.assertEqual([[cell.text for cell in row.cells] for row in table.rows], rows)
            table, = self.content(f"{name}.odt").iterfind(".//{*}table")
            # A line break inside a run's text is white space to word processors.
            rows = [[text.replace("\n", " ") for text in row] for row in rows]
            self.assertEqual(rows_of(table), rows)
            self.assertEqual(rows_of(table.find("{*}table-header-rows")), rows[:1])

    def test_presentation(self):
        for name, (header, *rows) in EXPECTED.items():
            content = self.content(f"{name}.odp")
            pages = [page.findall(".//{*}table") for page in content.iterfind(".//{*}page")]
            charts = content.findall(".//{*}object")
            if TABLES[name][0] is FIGURES[0]:
                self.assertEqual(pages.pop(), [])
                chart = self.content(f"{name}.odp", attribute(charts.pop(), "href")[2:] + "/")
                table = chart.find(".//{*}table")
                (_, title), *points = rows_of(table)
                self.assertEqual([title, *(key for key, _ in points)], [header[1], *(row[0] for row in rows)])
                values = [attribute(cell, "value") for cell in table.iterfind(".//{*}table-cell")]
                self.assertEqual(list(map(float, filter(None, values))), [row[1] for row in TABLES[name][1:]])
            self.assertEqual(charts, [])
            found = [rows_of(table) for table, in pages]
            self.assertEqual([row for page in found for row in page[1:]], rows)
            self.assertTrue(all(page[0] == header for page in found))


if __name__ == "__main__":
    unittest.main()
