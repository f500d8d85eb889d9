"""read_display_texts.py ZELVO: makes workbooks of numbers, dates and times, extracts what their cells show, and
compares every cell with what LibreOffice shows.

Where LibreOffice shows something else by its nature, a rule below says exactly what: every cell must be what our
text becomes under the rules, so that a difference of no kind, or of the wrong size, fails. The differing cells are
counted by kind."""

import collections
import csv
import dataclasses
import datetime
import decimal
import io
import random
import re
import subprocess
import sys
import unittest
import zipfile
from decimal import Decimal
from xml.sax.saxutils import quoteattr

import office

ZELVO = sys.argv.pop()

# What one extraction may hold.
COLUMNS = 8
ROWS = 201

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
RELATIONSHIPS = "http://schemas.openxmlformats.org/package/2006/relationships"
CONTENT_TYPES = "http://schemas.openxmlformats.org/package/2006/content-types"
SPREADSHEET = "application/vnd.openxmlformats-officedocument.spreadsheetml."

# Comma, double quote, UTF-8, from line 1, no column formats, the default language, quotes only where needed, no
# detection of numbers, contents as shown, no formulas, spaces kept, every sheet into a file of its own.
CSV_FILTER = "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,false,true,false,false,-1"


# Numbers of 1E+127 need that many digits.
decimal.getcontext().prec = 200

# Currencies that LibreOffice knows in quotes only.
WORDS_LEFT_UNREAD = ("kr", "USD", "EUR", "GBP")
GENERAL = "General"
FULL_DATE = "yyyy-mm-dd hh:mm:ss"


def chunks(items, size):
    return [items[start:start + size] for start in range(0, len(items), size)]


def relationships(*entries):
    return f'<Relationships xmlns="{RELATIONSHIPS}">' + "".join(
        f'<Relationship Id="{name}" Type="{OFFICE}/{kind}" Target="{target}"/>' for name, kind, target in entries
    ) + "</Relationships>"


def override(path, kind):
    return f'<Override PartName="/xl/{path}" ContentType="{SPREADSHEET}{kind}+xml"/>'


def write_workbook(path, sheets, uses_1904_dates=False):
    """Writes each sheet as (codes, number texts): every number in every row under each column's format code. The
    texts are stored as they are given."""
    codes = [code for codes, _ in sheets for code in codes]
    paths = [f"worksheets/sheet{n}.xml" for n in range(1, len(sheets) + 1)]
    names = "".join(f'<sheet name="S{n}" sheetId="{n}" r:id="rId{n}"/>' for n in range(1, len(sheets) + 1))
    formats = "".join(f'<numFmt numFmtId="{164 + i}" formatCode={quoteattr(code)}/>' for i, code in enumerate(codes))
    styles = "".join(f'<xf numFmtId="{164 + i}" applyNumberFormat="1"/>' for i in range(len(codes)))
    parts = {
        "[Content_Types].xml":
            f'<Types xmlns="{CONTENT_TYPES}"><Default Extension="rels" '
            'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
            + override("workbook.xml", "sheet.main") + override("styles.xml", "styles")
            + "".join(override(name, "worksheet") for name in paths) + "</Types>",
        "_rels/.rels": relationships(("rId1", "officeDocument", "xl/workbook.xml")),
        "xl/workbook.xml":
            f'<workbook xmlns="{MAIN}" xmlns:r="{OFFICE}"><workbookPr date1904="{int(uses_1904_dates)}"/><sheets>'
            f"{names}</sheets></workbook>",
        "xl/_rels/workbook.xml.rels": relationships(
            *((f"rId{n}", "worksheet", name) for n, name in enumerate(paths, 1)), ("styles", "styles", "styles.xml")),
        "xl/styles.xml":
            f'<styleSheet xmlns="{MAIN}"><numFmts>{formats}</numFmts><fonts><font/></fonts><fills><fill/></fills>'
            f"<borders><border/></borders><cellStyleXfs><xf/></cellStyleXfs><cellXfs>{styles}</cellXfs></styleSheet>",
    }
    style = 0
    for name, (codes, texts) in zip(paths, sheets):
        rows = "".join(f'<row r="{row}">' + "".join(
            f'<c r="{chr(ord("A") + i)}{row}" s="{style + i}"><v>{text}</v></c>' for i in range(len(codes))) + "</row>"
            for row, text in enumerate(texts, 1))
        parts[f"xl/{name}"] = f'<worksheet xmlns="{MAIN}"><sheetData>{rows}</sheetData></worksheet>'
        style += len(codes)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in parts.items():
            archive.writestr(name, '<?xml version="1.0" encoding="UTF-8"?>' + text)


