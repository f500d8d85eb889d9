#!/usr/bin/env python3
"""Writes a Word document of a table of 201 rows and 8 columns with python-docx, to memory."""

import io

import docx

document = docx.Document()
table = document.add_table(rows=201, cols=8)
for number, row in enumerate(table.rows):
    for letter, cell in zip("ABCDEFGH", row.cells):
        cell.text = f"{letter}{number + 1} 1,234.56"
document.save(io.BytesIO())
