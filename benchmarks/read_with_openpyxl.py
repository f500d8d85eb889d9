#!/usr/bin/env python3
"""Reads every cell of a workbook with openpyxl in its read-only mode and prints how many hold something."""

import sys

import openpyxl

book = openpyxl.load_workbook(sys.argv[1], read_only=True)
print(sum(cell.value is not None for sheet in book for row in sheet.iter_rows() for cell in row))