def extracted(path, sheet, width, height):
    """What zelvo shows of a sheet, in as many extractions as it takes."""
    rows = []
    for first in range(1, height + 1, ROWS):
        last = min(first + ROWS - 1, height)
        output = subprocess.run(
            [ZELVO, "extract", "--csv", "--no-header", "--sheet", f"S{sheet}",
             "--range", f"A{first}:{chr(ord('A') + width - 1)}{last}", path],
            check=True, stdout=subprocess.PIPE).stdout.decode()
        rows += list(csv.reader(io.StringIO(output, newline="")))[1:]
    return rows


@dataclasses.dataclass(frozen=True)
class Format:
    """A numeric format, by its pieces."""
    body: str
    before: str = ""
    behind: str = ""

    @property
    def code(self):
        return self.before + self.body + self.behind

    def shown(self, scaled, negative, rounding, sign_first=False):
        """The text of a number that is already times 100 under a percent format."""
        digits = abs(scaled).quantize(Decimal(1).scaleb(-len(self.places)), rounding)
        text = format(digits, ("," if "," in self.body else "") + f".{len(self.places)}f")
        for _ in range(self.places.count("#")):
            text = text.removesuffix("0")
        text = text.removesuffix(".")
        sign = "-" if negative else ""
        before, behind = self.before.replace('"', ""), self.behind.replace('"', "")
        signed = sign + before + text if sign_first else before + sign + text
        return signed + ("%" if self.is_percent else "") + behind

    def to_15_digits(self, scaled):
        """The number without the digits that the format shows behind its fifteenth."""
        shown_digits = scaled.adjusted() + 1 + len(self.places)
        return decimal.Context(prec=15).plus(scaled) if shown_digits > 15 else scaled

    @property
    def places(self):
        return self.body.rstrip("%").partition(".")[2]

    @property
    def is_percent(self):
        return self.body.endswith("%")

    @property
    def is_unread(self):
        """Whether LibreOffice makes nothing of the code."""
        return (self.before + self.behind).strip() in WORDS_LEFT_UNREAD


# The codes, parted by bars.
FORMATS = [Format(*re.fullmatch(r"([^0#]*)([0#][0#,.]*%?)(.*)", code).group(2, 1, 3)) for code in (
    "0|0.0|0.00|0.000|0.000000000000|0.#|0.##|0.0#|0.###|0.00##|0.############|#,##0|#,##0.0|#,##0.00|#,##0.000|"
    "#,##0.0#|#,##0.##|0%|0.0%|0.00%|0.#%|0.0##%|#,##0%|#,##0.00%|"
    '$0|$0.00|$#,##0.00|"$"0.00|"$" #,##0|€0.0#|"€" #,##0.00|£0|"£"0.00|"kr" 0.00|NOK 0|"NOK" #,##0.00|"USD"0.00|'
    '"EUR" 0.###|"GBP" 0|kr 0.00|USD 0|EUR0.0|GBP 0.00|'
    '0$|0.00 €|#,##0.00 "€"|0.0£|0.00 "kr"|#,##0"kr"|0.00 NOK|0 "NOK"|#,##0.## "USD"|0.00"EUR"|0.00 "GBP"|0.00 kr|'
    "0 USD").split("|")]


def number_texts():
    texts = [
        "0", "-0", "0.0", "-0.00", "1E+15", "1E20", "-1E20", "1e-10", "-1E-10", "1e-100", "1e-300", "-1e-300",
        "123456789012345", "0.123456789012345", "1234567890.12345", "-99999999999999.5", "9.99999999999999",
        "12345678901234567890", "2.6749999999999998", "0.10000000000000001", "999999999999999", "0.000000000000499",
        "1.5e-7", "12.5E-2", "4.5E3", "1000", "999.5", "-999.5", "999999.5", "1234567.891", "-1234567.891",
    ]
    # Halves at the first places behind the point, behind even and odd digits and behind nines; and their neighbours.
    for exponent in range(-6, 1):
        for digits in ("5", "15", "25", "95", "995", "9995", "1005", "285", "1235", "994", "996", "49999", "50001"):
            text = format(Decimal(digits).scaleb(exponent - 1), "f")
            texts += [text, "-" + text]
    generator = random.Random(2024)
    for _ in range(150):
        digits = generator.randrange(10 ** generator.randrange(1, 16))
        texts.append(format(Decimal(generator.choice((1, -1)) * digits).scaleb(-generator.randrange(16)), "f"))
    return list(dict.fromkeys(texts))


