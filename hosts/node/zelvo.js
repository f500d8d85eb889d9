// Reads and writes office documents in confined worker processes, one process a request. The types and the
// documentation are in zelvo.d.ts.

import { spawn } from "node:child_process";
import { accessSync, constants as access } from "node:fs";
import { readFile } from "node:fs/promises";
import { basename, join } from "node:path";

export const maximumMessageBytes = 41943040; // of a request and of a response
const maximumDocumentBytes = (maximumMessageBytes / 4) * 3; // base64 alone would fill the request
const installed = ["/usr/libexec/zelvo", "/usr/local/libexec/zelvo"];

export class Refused extends Error {
  name = "Refused";
}

export class WorkerFailed extends Error {
  name = "WorkerFailed";
  constructor(kind, message) {
    super(message);
    this.kind = kind;
  }
}

export class ErrorValue {
  constructor(code) {
    this.code = code;
  }
}

export class Table {
  constructor(record) {
    Object.assign(this, record);
    this.cells = record.rows.map((row) => row.map(cell));
    Object.defineProperty(this, "raw", { value: record });
    delete this.rows;
  }
  values() {
    return this.cells.map((row) => row.map(valueOf));
  }
  records() {
    return this.values().map((row) => Object.fromEntries(row.map((value, i) => [this.columns[i], value])));
  }
}

class Host {
  #path;
  #timeout;

  constructor(program, { path, timeout = 180 } = {}) {
    this.#path = path ?? find(program);
    this.#timeout = timeout * 1000;
  }

  async ask(document, sourceName, fields) {
    const { data, name } = await read(document);
    if (data.length >= maximumDocumentBytes) {
      throw new Refused("The document is too large: a request to the worker carries less than 30 MiB.");
    }
    const request = { ...fields, data: data.toString("base64"), sourceName: sourceName ?? name };
    const output = await run(this.#path, Buffer.from(JSON.stringify(request)), this.#timeout);
    let response;
    try {
      response = JSON.parse(new TextDecoder("utf-8", { fatal: true }).decode(output));
    } catch (error) {
      throw unreadable(error);
    }
    if (typeof response?.error === "string") throw new Refused(response.error);
    return response;
  }
}

export class Worker extends Host {
  constructor(options) {
    super("zelvo_document_worker", options);
  }

  async inspect(workbook, { sourceName } = {}) {
    const response = await this.ask(workbook, sourceName, { operation: "inspect" });
    return decoded(() => required(response, "inspection", "sheets").inspection);
  }

  async extract(workbook, sheet, range, options = {}) {
    const fields = { operation: "extract", selection: selection(sheet, range, options) };
    const response = await this.ask(workbook, options.sourceName, fields);
    return decoded(() => new Table(response.table));
  }

  async create(workbook, sheet, range, { title, format = "docx", chart, ...options }) {
    const fields = { operation: "create", title, format, chart, selection: selection(sheet, range, options) };
    const response = await this.ask(workbook, options.sourceName, fields);
    return decoded(() => {
      const { data, ...document } = required(response, "document", "data").document;
      return { ...document, data: bytes(data), table: new Table(response.table) };
    });
  }

  async validate(document, format, { expectedTable, chart, sourceName } = {}) {
    const fields = { operation: "validate", format, expectedTable: expectedTable?.raw, chart };
    const response = await this.ask(document, sourceName, fields);
    return decoded(() => required(response, "validation", "structurallyValid").validation);
  }
}

export class Cleaner extends Host {
  constructor(options) {
    super("zelvo_document_cleaner", options);
  }

