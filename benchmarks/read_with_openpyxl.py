#!/usr/bin/env python3
"""Reads a workbook with openpyxl in its read-only mode: every cell, or a range of the first sheet. Prints the number of nonempty cells."""

import sys

import openpyxl

book = openpyxl.load_workbook(sys.argv[1], read_only=True, data_only=True)
rows = book.worksheets[0][sys.argv[2]] if len(sys.argv) > 2 else (row for sheet in book for row in sheet.iter_rows())
print(sum(cell.value is not None for row in rows for cell in row))
