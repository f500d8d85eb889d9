/** Reads and writes office documents in confined worker processes, one process a request. */

/** A path, or the bytes themselves. */
export type DocumentSource = string | URL | Uint8Array;
export type Format = "docx" | "pptx";
export type Value = null | boolean | string | number | ErrorValue;

export const maximumMessageBytes: number;

/** The worker refused the document or the request. The message is a sentence for the user; it can quote the document. */
export class Refused extends Error {}

export type FailureKind =
  | "not found" | "not started" | "timed out" | "too large" | "no response" | "not confined" | "processor time"
  | "killed" | "forbidden call" | "crashed" | "status" | "unreadable response";

/** There is no answer. */
export class WorkerFailed extends Error {
  readonly kind: FailureKind;
}

/** An error of a cell, such as "#DIV/0!". */
export class ErrorValue {
  constructor(code: string);
  readonly code: string;
}

export interface Sheet {
  name: string;
  hidden: boolean;
  /** "A1:D20"; absent for a sheet without cells. */
  populatedRange?: string;
  populatedCellCount: number;
  formulaCellCount: number;
  formulasMissingCache: number;
  hasHiddenRowsOrColumns: boolean;
  hasAutoFilter: boolean;
}

export interface Inspection {
  sourceName: string;
  sourceSHA256: string;
  sheets: Sheet[];
  dateSystem: "1900" | "1904";
  calculationMode: string;
  warnings: string[];
}

export interface Cell {
  address: string;
  kind: "text" | "number" | "boolean" | "date" | "error" | "missing";
  /** Exactly as the workbook has it: the digits of a number, never a float. */
  stored: null | boolean | string;
  formula?: string;
  usesCachedFormulaValue: boolean;
  numberFormat?: string;
  hidden: boolean;
}

export class Table {
  readonly sourceName: string;
  readonly sourceSHA256: string;
  readonly sheetName: string;
  readonly selectedRange: string;
  readonly columns: string[];
  readonly cells: Cell[][];
  readonly warnings: string[];
  readonly headerUsesCachedFormulaValues: boolean;
  /** A number becomes the nearest double; dates stay ISO 8601 texts. */
  values(): Value[][];
  /** An object a row, keyed by column title. The last of several columns with one title wins. */
  records(): Record<string, Value>[];
}

export interface Validation {
  structurallyValid: boolean;
  sourceValuesVerified: boolean;
  visuallyVerified: boolean;
  validatorVersion: string;
  warnings: string[];
  outputSHA256: string;
}

export interface CreatedDocument {
  data: Uint8Array;
  format: Format;
  sourceSHA256: string;
  validation: Validation;
  table: Table;
}

export interface CleaningReport {
  sheets: { name: string; cells: number; formulas: number }[];
  dropped: { kind: string; count: number; parts: string[]; names?: string[]; sheets?: { sheet: number; count: number }[] }[];
  changed: { kind: string; count: number; code?: string; sheets?: { sheet: number; count: number }[] }[];
}

export interface Cleaned {
  data: Uint8Array;
  sourceSHA256: string;
  outputSHA256: string;
  report: CleaningReport;
}

/** Columns are zero-based. */
export interface Chart { categoryColumn: number; valueColumn: number; title: string }

export interface HostOptions {
  /** The executable; without it, it is looked for in $ZELVO_LIBEXEC and where packages install it. */
  path?: string;
  /** Wall-clock seconds a request; 180. */
  timeout?: number;
}
export interface SourceOptions {
  /** What the results call the document; the file's name by default. */
  sourceName?: string;
}
export interface SelectionOptions extends SourceOptions {
  /** Whether the first row holds column titles; true by default. */
  header?: boolean;
  includeHidden?: boolean;
  cachedFormulas?: boolean;
}

/** Each call rejects with `Refused` or `WorkerFailed`, or with the error of reading the file. */
export class Worker {
  constructor(options?: HostOptions);
  inspect(workbook: DocumentSource, options?: SourceOptions): Promise<Inspection>;
  /** At most 8 columns and 200 rows below the header. */
  extract(workbook: DocumentSource, sheet: string, range: string, options?: SelectionOptions): Promise<Table>;
  create(workbook: DocumentSource, sheet: string, range: string,
         options: SelectionOptions & { title: string; format?: Format; chart?: Chart }): Promise<CreatedDocument>;
  validate(document: DocumentSource, format: Format,
           options?: SourceOptions & { expectedTable?: Table; chart?: Chart }): Promise<Validation>;
}

/** Writes workbooks anew with only what is understood. */
export class Cleaner {
  constructor(options?: HostOptions);
  clean(workbook: DocumentSource,
        options?: SourceOptions & { sheets?: string[]; unmerge?: boolean; plainFormats?: boolean }): Promise<Cleaned>;
}