def under_rules(form, text, general):
    """The text of a number as zelvo shows it, then as it becomes under every rule: (rule, text) in order.
    `general` is what LibreOffice shows without a format."""
    exact = Decimal(text)
    negative = exact < 0
    hundred = 100 if form.is_percent else 1
    shown = form.shown(exact * hundred, negative, decimal.ROUND_HALF_EVEN)
    # A number whose last digit stands beyond 10^±127 is shown as it is stored.
    yield None, text if abs(exact.as_tuple().exponent) > 127 else shown
    # LibreOffice shows numbers under a code that it cannot read as if there were no code.
    if form.is_unread:
        yield "unquoted word", general
        return
    yield "power of ten", shown
    # It holds a double, not the text, and shows no more than 15 digits, zeros behind them.
    scaled = form.to_15_digits(Decimal(repr(float(text))) * hundred)
    yield "more than 15 digits", form.shown(scaled, negative, decimal.ROUND_HALF_EVEN)
    # It multiplies doubles before it rounds, so that 9.995 becomes 999.4999999999999 percent.
    scaled = form.to_15_digits(Decimal(repr(float(text) * hundred)))
    yield "double times 100", form.shown(scaled, negative, decimal.ROUND_HALF_EVEN)
    # It rounds halves away from zero, not to even.
    rounded = form.shown(scaled, negative, decimal.ROUND_HALF_UP)
    yield "half", rounded
    # It drops the sign of what it shows as zero.
    negative &= any(digit in rounded for digit in "123456789")
    yield "negative zero", form.shown(scaled, negative, decimal.ROUND_HALF_UP)
    # It puts the sign before the currency.
    yield "sign before currency", form.shown(scaled, negative, decimal.ROUND_HALF_UP, sign_first=True)


DATE_CODES = ["m/d/yy", "d-mmm-yy", "d-mmm", "mmm-yy", "m/d/yy h:mm", "yyyy-mm-dd", "yyyy-mm-dd hh:mm:ss",
              "dd/mm/yyyy", "dd.mm.yyyy", "dd/mm/yy", "dd.mm.yy", "yyyy/mm/dd", "DD.MM.YYYY"]
TIME_CODES = ["h:mm AM/PM", "h:mm:ss AM/PM", "h:mm", "h:mm:ss", "hh:mm", "hh:mm:ss", "mm:ss"]


def times_of_day():
    """Fractions of a day of 17 digits: whole hours, minutes and seconds, and moments around a second's ends."""
    seconds = [hour * 3600 for hour in range(24)] + [0.25, 0.5, 0.75, 1, 59, 59.999, 60, 61, 3599, 3601, 43199, 43199.5,
                                                     43201, 86340, 86398.5, 86399, 86399.4, 86399.75, 86399.999]
    seconds += random.Random(1904).sample(range(86400), 60)
    texts = [format(second / 86400, ".17g") for second in seconds]
    # Less than half a millisecond before a second, and before a day, is that second and that day.
    return texts + ["0.041666666666666664", "0.99999999999999989", "0.999999999", "0.99999"]


def date_serials(uses_1904_dates):
    days = [0, 1, 2, 31, 32, 58, 59, 61, 62, 365, 366, 367, 1461, 1462, 25569, 36525, 36526, 36585, 36586, 40000, 43830,
            43831, 45351, 45352, 73050, 100000, 2957003, 2958464, 2958465]
    if uses_1904_dates:
        days = sorted([*days, 60])[:-2]
    texts = []
    for day in days:
        texts.append(str(day))
        texts += [format(day + fraction, ".17g") for fraction in (1 / 86400, 1 / 24, 0.5, 2 / 3, 86399 / 86400)
                  if day < 2958465]
    return texts


