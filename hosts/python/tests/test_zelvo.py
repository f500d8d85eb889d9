"""Owns the Python host: every operation against the real worker and cleaner, and every way in which a program can fail."""

import os
import pathlib
import sys
import tempfile
import threading
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1]))
import zelvo  # noqa: E402

BIN = pathlib.Path(os.environ["ZELVO_LIBEXEC"])
BOOK = os.environ["ZELVO_EXAMPLE_WORKBOOK"]


class Operations(unittest.TestCase):
    def test_every_operation(self):
        worker = zelvo.Worker()
        sheet = worker.inspect(BOOK).sheets[0]
        self.assertEqual((sheet.name, sheet.hidden), ("Quarter", False))
        table = worker.extract(pathlib.Path(BOOK), "Quarter", "A1:B5", cached_formulas=True)
        self.assertEqual(table.rows(), [list(record.values()) for record in table.records()])
        self.assertEqual(table.cells[0][0].address, "A2")
        chart = {"categoryColumn": 0, "valueColumn": 1, "title": "Chart"}
        for format, options in (("docx", {}), ("pptx", {"chart": chart})):
            document = worker.create(BOOK, "Quarter", "A1:B5", title="T", format=format, cached_formulas=True, **options)
            self.assertEqual((document.table, document.data[:2]), (table, b"PK"))
            validation = worker.validate(document.data, format, expected_table=table, source_name="d", **options)
            self.assertTrue(validation.structurally_valid and validation.source_values_verified)
        cleaned = zelvo.Cleaner().clean(BOOK, sheets=["Quarter"])
        self.assertEqual([s["name"] for s in cleaned.report["sheets"]], ["Quarter"])
        self.assertEqual(worker.inspect(cleaned.data, source_name="c.xlsx").source_name, "c.xlsx")

    def test_values(self):
        for kind, stored, value in (("number", "12.50", 12.5), ("number", "-7", -7), ("number", "1e3", 1000.0),
                                    ("boolean", True, True), ("missing", None, None), ("text", "12", "12"),
                                    ("error", "#N/A", zelvo.ErrorValue("#N/A"))):
            self.assertEqual(zelvo.Cell("A1", kind, stored, None, False, None, False).value, value)

    def test_refusals(self):
        for act, message in ((lambda: zelvo.Worker().inspect(b"PK"), "The document"),
                             (lambda: zelvo.Cleaner().clean(BOOK, sheets=["none"]), "The selected table"),
                             (lambda: zelvo.Worker().inspect(bytes(32 << 20)), "The document is too large")):
            with self.assertRaisesRegex(zelvo.Refused, "^" + message):
                act()

    def test_failures(self):
        for kind, script in (("timed out", "sleep 60"), ("timed out", "exec >&- 2>&-; sleep 60"), ("too large", "yes"),
                             ("no response", "exit 65"), ("not confined", "exit 78"), ("status", "exit 3"),
                             ("killed", "kill -KILL $$"), ("forbidden call", "kill -SYS $$"),
                             ("processor time", "kill -XCPU $$"), ("crashed", "kill -SEGV $$"),
                             ("unreadable response", ""), ("unreadable response", "echo '{\"inspection\":{}}'"),
                             ("unreadable response", "echo '[]'"), ("not started", None), ("not found", "missing")):
            with tempfile.TemporaryDirectory() as folder, self.subTest(kind=kind, script=script):
                path = pathlib.Path(folder, "worker")
                if script != "missing":
                    path.write_text(f"#!/bin/sh\n{script}\n")
                    path.chmod(0o600 if script is None else 0o700)
                worker = zelvo.Worker(path, timeout=2 if kind == "timed out" else 60)
                with self.assertRaises(zelvo.WorkerFailed) as caught:
                    worker.inspect(bytes(1 << 20))  # more than a pipe holds
                self.assertEqual(caught.exception.kind, kind)

    def test_several_threads(self):
        worker, found = zelvo.Worker(), []
        threads = [threading.Thread(target=lambda: found.append(worker.inspect(BOOK))) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(found, [worker.inspect(BOOK)] * 4)


if __name__ == "__main__":
    unittest.main()
