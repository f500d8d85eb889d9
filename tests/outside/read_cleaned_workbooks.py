"""read_cleaned_workbooks.py CLEANER: cleans workbooks and compares what openpyxl and LibreOffice read of them before and after.

read_cleaned_workbooks.py WORKER FOLDER CLEANER: prints, for every workbook of a folder, whether the worker accepts it
before and after cleaning, and whether openpyxl reads the same cells."""

import base64
import csv
import io
import json
import pathlib
import random
import subprocess
import sys
import unittest
import warnings
import zipfile

import openpyxl
from openpyxl.comments import Comment
from openpyxl.formula.translate import Translator, TranslatorError
from openpyxl.utils import get_column_letter

import office

warnings.simplefilter("ignore")  # openpyxl says what it does not read itself
CLEANER = office.ZELVO
FOLDER = sys.argv[1:]
EXAMPLE = pathlib.Path(__file__).parents[2] / "examples" / "quarterly-sales.xlsx"
LINKS = b"http://schemas.openxmlformats.org/officeDocument/2006/relationships"
STRINGS = b"application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml"
MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"


def ask(program, **request):
    done = subprocess.run([program], input=json.dumps(request).encode(), capture_output=True, check=True)
    return json.loads(done.stdout)


def clean(data, **options):
    """The cleaned bytes and the report, or the error twice."""
    response = ask(CLEANER, version=1, sourceName="book.xlsx", data=base64.b64encode(data).decode(), **options)
    if "error" in response:
        return response["error"], response["error"]
    return base64.b64decode(response["document"]["data"]), response["report"]


def formula(value):
    """A formula that is no text as one: its attributes, as far as they are kept."""
    if not hasattr(value, "ref"):
        return value
    return tuple(getattr(value, name, None) for name in ("ref", "text", "t", "dt2D", "dtr", "r1", "r2"))


def facts(data, kept):
    """What openpyxl reads: date system, and of every kept sheet its name, visibility, merged areas, hidden rows and columns and cells."""
    books = [openpyxl.load_workbook(io.BytesIO(data), data_only=data_only) for data_only in (False, True)]
    sheets = []
    for sheet, values in zip(*(book.worksheets for book in books)):
        if sheet.title not in kept:
            continue
        cells = {}
        for row in sheet.iter_rows():
            for cell in row:
                stored = values[cell.coordinate].value
                if cell.value in (None, "") and stored in (None, ""):
                    continue
                cells[cell.coordinate] = formula(cell.value), stored, cell.data_type, cell.number_format
        hidden = {i for i, d in sheet.row_dimensions.items() if d.hidden}
        columns = {i for d in sheet.column_dimensions.values() if d.hidden for i in range(d.min, min(d.max, 16384) + 1)}
        merged = sorted(str(area) for area in sheet.merged_cells.ranges)
        sheets.append((sheet.title, sheet.sheet_state, merged, hidden, columns, cells))
    return books[0].epoch, sheets


def difference(source, cleaned, report):
    kept = {sheet["name"] for sheet in report["sheets"]}
    before, after = facts(source, kept), facts(cleaned, kept)
    if before == after:
        return None
    for a, b in zip(before[1], after[1]):
        for address in a[5].keys() | b[5].keys():
            if a[5].get(address) != b[5].get(address):
                return f"{a[0]}!{address}: {a[5].get(address)} became {b[5].get(address)}"
        if a != b:
            return f"{a[:5]} became {b[:5]}"
    return f"{before} became {after}"


