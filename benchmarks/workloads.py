#!/usr/bin/env python3
"""Writes the workbooks that the benchmarks measure. The bytes are the same on every run.

    workloads.py FOLDER     writes NAME.xlsx for each workload, and NAME.half.xlsx, .quarter, .eighth where it is scaled
"""

import io
import sys
import zipfile
from pathlib import Path

MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
RELATIONSHIPS = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
CONTENT = "application/vnd.openxmlformats-officedocument.spreadsheetml"
PART_LIMIT = 16 * 1024 * 1024
TOTAL = 60 * 1024 * 1024


def letters(column):
    name = ""
    while column:
        column, rest = divmod(column - 1, 26)
        name = chr(65 + rest) + name
    return name


def noise(state):
    """Pseudo-random numbers, the same with every version of Python."""
    while True:
        state = (state * 6364136223846793005 + 1442695040888963407) % 2**64
        yield state >> 33


def noise_bytes(size, seed):
    random = noise(seed)
    return b"".join((next(random) % 2**32).to_bytes(4, "little") for _ in range(size // 4))


def worksheet(rows):
    return f'<worksheet xmlns="{MAIN}"><sheetData>{"".join(rows)}</sheetData></worksheet>'


def workbook(sheets, strings=(), extra=()):
    """A package of the given worksheet parts; `extra` are further parts, by name."""
    names = [f"Sheet {i + 1}" for i in range(len(sheets))]
    parts = {
        "[Content_Types].xml": f'<Types xmlns="{PACKAGE}/content-types">'
                               '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
                               '<Default Extension="xml" ContentType="application/xml"/>' + "".join(
            f'<Override PartName="/xl/{name}.xml" ContentType="{CONTENT}.{kind}+xml"/>' for name, kind in [
                ("workbook", "sheet.main"), ("styles", "styles"), *([("sharedStrings", "sharedStrings")] if strings else []),
                *((f"worksheets/sheet{i + 1}", "worksheet") for i in range(len(sheets)))]) + "</Types>",
        "_rels/.rels": f'<Relationships xmlns="{PACKAGE}/relationships"><Relationship Id="rId1" '
                       f'Type="{RELATIONSHIPS}/officeDocument" Target="xl/workbook.xml"/></Relationships>',
        "xl/workbook.xml": f'<workbook xmlns="{MAIN}" xmlns:r="{RELATIONSHIPS}"><sheets>' + "".join(
            f'<sheet name="{name}" sheetId="{i + 1}" r:id="rId{i + 1}"/>' for i, name in enumerate(names)) + "</sheets></workbook>",
        "xl/_rels/workbook.xml.rels": f'<Relationships xmlns="{PACKAGE}/relationships">' + "".join(
            f'<Relationship Id="rId{i + 1}" Type="{RELATIONSHIPS}/worksheet" Target="worksheets/sheet{i + 1}.xml"/>'
            for i in range(len(sheets))) + "</Relationships>",
        "xl/styles.xml": f'<styleSheet xmlns="{MAIN}"><cellXfs><xf numFmtId="0"/><xf numFmtId="4"/><xf numFmtId="10"/>'
                         f'<xf numFmtId="14"/></cellXfs></styleSheet>',
    }
    relationships = "".join(f'<Relationship Id="{name}" Type="{RELATIONSHIPS}/{name}" Target="{name}.xml"/>'
                            for name in ["styles", *(["sharedStrings"] if strings else [])])
    parts["xl/_rels/workbook.xml.rels"] = parts["xl/_rels/workbook.xml.rels"].replace("</Rel", relationships + "</Rel")
    if strings:
        parts["xl/sharedStrings.xml"] = f'<sst xmlns="{MAIN}">' + "".join(f"<si><t>{text}</t></si>" for text in strings) + "</sst>"
    for i, sheet in enumerate(sheets):
        parts[f"xl/worksheets/sheet{i + 1}.xml"] = sheet
    parts.update(extra)

    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED, compresslevel=6) as archive:
        for name in sorted(parts):
            archive.writestr(zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0)), parts[name], zipfile.ZIP_DEFLATED)
    return out.getvalue()


