"""Datasets and a scope for the readers of research documents."""

import random

TITLE = 'Prices <this> & "that"'
URL = "https://a/?b&c"
LONG_URLS = [f"https://example.org/{'a' * 150}/{i}?b=1&c=%3C" for i in range(3)]
IDS = [f"local-{i}" for i in range(3)]
SCOPE = {"localSnapshotIDs": IDS,
         "publicSources": {f"page-{i}": url for i, url in enumerate([URL, *LONG_URLS])},
         "records": [{"id": name, "kind": "localSnapshot", "label": "Label " * 26, "coverage": "Page 1",
                      "observedAt": "2024-02-29T12:00:00Z"} for name in IDS]}


def dataset(columns, rows, charts=(), calculations=()):
    """Columns are (name, kind, unit?), charts (kind, value columns), calculations (row, column, formula)."""
    return {"report": "One.\n\nTwo <b>\tthree & \"four\"",
            "columns": [dict(zip(("name", "kind", "unit"), column)) for column in columns],
            "rows": [{"cells": list(cells), "sources": [URL]} for cells in rows],
            "charts": [{"title": TITLE, "kind": kind, "categoryColumn": 0, "valueColumns": values}
                       for kind, values in charts],
            "calculations": [dict(zip(("row", "column", "formula"), entry)) for entry in calculations]}


def header(column):
    return column["name"] + (f" ({column['unit']})" if "unit" in column else "")


def operation(name, *arguments):
    return {"op": name, "arguments": list(arguments)}


def number(value):
    return {"op": "number", "value": value}


def cell(place):
    return {"op": "cell", "row": place[0], "column": place[1]}


class RandomFormulas(random.Random):
    """Datasets of formulas that a spreadsheet program computes like the evaluator. Two things are left out:
    an aggregate of a blank cell is an error there, since the cell's text is then "", which is no number; and
    nearly equal numbers have no difference: so inputs are positive and little is subtracted."""

    INPUTS, COLUMNS, ROWS = 5, 10, 24

    def dataset(self):
        self.known = []  # the results that a formula may read, so that there is no circle
        calculations = []
        places = [(row, column) for row in range(self.ROWS) for column in range(self.INPUTS, self.COLUMNS)]
        for place in self.sample(places, len(places)):
            calculations.append((*place, self.formula(3)))
            self.known.append(place)
        self.shuffle(calculations)
        rows = [[self.input() for _ in range(self.INPUTS)] + [None] * (self.COLUMNS - self.INPUTS)
                for _ in range(self.ROWS)]
        return dataset([(f"C{i}", "number") for i in range(self.COLUMNS)], rows, calculations=calculations)

    def everyday(self):
        return round(self.uniform(1, 100), 4)

    def input(self):
        magnitude = float(f"{self.uniform(1, 9.9):.3f}e{self.randrange(-9, 9)}")
        return self.choice([None, None, 0, float(self.randrange(1, 1000)), magnitude, *[self.everyday()] * 5])

    def constant(self):
        return number(self.choice([1, 2.5, 1e-5, 0.1, 123456789012.25, self.everyday()]))

    def cell(self):
        inputs = [(self.randrange(self.ROWS), self.randrange(self.INPUTS))]
        return cell(self.choice(self.known if self.known and self.random() < 0.4 else inputs))

    def range(self):
        top, bottom = sorted(self.choices(range(self.ROWS), k=2))
        left, right = sorted(self.choices(range(self.INPUTS), k=2))
        return {"op": "range", "row": top, "column": left, "endRow": bottom, "endColumn": right}

    def formula(self, depth):
        kind = self.random()
        if depth == 0 or kind < 0.1:
            return self.choice([self.cell, self.cell, self.constant])()
        if kind > 0.55:
            aggregate = self.choice(["sum", "average", "minimum", "maximum", "count"])
            return operation(aggregate, *(self.aggregated(depth) for _ in range(self.randrange(1, 4))))
        name = self.choice(["add", "subtract", "multiply", "divide"])
        first, second = self.formula(depth - 1), self.formula(depth - 1)
        if name == "subtract":
            second = operation("multiply", first, number(round(self.uniform(1e-3, 0.1), 4)))
        return operation(name, first, second)

    def aggregated(self, depth):
        kind = self.random()
        if kind < 0.6:
            return self.range()
        return self.constant() if kind < 0.8 else operation("count", self.formula(depth - 1), self.range())