def usual_workbook():
    """What people's workbooks have: links, comments, rules, panes, names, hidden and merged cells, dates, a protected sheet."""
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "It's & <Data>"
    sheet.append(["Name", " padded ", "line\nbreak", "\u6771\u4eac", True, 1.5, "=SUM(F1:F9)", "#not an error"])
    for row in range(2, 40):
        sheet.append([f"r{row}", row / 7, -row, 45000 + row / 24, row % 2 == 0, f"=B{row}*2", None, ""])
        sheet.cell(row, 2).number_format = '"$"#,##0.00'
        sheet.cell(row, 3).number_format = "[Red]-0.0;(0)"
        sheet.cell(row, 4).number_format = "m/d/yyyy h:mm"
    sheet["A1"].hyperlink = "https://example.org/"
    sheet["A2"].comment = Comment("text", "author")
    sheet.merge_cells("J1:K3")
    sheet["J1"] = "merged"
    sheet.row_dimensions[5].hidden = True
    sheet.column_dimensions["C"].hidden = True
    sheet.freeze_panes = "B2"
    sheet.auto_filter.ref = "A1:H39"
    sheet.protection.sheet = True
    sheet.conditional_formatting.add("B2:B9", openpyxl.formatting.rule.CellIsRule(operator="lessThan", formula=["0"]))
    book.create_named_range("Rate", sheet, "$B$2")
    for state in ("hidden", "veryHidden", "visible"):
        book.create_sheet(state)["B2"] = "=Rate"
        book[state].sheet_state = state
    book.create_chartsheet("Chart").add_chart(openpyxl.chart.BarChart())
    out = io.BytesIO()
    book.save(out)
    return out.getvalue()


def with_sheet(rows, strings=None):
    """A workbook whose first sheet holds these rows, as XML; others hold numbers for formulas to add."""
    book = openpyxl.Workbook()
    for name in ("Sheet2", "It's S"):
        sheet = book.create_sheet(name)
        for row in range(1, 41):
            sheet.append([(row * 31 + column * 17) % 97 + column / 8 for column in range(1, 31)])
    source, out = io.BytesIO(), io.BytesIO()
    book.save(source)
    with zipfile.ZipFile(source) as before, zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as after:
        for entry in before.infolist():
            text = before.read(entry)
            if entry.filename == "xl/worksheets/sheet1.xml":
                text = f'<worksheet xmlns="{MAIN}"><sheetData>{rows}</sheetData></worksheet>'.encode()
            if entry.filename == "xl/_rels/workbook.xml.rels" and strings:
                text = text.replace(b"</Rel", b'<Relationship Id="strings" Type="%s/sharedStrings" Target="sharedStrings.xml"/></Rel' % LINKS)
            if entry.filename == "[Content_Types].xml" and strings:
                text = text.replace(b"</Types", b'<Override PartName="/xl/sharedStrings.xml" ContentType="%s"/></Types' % STRINGS)
            after.writestr(entry.filename, text)
        if strings:
            after.writestr("xl/sharedStrings.xml", f'<sst xmlns="{MAIN}">{strings}</sst>')
    return out.getvalue()


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;")


class Formulas:
    """Formulas made by chance, of every kind of reference."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def cell(self):
        column = get_column_letter(self.random.randint(3, 20))
        return (f"{self.random.choice(['', '', '$'])}{column}{self.random.choice(['', '', '$'])}{self.random.randint(3, 30)}")

    def calculable(self, depth=0):
        """One that a spreadsheet program can calculate."""
        pick = self.random.randint(0, 11 if depth < 3 else 5)
        if pick < 2:
            return self.random.choice(["", "", "Sheet2!", "'It''s S'!"]) + self.cell().replace("$", "") if pick else self.cell()
        if pick == 2:
            return self.random.choice(["7", "1E2", "2.5E-1", ".5", 'LEN("A1 ""B2""")', "TRUE", "PI()"])
        if pick == 3:
            return f"SUM({self.random.choice(['Sheet2!', chr(39) + 'It' + chr(39) * 2 + 's S' + chr(39) + '!'])}{self.cell()}:{self.cell()})"
        if pick == 4:
            return f"SUM(Sheet2!{self.random.choice(['C:E', '$C:E', 'C:$E', '3:5', '$3:5'])})"
        if pick == 5:
            return f"COUNT(Sheet2!{self.cell()},{self.cell()})"
        if pick < 10:
            sign = self.random.choice("+-*+&")
            return f"({self.calculable(depth + 1)}{sign}{self.calculable(depth + 1)})" if sign != "&" else f"LEN({self.calculable(depth + 1)}&\"\")"
        name = self.random.choice(["ATAN2", "MAX", "IF(TRUE", "ROUND"])
        return f"{name}{',' if '(' in name else '('}{self.calculable(depth + 1)},{self.random.randint(1, 3)})"

    def any(self):
        """One that only has to be moved."""
        odd = ["LOG10({0})", "TAX2023_x+{0}", "A1.B*{0}", '"{0} ""{0}"""&{0}', "#REF!+{0}", "IF({0}=#N/A,1E5,E5)", "{0}%",
               "T1[[#This Row],[A1]]+{0}", "T1[A1:B2]", "[1]S!{0}", "'[b A1.xlsx]S 1'!{0}", "S1:S3!{0}", "{0}:{0}",
               "SUM({0}:{0},C:D,$C:D,4:5,$4:5)", "-{0}^2", "{{1,2;3,4}}*{0}", "{0} {0}", "_xlfn.XLOOKUP({0},E:E,F:F)"]
        parts = [self.random.choice(odd).format(self.cell()) for _ in range(self.random.randint(1, 3))]
        return "+".join([self.calculable(), *parts])


