"""Owns: openpyxl reads the same of a cleaned workbook as of its source, and a shared formula that is written
out is the one that openpyxl moves. The program is the cleaner."""

import base64
import io
import json
import pathlib
import random
import re
import unittest
import zipfile

import office
import openpyxl
from openpyxl.comments import Comment
from openpyxl.formatting.rule import CellIsRule
from openpyxl.formula.translate import Translator, TranslatorError
from openpyxl.utils import get_column_letter

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples" / "quarterly-sales.xlsx"
WORKSHEET = '<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>'
# "@" is any cell.
FORMULAS = ["@", "Sheet2!@", "'It''s S'!@", "SUM('It''s S'!@:@)", "SUM(Sheet2!C:E,$C:E)", "SUM(Sheet2!C:$E,3:5,$3:5)",
            'LEN(@&"A1 ""B2")', "ATAN2(@,2)", "IF(TRUE,@,1E2)", "ROUND(@*2.5E-1,1)", "(@-.5)", "PI()", "LOG10(@)",
            "TAX2023_x+@", "A1.B*@", '"@ ""@"""&@', "#REF!+@", "IF(@=#N/A,1E5,E5)", "@%", "-@^2",
            "T1[[#This Row],[A1]]+@", "T1[A1:B2]", "[1]S!@", "'[b A1.xlsx]S 1'!@", "S1:S3!@", "@:@",
            "{1,2;3,4}*@", "SUM(@:@,C:D,$C:D,4:5,$4:5)", "@ @", "_xlfn.XLOOKUP(@,E:E,F:F)"]
CELLS = """<row><c t="inlineStr"><is><t xml:space="preserve"> a\u00a0&#13;</t></is></c>
    <c t="inlineStr"><is><t>\u6771</t><rPh sb="0" eb="1"><t>\u3072</t></rPh></is></c></row>
    <row r="4"><c r="B4" t="b"><v>1</v></c><c t="e"><v>#N/A</v></c><c t="str"><v>x</v></c>
    <c t="inlineStr"><is><r><rPr><b/></rPr><t>in</t></r><r><t>line</t></r></is></c>
    <c t="d"><v>2024-02-29T12:00:00</v></c></row>
    <row r="9"><c r="A9"><f t="array" ref="A9:A10">ROW(A1:A2)</f><v>1</v></c><c><v>1</v></c>
    <c><f t="dataTable" ref="C9:D10" dt2D="1" dtr="1" r1="A1" r2="B1"/><v>3</v></c></row>"""


def saved(book):
    out = io.BytesIO()
    book.save(out)
    return out.getvalue()


def facts(data, kept):
    """What openpyxl reads of the kept sheets, but for cells without content."""
    books = [openpyxl.load_workbook(io.BytesIO(data), data_only=data_only) for data_only in (False, True)]
    for sheet, values in zip(*(book.worksheets for book in books)):
        if sheet.title not in kept:
            continue
        yield books[0].epoch, sheet.title, sheet.sheet_state, sorted(map(str, sheet.merged_cells.ranges))
        yield {number for number, row in sheet.row_dimensions.items() if row.hidden}
        yield {i for column in sheet.column_dimensions.values() if column.hidden
               for i in range(column.min, min(column.max, 16384) + 1)}
        for row in sheet.iter_rows():
            for cell in row:
                formula, stored = cell.value, values[cell.coordinate].value
                if hasattr(formula, "ref"):  # not a text, but an object with these attributes, if any
                    names = ("ref", "text", "t", "dt2D", "dtr", "r1", "r2")
                    formula = [getattr(formula, name, None) for name in names]
                if (formula, stored) not in ((None, None), ("", None), ("", "")):
                    yield cell.coordinate, formula, stored, cell.data_type, cell.number_format