def mixed_rows(count, columns, strings, seed=1, first=1):
    """Shared strings, numbers, dates, percentages and formulas with stored results."""
    random = noise(seed)
    for row in range(first, first + count):
        cells = []
        for column in range(1, columns + 1):
            at = f"{letters(column)}{row}"
            kind = column % 8
            if row == 1 or kind in (1, 2):
                cells.append(f'<c r="{at}" t="s"><v>{next(random) % strings}</v></c>')
            elif kind in (3, 4):
                cells.append(f'<c r="{at}" s="1"><v>{next(random) / 1000}</v></c>')
            elif kind == 5:
                cells.append(f'<c r="{at}" s="2"><v>0.{next(random) % 10000:04}</v></c>')
            elif kind == 6:
                cells.append(f'<c r="{at}" s="3"><v>{40000 + next(random) % 5000}</v></c>')
            elif kind == 7:
                cells.append(f'<c r="{at}"><v>{next(random) % 100000}</v></c>')
            else:
                cells.append(f'<c r="{at}" s="1"><f>C{row}+D{row}</f><v>{next(random) / 1000}</v></c>')
        yield f'<row r="{row}">{"".join(cells)}</row>'


def words(count, length):
    random = noise(7)
    return ["".join(f"{next(random):08x} " for _ in range(length // 9 + 1))[:length].strip() for _ in range(count)]


def mixed(cells, columns=8):
    return workbook([worksheet(mixed_rows(cells // columns, columns, 5000))], words(5000, 24))


def inline_sheet(size, seed):
    """A worksheet of about that many bytes: long inline texts, within the cells that one sheet may have."""
    random = noise(seed)
    rows, used, row = [], 0, 0
    while used < size:
        row += 1
        cells = "".join(
            f'<c r="{letters(column)}{row}" t="inlineStr"><is><t>{"".join(f"{next(random):08x}" for _ in range(40))}</t></is></c>'
            for column in range(1, 9))
        rows.append(f'<row r="{row}">{cells}</row>')
        used += len(rows[-1])
    return worksheet(rows)


def near_limit(share):
    """The largest workbook that is accepted, or a share of it: worksheets of mixed short cells and of long texts."""
    sheets = [worksheet(mixed_rows(int(6250 * share), 8, 5000, seed)) for seed in range(1, 9)]
    left = int(TOTAL * share) - sum(map(len, sheets))
    while left > 0:
        sheets.append(inline_sheet(min(left, 14_000_000), len(sheets)))
        left -= len(sheets[-1])
    return workbook(sheets, words(5000, 24))


def attribute_names(count):
    return [letters(i + 1).lower() for i in range(count)]


def many_attributes(count, seed):
    """Elements of 64 attributes each, with values whose compression ratio is within the limit."""
    random = noise(seed)
    names = attribute_names(64)
    for _ in range(count):
        digits = f"{next(random):010}" * 7
        yield "<b" + "".join(f' {name}="{digits[i]}"' for i, name in enumerate(names)) + "/>"


def shared_formula(cells):
    """A formula of 8,000 characters, shared by that many cells."""
    return workbook([worksheet([
        f'<row r="1"><c r="A1"><f t="shared" si="0" ref="A1:A{cells}">{"A$1+" * 2000}1</f></c></row>',
        *(f'<row r="{row}"><c r="A{row}"><f t="shared" si="0"/></c></row>' for row in range(2, cells + 1))])])


def scaled(make):
    """The workload, and a half, a quarter and an eighth of it."""
    return {"": make(1), ".half": make(0.5), ".quarter": make(0.25), ".eighth": make(0.125)}


WORKLOADS = {
    "tiny": lambda: {"": workbook([worksheet(mixed_rows(3, 4, 4))], words(4, 8))},
    "table-200x8": lambda: scaled(lambda share: workbook(
        [worksheet(mixed_rows(int(200 * share) + 1, 8, 200))], words(200, 12))),
    "cells-50000": lambda: scaled(lambda share: mixed(int(50000 * share))),
    "sheets-64": lambda: scaled(lambda share: workbook(
        [worksheet(mixed_rows(20, 8, 100, seed)) for seed in range(int(64 * share))], words(100, 12))),
    "part-16-mib": lambda: scaled(lambda share: workbook([inline_sheet(int((PART_LIMIT - 100_000) * share), 3)])),
    "near-limit": lambda: scaled(near_limit),
    "strings-50000": lambda: scaled(lambda share: workbook(
        [worksheet(mixed_rows(10, 8, int(50000 * share)))], words(int(50000 * share), 300))),
    "empty-elements": lambda: scaled(lambda share: workbook(
        [worksheet(mixed_rows(2, 2, 2))], ["a", "b"],
        {f"xl/e{i:03}.xml": "<a>" + "<b/>" * 54_000 + "</a>" for i in range(int(300 * share))})),
    # Above the limit on expanded bytes: must be refused quickly.
    "empty-elements-refused": lambda: {"": workbook(
        [worksheet(mixed_rows(2, 2, 2))], ["a", "b"],
        {f"xl/e{i:03}.xml": "<a>" + "<b/>" * 199_999 + "</a>" for i in range(300)})},
    # Content that the cleaner skips, and the same workbook without it.
    "pictures-25-mb": lambda: {"": workbook([worksheet(mixed_rows(2000, 8, 500))], words(500, 24),
                                            {f"xl/media/image{i}.png": noise_bytes(5_000_000, i) for i in range(5)}),
                               ".none": workbook([worksheet(mixed_rows(2000, 8, 500))], words(500, 24))},
    # Written out it would be 400 MB; the cleaner stops at 16 MiB, at cell 2,086. The shares are of what is written.
    "shared-formula": lambda: {"": shared_formula(50_000), ".half": shared_formula(1042),
                               ".quarter": shared_formula(521), ".eighth": shared_formula(260)},
    "attributes-64": lambda: scaled(lambda share: workbook([worksheet(mixed_rows(2, 2, 2))], ["a", "b"], {
        f"xl/a{i}.xml": "<a>" + "".join(many_attributes(int(30_000 * share), i)) + "</a>" for i in range(3)})),
    "distinct-attributes": lambda: scaled(lambda share: workbook([worksheet(mixed_rows(2, 2, 2))], ["a", "b"], {
        "xl/a.xml": "<a>" + "".join(
            "<b" + "".join(f' {name}=""' for name in names[i:i + 64]) + "/>" for i in range(0, len(names), 64)) + "</a>"
        for names in [attribute_names(int(1_700_000 * share))]})),
    "one-tag": lambda: scaled(lambda share: workbook([worksheet(mixed_rows(2, 2, 2))], ["a", "b"], {
        "xl/a.xml": "<a" + "".join(f' {name}=""' for name in attribute_names(int(1_850_000 * share))) + "/>"})),
    "deep-nesting": lambda: scaled(lambda share: workbook([worksheet(mixed_rows(2, 2, 2))], ["a", "b"], {
        f"xl/d{i}.xml": "<a>" + ("<b>" * 63 + "</b>" * 63) * 3_000 + "</a>" for i in range(int(40 * share))})),
    "entries-512": lambda: scaled(lambda share: workbook(
        [worksheet(mixed_rows(2, 2, 2))], ["a", "b"], {f"xl/e{i:03}.xml": "<a/>" for i in range(int(505 * share))})),
}


def main():
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, make in WORKLOADS.items():
        if (folder / f"{name}.xlsx").exists():
            continue
        for suffix, data in make().items():
            (folder / f"{name}{suffix}.xlsx").write_bytes(data)
            print(f"{name}{suffix}.xlsx {len(data)} bytes")


if __name__ == "__main__":
    main()
