// Inspects a workbook, extracts a table and writes it as a Word document: node_host.mjs BOOK.xlsx OUT.docx

import { writeFile } from "node:fs/promises";

import { Refused, Worker, WorkerFailed } from "../hosts/node/zelvo.js"; // from "zelvo" once it is installed

const [book, output] = process.argv.slice(2);
const worker = new Worker();
const options = { cachedFormulas: true };
try {
  const [sheet] = (await worker.inspect(book)).sheets;
  console.log(`${sheet.name}: ${sheet.populatedRange}, ${sheet.populatedCellCount} cells`);
  const table = await worker.extract(book, sheet.name, "A1:D5", options);
  console.log(table.records()[0]);
  const document = await worker.create(book, sheet.name, "A1:D5", { title: "Quarterly sales", ...options });
  await writeFile(output, document.data);
  console.log(`${output}: ${document.data.length} bytes`);
} catch (error) {
  if (error instanceof Refused) console.error(`The document was refused: ${error.message}`);
  else if (error instanceof WorkerFailed) console.error(`There is no answer (${error.kind}): ${error.message}`);
  else throw error;
  process.exitCode = 1;
}