def usual_workbook():
    """Has links, comments, rules, names, hidden and merged cells, dates, protection."""
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "It's & <Data>"
    sheet.append(["Name", " padded ", "line\nbreak", "\u6771\u4eac", True, 1.5, "=SUM(F1:F9)", "#no error"])
    for row in range(2, 40):
        sheet.append([f"r{row}", row / 7, -row, 45000 + row / 24, row % 2 == 0, f"=B{row}*2", None, ""])
        for column, number_format in enumerate(['"$"#,##0.00', "[Red]-0.0;(0)", "m/d/yyyy h:mm"], 2):
            sheet.cell(row, column).number_format = number_format
    sheet["A1"].hyperlink = "https://example.org/"
    sheet["A2"].comment = Comment("text", "author")
    sheet.merge_cells("J1:K3")
    sheet["J1"] = "merged"
    sheet.row_dimensions[5].hidden = sheet.column_dimensions["C"].hidden = sheet.protection.sheet = True
    sheet.auto_filter.ref = "A1:H39"
    sheet.conditional_formatting.add("B2:B9", CellIsRule(operator="lessThan", formula=["0"]))
    book.create_named_range("Rate", sheet, "$B$2")
    for state in ("hidden", "veryHidden", "visible"):
        book.create_sheet(state)["B2"] = "=Rate"
        book[state].sheet_state = state
    book.create_chartsheet("Chart").add_chart(openpyxl.chart.BarChart())
    return saved(book)


def with_sheet(rows):
    """A workbook whose sheet holds these rows, as XML."""
    texts = {"xl/worksheets/sheet1.xml": f"{WORKSHEET}{rows}</sheetData></worksheet>"}
    out = io.BytesIO()
    with zipfile.ZipFile(io.BytesIO(saved(openpyxl.Workbook()))) as source, zipfile.ZipFile(out, "w") as changed:
        for name in source.namelist():
            changed.writestr(name, texts.get(name) or source.read(name), zipfile.ZIP_DEFLATED)
    return out.getvalue()


class CleanedWorkbooks(office.Case):
    @classmethod
    def prepare(cls):
        cls.random = random.Random(7)

    def clean(self, data, **options):
        request = {"version": 1, "sourceName": "book", "data": base64.b64encode(data).decode(), **options}
        response = json.loads(office.zelvo(stdin=json.dumps(request)))
        self.assertNotIn("error", response)
        return base64.b64decode(response["document"]["data"]), response["report"]

    def check(self, source, **options):
        cleaned, report = self.clean(source, **options)
        kept = [sheet["name"] for sheet in report["sheets"]]
        self.assertEqual(list(facts(source, kept)), list(facts(cleaned, kept)))
        return report

    def formula(self):
        def cell(_):
            column, row = get_column_letter(self.random.randint(14, 20)), self.random.randint(3, 30)
            marks = self.random.choices(["", "", "$"], k=2)
            return f"{marks[0]}{column}{marks[1]}{row}"
        return re.sub("@", cell, "+".join(self.random.choices(FORMULAS, k=3)))

    def shared(self, formulas):
        """A workbook in which one other cell shares each formula; the pairs of their addresses."""
        rows, places = "", []
        for i, text in enumerate(formulas):
            row, down, right = 8 + 16 * i, self.random.randint(1, 7), self.random.randint(-12, 30)
            here, there = f"{get_column_letter(40)}{row}", f"{get_column_letter(40 + right)}{row + down}"
            first, last = sorted([40, 40 + right])
            area = f"{get_column_letter(first)}{row}:{get_column_letter(last)}{row + down}"
            text = text.replace("&", "&amp;")
            rows += (f'<row r="{row}"><c r="{here}"><f t="shared" si="{i}" ref="{area}">{text}</f></c></row>'
                     f'<row r="{row + down}"><c r="{there}"><f t="shared" si="{i}"/></c></row>')
            places.append((here, there))
        return with_sheet(rows), places

    def test_usual_and_unusual_cells(self):
        dropped = {item["kind"]: item["count"] for item in self.check(usual_workbook())["dropped"]}
        self.assertEqual(dropped, {**dropped, "hyperlinks": 1, "comments": 1, "defined names": 2,
                                   "conditional formats": 1, "chart sheets": 1})
        self.check(EXAMPLE.read_bytes())
        self.check(EXAMPLE.read_bytes(), sheets=["Orders"])
        self.check(with_sheet(CELLS))

    def test_shared_formulas_against_openpyxl(self):
        compared = 0
        for _ in range(3):  # within the characters of a part
            formulas = [self.formula() for _ in range(2000)]
            source, places = self.shared(formulas)
            sheet = openpyxl.load_workbook(io.BytesIO(self.clean(source)[0])).worksheets[0]
            for text, (here, there) in zip(formulas, places):
                self.assertEqual(sheet[here].value, "=" + text)
                try:
                    expected = Translator("=" + text, here).translate_formula(there)
                except TranslatorError:
                    continue
                self.assertEqual(sheet[there].value, expected, text)
                compared += 1
        self.assertGreater(compared, 5000)


if __name__ == "__main__":
    unittest.main()