def office_instant(our, their, serial, system, kinds):
    """Our date and time as it becomes under every rule, counting those that change it. Cells that show no date stand
    on the system's first day."""
    first_day = "1899-12-31" if system == 1900 else "1904-01-01"
    instant = datetime.datetime.fromisoformat(our if len(our) > 8 else f"{first_day} {our}")
    stored = Decimal(float(serial))
    second_of_day = stored % 1 * 86400
    # LibreOffice has no 1900-02-29, and counts the days before it from a day earlier.
    if system == 1900 and stored < 60:
        instant -= datetime.timedelta(days=1)
        kinds["before March 1900"] += 1
    # It rounds the last half second of a day to the next day, while it cuts every other second off. We cut all.
    if Decimal("86399.5") <= second_of_day < Decimal("86399.9995"):
        instant += datetime.timedelta(seconds=1)
        kinds["last half second of a day"] += 1
    # It may cut off a second that the double falls short of by a rounding error.
    if 1 - second_of_day % 1 < Decimal("0.0005") and their == str(instant - datetime.timedelta(seconds=1)):
        instant -= datetime.timedelta(seconds=1)
        kinds["short of a second"] += 1
    return str(instant)


class DisplayTexts(office.Case):
    @classmethod
    def prepare(cls):
        cls.numbers = number_texts()
        cls.number_sheets = [([form.code for form in forms], cls.numbers) for forms in chunks(FORMATS, COLUMNS)]
        write_workbook(cls.folder / "numbers.xlsx", [*cls.number_sheets, ([GENERAL], cls.numbers)])
        cls.date_sheets = {}
        for system in (1900, 1904):
            sheets = [(codes, date_serials(system == 1904)) for codes in chunks(DATE_CODES, COLUMNS)]
            sheets += [(TIME_CODES, times_of_day()), (DATE_CODES[:1], times_of_day())]
            cls.date_sheets[system] = sheets
            # Behind each sheet, its serials under a code that shows all of them.
            write_workbook(cls.folder / f"dates{system}.xlsx",
                           [sheet for codes, texts in sheets for sheet in ((codes, texts), ([FULL_DATE], texts))],
                           system == 1904)
        office.convert(sorted(cls.folder.glob("*.xlsx")), CSV_FILTER, cls.folder)

    def shown_by_office(self, book, sheet):
        with open(self.folder / f"{book}-S{sheet}.csv", encoding="utf-8", newline="") as file:
            return list(csv.reader(file))

    def report(self, title, cells, kinds):
        print(f"{title}: {cells} cells;", ", ".join(f"{kind}: {count}" for kind, count in sorted(kinds.items())))

    def test_numbers(self):
        kinds = collections.Counter()
        cells = 0
        generals = [row[0] for row in self.shown_by_office("numbers", len(self.number_sheets) + 1)]
        for sheet, forms in enumerate(chunks(FORMATS, COLUMNS), 1):
            ours = extracted(self.folder / "numbers.xlsx", sheet, len(forms), len(self.numbers))
            theirs = self.shown_by_office("numbers", sheet)
            for text, general, our_row, their_row in zip(self.numbers, generals, ours, theirs, strict=True):
                for form, our, their in zip(forms, our_row, their_row, strict=True):
                    cells += 1
                    (_, shown), *rules = under_rules(form, text, general)
                    with self.subTest(code=form.code, number=text):
                        self.assertEqual(our, shown)
                        for kind, changed in rules:
                            kinds[kind] += changed != shown
                            shown = changed
                        self.assertEqual(their, shown)
        self.report("Numbers", cells, kinds)
        # A rule that never changes a cell is none.
        self.assertNotIn(0, kinds.values())

    def test_dates(self):
        for system, sheets in self.date_sheets.items():
            kinds = collections.Counter()
            cells = 0
            for index, (codes, texts) in enumerate(sheets):
                ours = extracted(self.folder / f"dates{system}.xlsx", 2 * index + 1, len(codes), len(texts))
                theirs = self.shown_by_office(f"dates{system}", 2 * index + 2)
                for text, our_row, (their,) in zip(texts, ours, theirs, strict=True):
                    for code, our in zip(codes, our_row, strict=True):
                        cells += 1
                        with self.subTest(system=system, code=code, serial=text):
                            self.assertEqual(len(our), 8 if code in TIME_CODES else 19 if Decimal(text) % 1 else 10)
                            expected = office_instant(our, their, text, system, kinds)
                            # Times alone wrap around at midnight.
                            shown = slice(-8 if code in TIME_CODES else None, None)
                            self.assertEqual(their[shown], expected[shown])
            self.report(f"Dates of {system}", cells, kinds)


if __name__ == "__main__":
    unittest.main()
