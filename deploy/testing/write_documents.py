"""Writes documents of which some are hostile, and their list: write_documents.py BOOK.xlsx COUNT FOLDER LIST

The name of each document says its kind, which `check_results.py` compares with its outcome.
"""

from __future__ import annotations

import io
import pathlib
import sys
import zipfile
from typing import Callable, Dict

BOOK = pathlib.Path(sys.argv[1]).read_bytes()


def replace_part(name: str, content: bytes) -> bytes:
    """The workbook with another content of one part."""
    result = io.BytesIO()
    with zipfile.ZipFile(io.BytesIO(BOOK)) as source, zipfile.ZipFile(result, "w", zipfile.ZIP_DEFLATED) as target:
        for part in source.namelist():
            target.writestr(part, content if part == name else source.read(part))
    return result.getvalue()


def word_document() -> bytes:
    result = io.BytesIO()
    main = "application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"
    with zipfile.ZipFile(result, "w") as document:
        document.writestr("[Content_Types].xml", '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
                          f'<Override PartName="/word/document.xml" ContentType="{main}"/></Types>')
        document.writestr("_rels/.rels", '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
                          '<Relationship Id="rId1" Target="word/document.xml" Type="http://schemas.openxmlformats.org/'
                          'officeDocument/2006/relationships/officeDocument"/></Relationships>')
        document.writestr("word/document.xml",
                          '<document xmlns="http://schemas.openxmlformats.org/wordprocessingml/2006/main"/>')
    return result.getvalue()


SHEET = "xl/worksheets/sheet1.xml"
KINDS: Dict[str, Callable[[], bytes]] = {
    "bomb": lambda: replace_part(SHEET, b"<worksheet>" + b" " * (15 << 20) + b"</worksheet>"),
    "malformed": lambda: replace_part(SHEET, b"<worksheet><sheetData></worksheet>"),
    "truncated": lambda: BOOK[:len(BOOK) // 2],
    "word": word_document,
}


def main() -> None:
    count, folder, names = int(sys.argv[2]), pathlib.Path(sys.argv[3]), []
    folder.mkdir(parents=True, exist_ok=True)
    hostile = list(KINDS)
    for number in range(count):
        # Four of ten are hostile. Names that a shell would split or expand are passed on unchanged.
        kind = hostile[number % 10] if number % 10 < len(hostile) else "good"
        path = folder / f"{kind} é$ {number}.xlsx"
        path.write_bytes(KINDS[kind]() if kind in KINDS else BOOK)
        names.append(f"{path}\n")
    pathlib.Path(sys.argv[4]).write_text("".join(names), encoding="utf-8")


main()
