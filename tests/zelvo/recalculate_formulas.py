#!/usr/bin/python3
"""Has an office suite recalculate the formula texts of generated datasets, and compares with the cached values.

usage: recalculate_formulas.py ZELVO

Values must agree within 16 units in the last place, blank for blank: the evaluator adds plainly, the office suite carries along
what rounding loses, and the sums here differ by five units at most. One difference is known and left out: an aggregate whose
direct argument is a blank cell is an error in a spreadsheet, since the cell's text is then "", which is no number; the evaluator
passes it over. Another is kept out of reach: the office suite takes sums and differences of nearly equal magnitude for zero, so
inputs are positive and what is subtracted is much smaller than what it is taken from.
"""

import json
import math
import random
import subprocess
import sys
import tempfile
from pathlib import Path

import openpyxl

sys.path.append(str(Path(__file__).parents[1] / "outside"))
import office

DATASETS = 30
INPUTS, OUTPUTS, ROWS = 5, 5, 24  # columns of either kind; outputs stand behind the inputs
TOLERANCE = 16  # units in the last place
DIFFERENCE = 20  # how far to the right of a formula
ARITHMETIC = ["add", "subtract", "multiply", "divide"]
AGGREGATES = ["sum", "average", "minimum", "maximum", "count"]


class Generator:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.cells = [[self.input() for _ in range(INPUTS)] + [None] * OUTPUTS for _ in range(ROWS)]
        places = [(row, INPUTS + column) for row in range(ROWS) for column in range(OUTPUTS)]
        self.random.shuffle(places)
        self.resolvable = []  # what a formula may read of the outputs, so that there is no circle
        calculations = []
        for row, column in places:
            calculations.append({"row": row, "column": column, "formula": self.formula(3)})
            self.resolvable.append((row, column))
        self.random.shuffle(calculations)  # dependencies stand before and behind
        self.dataset = {
            "report": "generated",
            "columns": [{"name": f"C{i}", "kind": "number"} for i in range(INPUTS + OUTPUTS)],
            "rows": [{"cells": cells, "sources": []} for cells in self.cells],
            "charts": [],
            "calculations": calculations,
        }

    def input(self):
        """Blanks, zeros, whole numbers, numbers of many magnitudes, and for the most part everyday ones."""
        kind = self.random.randrange(10)
        if kind == 4:
            return float(f"{self.random.uniform(1, 9.9):.3f}e{self.random.randrange(-9, 9)}")
        everyday = round(self.random.uniform(1, 100), 4)
        return {0: None, 1: None, 2: 0, 3: float(self.random.randrange(1, 1000))}.get(kind, everyday)

    def number(self, value):
        return {"op": "number", "value": value}

    def constant(self):
        everyday = round(self.random.uniform(1, 100), 4)
        return self.number(self.random.choice([1, 2.5, 1e-5, 0.1, 123456789012.25, everyday]))

    def cell(self):
        if self.resolvable and self.random.random() < 0.4:
            row, column = self.random.choice(self.resolvable)
        else:
            row, column = self.random.randrange(ROWS), self.random.randrange(INPUTS)
        return {"op": "cell", "row": row, "column": column}

    def range(self):
        top, bottom = sorted(self.random.randrange(ROWS) for _ in range(2))
        left, right = sorted(self.random.randrange(INPUTS) for _ in range(2))
        return {"op": "range", "row": top, "column": left, "endRow": bottom, "endColumn": right}

    def formula(self, depth):
        kind = self.random.random()
        if depth == 0 or kind < 0.1:
            return self.cell() if self.random.random() < 0.7 else self.constant()
        if kind >= 0.55:
            arguments = [self.aggregated(depth) for _ in range(self.random.randrange(1, 4))]
            return {"op": self.random.choice(AGGREGATES), "arguments": arguments}
        operation = self.random.choice(ARITHMETIC)
        first = self.formula(depth - 1)
        if operation == "subtract":  # a small part of something from all of it
            part = self.number(round(self.random.uniform(1e-3, 0.1), 4))
            return {"op": operation, "arguments": [first, {"op": "multiply", "arguments": [first, part]}]}
        return {"op": operation, "arguments": [first, self.formula(depth - 1)]}

    def aggregated(self, depth):
        """An argument that is never a blank scalar: a range, a constant, or a count."""
        kind = self.random.random()
        if kind < 0.6:
            return self.range()
        return self.constant() if kind < 0.8 else {"op": "count", "arguments": [self.formula(depth - 1), self.range()]}


def checked(tool, dataset):
    """What the tool makes of a dataset; none when a formula leaves what the evaluator takes."""
    run = subprocess.run([tool, "research", "check", "-"], input=json.dumps(dataset), capture_output=True, text=True, check=False)
    if run.returncode == 0:
        return json.loads(run.stdout)
    if "formula text or numeric result" in run.stderr:
        return None
    sys.exit(run.stderr)


def write_workbook(results, path):
    """A sheet a dataset: its cells, and for each formula, to its right, how far it is from the cached value.

    The office suite reads and saves 15 digits, which hide the last places. In this one function it subtracts exactly, from a
    cached value that is written as an integer and a power of two, and a difference of a few last places needs few digits.
    """
    book = openpyxl.Workbook()
    book.remove(book.active)
    for number, result in enumerate(results):
        sheet = book.create_sheet(f"S{number}")
        for r, row in enumerate(result["dataset"]["rows"]):
            for c, value in enumerate(row["cells"]):
                sheet.cell(r + 2, c + 1, value)
        for calculation in result["calculations"]:
            formula = sheet.cell(calculation["row"] + 2, calculation["column"] + 1, "=" + calculation["formula"])
            if "value" in calculation:
                fraction, exponent = math.frexp(calculation["value"])
                sheet.cell(formula.row, formula.column + DIFFERENCE,
                           f"=_xlfn.ORG.LIBREOFFICE.RAWSUBTRACT({formula.coordinate},{int(fraction * 2**53)}*2^{exponent - 53})")
    book.save(path)


def agrees(sheet, calculation):
    row, column = calculation["row"] + 2, calculation["column"] + 1
    found = sheet.cell(row, column).value
    if "value" not in calculation:
        return found in (None, "")
    difference = sheet.cell(row, column + DIFFERENCE).value
    both_numbers = isinstance(found, (int, float)) and isinstance(difference, (int, float))
    return both_numbers and abs(difference) <= TOLERANCE * math.ulp(calculation["value"])


def main():
    tool = sys.argv[1]
    results = [result for seed in range(DATASETS) if (result := checked(tool, Generator(seed).dataset))]
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        write_workbook(results, folder / "formulas.xlsx")
        (folder / "out").mkdir()
        office.convert([folder / "formulas.xlsx"], "xlsx:Calc MS Excel 2007 XML", folder / "out")
        book = openpyxl.load_workbook(folder / "out" / "formulas.xlsx", data_only=True)
    faults, compared, blanks = [], 0, 0
    for number, result in enumerate(results):
        for calculation in result["calculations"]:
            compared += 1
            blanks += "value" not in calculation
            if not agrees(book[f"S{number}"], calculation):
                faults.append(f"dataset {number}: {calculation} recalculates differently")
    print(*faults[:20], sep="\n")
    print(f"{compared} formulas of {len(results)} datasets, {blanks} blank, {len(faults)} differ")
    # The generator must not have drifted into datasets that say nothing.
    sys.exit(bool(faults) or compared < 2000 or not compared / 20 < blanks < compared / 2)


if __name__ == "__main__":
    main()
