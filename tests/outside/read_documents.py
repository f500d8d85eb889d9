"""read_documents.py WRITE_DOCUMENTS: opens authored documents in python-docx and LibreOffice, and compares every
cell with the source values."""

import json
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ET
import zipfile

import docx

import office

WRITER = sys.argv.pop()
NAMESPACES = {
    "table": "urn:oasis:names:tc:opendocument:xmlns:table:1.0",
    "text": "urn:oasis:names:tc:opendocument:xmlns:text:1.0",
    "draw": "urn:oasis:names:tc:opendocument:xmlns:drawing:1.0",
    "xlink": "http://www.w3.org/1999/xlink",
    "office": "urn:oasis:names:tc:opendocument:xmlns:office:1.0",
}


SPACES = {"text:tab": "\t", "text:line-break": "\n"}


def qualified(name):
    prefix, local = name.split(":")
    return "{%s}%s" % (NAMESPACES[prefix], local)


def text_of(element):
    """The text of an OpenDocument paragraph, whose runs of spaces, tabs and line breaks are elements."""
    text = element.text or ""
    for child in element:
        spaces = {qualified(name): space for name, space in SPACES.items()}
        spaces[qualified("text:s")] = " " * int(child.get(qualified("text:c"), "1"))
        text += (spaces[child.tag] if child.tag in spaces else text_of(child)) + (child.tail or "")
    return text


def rows_of(table):
    return [["\n".join(map(text_of, cell.iterfind("text:p", NAMESPACES)))
             for cell in row.iterfind("table:table-cell", NAMESPACES)] for row in table.iter(qualified("table:table-row"))]


def contents_of(path, *folders):
    """The content of a document, or of these folders of embedded objects."""
    with zipfile.ZipFile(path) as archive:
        return [ET.fromstring(archive.read(folder + "content.xml")) for folder in folders or [""]]


class Documents(office.Case):
    @classmethod
    def prepare(cls):
        subprocess.run([WRITER, cls.folder], check=True)
        for target, pattern in (("odt", "*.docx"), ("odp", "*.pptx")):
            office.convert(sorted(cls.folder.glob(pattern)), target, cls.folder)

    def each(self, suffix, check):
        """Calls check(path, expected) for every document."""
        paths = sorted(self.folder.glob("*" + suffix))
        self.assertEqual(len(paths), 5)
        for path in paths:
            with self.subTest(path.name):
                check(path, json.loads(path.with_name(path.name + ".json").read_text()))

    def test_python_docx(self):
        def check(path, expected):
            table, = docx.Document(path).tables
            self.assertEqual([[cell.text for cell in row.cells] for row in table.rows], expected["rows"])
        self.each(".docx", check)

    def test_writer(self):
        def check(path, expected):
            content, = contents_of(path.with_suffix(".odt"))
            table, = content.iter(qualified("table:table"))
            # A line break inside a run's text is white space to word processors.
            rows = [[text.replace("\n", " ") for text in row] for row in expected["rows"]]
            self.assertEqual(rows_of(table), rows)
            header, = table.iterfind("table:table-header-rows", NAMESPACES)
            self.assertEqual(rows_of(header), rows[:1])
        self.each(".docx", check)

    def test_impress(self):
        def check(path, expected):
            content, = contents_of(path.with_suffix(".odp"))
            pages = [list(page.iter(qualified("table:table"))) for page in content.iter(qualified("draw:page"))]
            if expected["values"]:
                self.assertEqual(pages.pop(), [])
            rows = expected["rows"][:1]
            for table, in pages:
                header, *body = rows_of(table)
                self.assertEqual(header, rows[0])
                rows += body
            self.assertEqual(rows, expected["rows"])
        self.each(".pptx", check)

    def test_charts(self):
        charts = []

        def check(path, expected):
            content, = contents_of(path.with_suffix(".odp"))
            folders = [element.get(qualified("xlink:href")).removeprefix("./") + "/"
                       for element in content.iter(qualified("draw:object"))]
            self.assertEqual(len(folders), 1 if expected["values"] else 0)
            for folder in folders:
                charts.append(path.name)
                chart, = contents_of(path.with_suffix(".odp"), folder)
                table = chart.find(".//table:table", NAMESPACES)
                names, *points = rows_of(table)
                self.assertEqual(names[1], expected["rows"][0][1])
                self.assertEqual([point[0] for point in points], expected["categories"])
                values = [cell.get(qualified("office:value")) for cell in table.iter(qualified("table:table-cell"))]
                self.assertEqual([float(value) for value in values if value], list(map(float, expected["values"])))
        self.each(".pptx", check)
        self.assertEqual(charts, ["chart-of-one.pptx", "chart.pptx"])


if __name__ == "__main__":
    unittest.main()