def shared(formulas, moves):
    """Rows in which every formula is shared by one other cell, and the places of both."""
    cells, places = {}, []
    for i, (text, (down, right)) in enumerate(zip(formulas, moves)):
        row, column = 8 + 16 * i, 40
        area = f"{get_column_letter(min(column, column + right))}{row}:{get_column_letter(max(column, column + right))}{row + down}"
        cells.setdefault(row, []).append((column, f'<f t="shared" si="{i}" ref="{area}">{escaped(text)}</f>'))
        cells.setdefault(row + down, []).append((column + right, f'<f t="shared" si="{i}"/>'))
        places.append((f"{get_column_letter(column)}{row}", f"{get_column_letter(column + right)}{row + down}"))
    rows = "".join(f'<row r="{row}">' + "".join(f'<c r="{get_column_letter(c)}{row}">{f}</c>' for c, f in sorted(cells[row])) + "</row>"
                   for row in sorted(cells))
    return rows, places


class CleanedWorkbooks(office.Case):
    @classmethod
    def prepare(cls):
        cls.random = random.Random(7)

    def check(self, source, **options):
        cleaned, report = clean(source, **options)
        self.assertIsInstance(cleaned, bytes, report)
        self.assertIsNone(difference(source, cleaned, report))
        return cleaned, report

    def test_usual_workbooks(self):
        cleaned, report = self.check(usual_workbook())
        dropped = {item["kind"]: item["count"] for item in report["dropped"]}
        for kind, count in {"hyperlinks": 1, "comments": 1, "defined names": 2, "conditional formats": 1, "chart sheets": 1}.items():
            self.assertEqual(dropped.get(kind), count, kind)
        with zipfile.ZipFile(io.BytesIO(cleaned)) as archive:
            self.assertIsNone(archive.testzip())
        self.check(EXAMPLE.read_bytes())
        self.check(EXAMPLE.read_bytes(), sheets=["Orders"])

    def test_unusual_cells(self):
        strings = ('<si><t xml:space="preserve"> a\u00a0&#13;</t></si><si><r><rPr><b/></rPr><t>b</t></r><r><t>c</t></r></si>'
                   '<si><t>\u6771</t><rPh sb="0" eb="1"><t>\u3072</t></rPh></si><si/>')
        rows = ('<row><c t="s"><v>0</v></c><c t="s"><v>1</v></c><c t="s"><v>2</v></c><c t="s"><v>3</v></c></row>'
                '<row r="4"><c r="B4" t="b"><v>1</v></c><c t="e"><v>#N/A</v></c><c t="str"><v>x</v></c>'
                '<c t="inlineStr"><is><r><t>in</t></r><r><t>line</t></r></is></c><c t="d"><v>2024-02-29T12:00:00</v></c></row>'
                '<row r="9"><c r="A9"><f t="array" ref="A9:A10">ROW(A1:A2)</f><v>1</v></c><c><v>1</v></c>'
                '<c><f t="dataTable" ref="C9:D10" dt2D="1" dtr="1" r1="A1" r2="B1"/><v>3</v></c></row>')
        self.check(with_sheet(rows, strings))

    def test_shared_formulas_against_openpyxl(self):
        made = Formulas(1)
        formulas = [made.any() for _ in range(6000)]
        moves = [(self.random.randint(1, 7), self.random.randint(-12, 30)) for _ in formulas]
        compared = 0
        for start in range(0, len(formulas), 2000):  # within the characters of a part
            chosen = formulas[start:start + 2000]
            rows, places = shared(chosen, moves[start:start + 2000])
            cleaned, report = clean(with_sheet(rows))
            self.assertIsInstance(cleaned, bytes, report)
            sheet = openpyxl.load_workbook(io.BytesIO(cleaned)).worksheets[0]
            for text, (master, copy) in zip(chosen, places):
                self.assertEqual(sheet[master].value, "=" + text)
                try:
                    expected = Translator("=" + text, master).translate_formula(copy)
                except TranslatorError:
                    continue
                if "#REF!" in sheet[copy].value.replace("#REF!+", ""):
                    continue  # past the last row or column, which openpyxl does not see
                self.assertEqual(sheet[copy].value, expected, text)
                compared += 1
        print(f"{compared} of {len(formulas)} formulas compared", file=sys.stderr)
        self.assertGreater(compared, 5000)

    def test_shared_formulas_in_libreoffice(self):
        made = Formulas(2)  # from column C on, so that none leaves the sheet
        formulas = [made.calculable() for _ in range(200)]
        rows, _ = shared(formulas, [(self.random.randint(1, 7), self.random.randint(-2, 9)) for _ in formulas])
        source = with_sheet(rows)
        cleaned, report = clean(source)
        self.assertIsInstance(cleaned, bytes, report)
        self.assertEqual(report["changed"][0], {"kind": "shared formulas written out", "count": 200,
                                                "sheets": [{"sheet": 0, "count": 200}]})
        results = []
        for name, data in (("source", source), ("cleaned", cleaned)):
            (self.folder / f"{name}.xlsx").write_bytes(data)
            self.convert(f"{name}.xlsx", "csv")
            with open(self.folder / "office" / f"{name}.csv", newline="", encoding="utf-8") as file:
                results.append([[cell for cell in row if cell] for row in csv.reader(file) if any(row)])
        values = [cell for row in results[0] for cell in row]
        self.assertEqual(results[0], results[1])
        self.assertGreater(len(values), 390)
        self.assertGreater(sum(not value.startswith("#") for value in values), 350)


def table(worker, folder):
    print("| file | worker before | cleaned | worker after | openpyxl reads the same |\n|---|---|---|---|---|")
    accepted = [0, 0]
    paths = sorted(pathlib.Path(folder).glob("*.xls*"))
    for path in paths:
        data = path.read_bytes()

        def inspected(document):
            response = ask(worker, operation="inspect", sourceName="a.xlsx", data=base64.b64encode(document).decode())
            return response.get("error", "accepted")
        before = inspected(data)
        cleaned, report = clean(data)
        after = equal = "-"
        if isinstance(cleaned, bytes):
            after = inspected(cleaned)
            try:
                equal = difference(data, cleaned, report) or "yes"
            except Exception as error:  # openpyxl cannot read the source
                equal = f"not read: {error}"
        accepted[0] += before == "accepted"
        accepted[1] += after == "accepted"
        print("|", " | ".join([path.name, before, "yes" if after != "-" else report, after, equal]), "|")
    print(f"\naccepted: {accepted[0]} before, {accepted[1]} after cleaning, of {len(paths)}")


if __name__ == "__main__":
    if FOLDER:
        table(*FOLDER)
    else:
        unittest.main(argv=sys.argv[:1])
