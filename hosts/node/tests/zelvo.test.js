// Owns the Node host: every operation against the real worker and cleaner, and every way in which a program can fail.

import assert from "node:assert/strict";
import { mkdtempSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";

import { Cleaner, ErrorValue, Refused, Table, Worker } from "../zelvo.js";

const book = process.env.ZELVO_EXAMPLE_WORKBOOK;

test("every operation", async () => {
  const worker = new Worker();
  const [sheet] = (await worker.inspect(book)).sheets;
  assert.deepEqual([sheet.name, sheet.hidden], ["Quarter", false]);
  const table = await worker.extract(book, "Quarter", "A1:B5", { cachedFormulas: true });
  assert.deepEqual(table.values(), table.records().map(Object.values));
  assert.equal(table.cells[0][0].address, "A2");
  const chart = { categoryColumn: 0, valueColumn: 1, title: "Chart" };
  for (const options of [{ format: "docx" }, { format: "pptx", chart }]) {
    const created = await worker.create(book, "Quarter", "A1:B5", { title: "T", cachedFormulas: true, ...options });
    assert.deepEqual(created.table, table);
    const expected = { expectedTable: table, chart: options.chart, sourceName: "d" };
    const validation = await worker.validate(created.data, options.format, expected);
    assert.ok(validation.structurallyValid && validation.sourceValuesVerified);
  }
  const cleaned = await new Cleaner().clean(book, { sheets: ["Quarter"] });
  assert.deepEqual(cleaned.report.sheets.map((s) => s.name), ["Quarter"]);
  assert.equal((await worker.inspect(cleaned.data, { sourceName: "c.xlsx" })).sourceName, "c.xlsx");
});

test("values", () => {
  const cells = [{ number: { _0: "12.50" } }, { boolean: { _0: true } }, { missing: {} }, { error: { _0: "#N/A" } }];
  const table = new Table({ columns: ["a", "b", "c", "d"], rows: [cells.map((value) => ({ value }))] });
  assert.deepEqual(table.values(), [[12.5, true, null, new ErrorValue("#N/A")]]);
});

test("refusals", async () => {
  const worker = new Worker();
  await assert.rejects(worker.inspect(Buffer.from("PK")), { name: "Refused", message: /^The document / });
  await assert.rejects(worker.inspect(Buffer.alloc(32 << 20)), { message: /^The document is too large/ });
  await assert.rejects(new Cleaner().clean(book, { sheets: ["none"] }), Refused);
});

for (const [kind, script] of [
  ["timed out", "sleep 60"], ["timed out", "exec >&- 2>&-; sleep 60"], ["too large", "yes"], ["no response", "exit 65"],
  ["not confined", "exit 78"], ["status", "exit 3"], ["killed", "kill -KILL $$"], ["forbidden call", "kill -SYS $$"],
  ["processor time", "kill -XCPU $$"], ["crashed", "kill -SEGV $$"], ["unreadable response", ""],
  ["unreadable response", "echo '{\"inspection\":{}}'"], ["unreadable response", "echo '[]'"],
  ["unreadable response", "printf '{\"inspection\":{\"sheets\":\"\\377\"}}'"], ["not started", null], ["not found", "missing"],
]) {
  test(`failure: ${kind}, ${script}`, async () => {
    const path = join(mkdtempSync(join(tmpdir(), "zelvo-")), "worker");
    if (script !== "missing") writeFileSync(path, `#!/bin/sh\n${script}\n`, { mode: script === null ? 0o600 : 0o700 });
    const worker = new Worker({ path, timeout: kind === "timed out" ? 2 : 60 });
    await assert.rejects(worker.inspect(Buffer.alloc(1 << 20)), { name: "WorkerFailed", kind });
  });
}