  async clean(workbook, { sheets, unmerge, plainFormats, sourceName } = {}) {
    const response = await this.ask(workbook, sourceName, { version: 1, sheets, unmerge, plainFormats });
    return decoded(() => {
      const { data, ...document } = required(response, "document", "data").document;
      return { ...document, data: bytes(data), report: required(response, "report", "sheets").report };
    });
  }
}

function find(program) {
  const folders = [process.env.ZELVO_LIBEXEC, ...installed].filter(Boolean);
  for (const path of folders.map((folder) => join(folder, program))) {
    try {
      accessSync(path, access.X_OK);
      return path;
    } catch {
      // the next folder
    }
  }
  throw new WorkerFailed("not found", `${program} is in none of ${folders.join(", ")}.`);
}

async function read(document) {
  if (document instanceof Uint8Array) return { data: Buffer.from(document), name: "document" };
  return { data: await readFile(document), name: basename(String(document)) };
}

/** Writes the request while it reads the answer, so that neither side waits for the other. */
function run(path, request, timeout) {
  if (request.length > maximumMessageBytes) throw new Refused("The request is larger than 40 MiB.");
  return new Promise((resolve, reject) => {
    const child = spawn(path, [], { env: {}, stdio: ["pipe", "pipe", "ignore"] });
    const chunks = [];
    let size = 0;
    let failure = null;
    const stop = (reason) => {
      failure ??= reason;
      child.kill("SIGKILL");
      child.stdout.destroy(); // a process that it started may hold the pipe
    };
    const timer = setTimeout(
      () => stop(new WorkerFailed("timed out", "The worker did not end in time and was stopped.")), timeout);
    child.on("error", (error) => {
      clearTimeout(timer);
      const kind = error.code === "ENOENT" ? "not found" : "not started";
      reject(new WorkerFailed(kind, `The worker could not be run: ${error.message}`));
    });
    child.stdin.on("error", () => {}); // it ended early: its status tells why
    child.stdout.on("data", (chunk) => {
      size += chunk.length;
      if (size <= maximumMessageBytes) chunks.push(chunk);
      else stop(new WorkerFailed("too large", "The worker wrote more than the largest response."));
    });
    child.on("close", (code, signal) => {
      clearTimeout(timer);
      const problem = failure ?? failureOf(code, signal);
      if (problem) reject(problem);
      else resolve(Buffer.concat(chunks));
    });
    child.stdin.end(request);
  });
}

const failuresOfStatus = {
  65: ["no response", "could not use the request, the response was too large, or memory ran out (status 65)"],
  78: ["not confined", "refused to work because it could not confine itself (status 78)"],
};
const failuresOfSignal = {
  SIGXCPU: ["processor time", "used up its processor time"],
  SIGKILL: ["killed", "was killed (SIGKILL): memory or processor time may have run out"],
  SIGSYS: ["forbidden call", "was killed by a seccomp filter (SIGSYS)"],
};

function failureOf(code, signal) {
  if (code === 0) return null;
  const [kind, what] = signal
    ? failuresOfSignal[signal] ?? ["crashed", `crashed (${signal})`]
    : failuresOfStatus[code] ?? ["status", `ended with the unknown status ${code}`];
  return new WorkerFailed(kind, `The worker ${what}.`);
}

function unreadable(error) {
  return new WorkerFailed("unreadable response", `The worker's response cannot be read: ${error.message}`);
}

function decoded(decode) {
  try {
    return decode();
  } catch (error) {
    throw unreadable(error);
  }
}

function required(response, record, field) {
  if (response?.[record]?.[field] === undefined) throw new Error(`${record}.${field} is missing`);
  return response;
}

function bytes(base64) {
  const data = Buffer.from(base64, "base64");
  if (data.toString("base64") !== base64) throw new Error("not base64");
  return data;
}

function selection(sheetName, range, { header = true, includeHidden = false, cachedFormulas = false }) {
  return { sheetName, range, firstRowIsHeader: header, includeHiddenRows: includeHidden,
           allowCachedFormulaValues: cachedFormulas };
}

function cell({ value, ...rest }) {
  const [[kind, content]] = Object.entries(value);
  return { ...rest, kind, stored: content._0 ?? null };
}

/** A number becomes the nearest double; dates stay ISO 8601 texts, which have no time zone. */
function valueOf({ kind, stored }) {
  if (kind === "number") return Number(stored);
  return kind === "error" ? new ErrorValue(stored) : stored;
}
