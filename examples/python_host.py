"""Inspects a workbook, extracts a table and writes it as a Word document: python_host.py BOOK.xlsx OUT.docx"""

import pathlib
import sys

import zelvo

book, output = sys.argv[1:]
worker = zelvo.Worker()
try:
    sheet = worker.inspect(book).sheets[0]
    print(f"{sheet.name}: {sheet.populated_range}, {sheet.populated_cell_count} cells")
    table = worker.extract(book, sheet.name, "A1:D5", cached_formulas=True)
    print(table.records()[0])
    document = worker.create(book, sheet.name, "A1:D5", title="Quarterly sales", cached_formulas=True)
except zelvo.Refused as refusal:
    sys.exit(f"The document was refused: {refusal}")
except zelvo.WorkerFailed as failure:
    sys.exit(f"There is no answer ({failure.kind}): {failure}")
pathlib.Path(output).write_bytes(document.data)
print(f"{output}: {len(document.data)} bytes")
