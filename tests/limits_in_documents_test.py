"""Owns: the limits that the documents name are the constants of the code. {File.name} is a constant."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
PHRASES = {
    "README.md": """
        archive {BoundedZIP.maximumArchiveBytes} MiB, all parts expanded {BoundedZIP.maximumExpandedBytes} MiB
        {WorkbookStructure.maximumSheets} sheets, {WorksheetWalk.maximumWorksheetCells} cells a sheet
        `create` | {TableExtraction.maximumColumns} columns, {TableExtraction.maximumRows} rows""",
    "docs/protocol.md": """
        request and response at most {DocumentWorkerMessage.maximumMessageBytes:d} bytes
        | {WorkerExitStatus.noResponse} | nothing was written
        | {WorkerExitStatus.notConfined} | nothing was read
        a table of more than {TableExtraction.maximumTableBytes} MiB of text""",
    "docs/security.md": """
        ends within {Policy.soft} seconds of processor time
        request and response {DocumentWorkerMessage.maximumMessageBytes} MiB
        archive {BoundedZIP.maximumArchiveBytes} MiB, {BoundedZIP.maximumEntries} entries
        entry {BoundedZIP.maximumEntryBytes} MiB, all entries {BoundedZIP.maximumExpandedBytes} MiB
        ratio {BoundedZIP.maximumExpansionRatio} + {BoundedZIP.expansionAllowanceBytes} MiB
        part {BoundedXML.maximumXMLBytes} MiB, {XMLTree.maximumXMLElements} elements
        {XMLTree.maximumXMLDepth} deep, {XMLTree.maximumXMLAttributes} attributes
        {WorkbookStructure.maximumSheets} sheets, {WorksheetWalk.maximumWorksheetCells} cells a sheet
        {SharedStrings.maximumItems} strings of {SharedStrings.maximumCharacters} characters
        {TableExtraction.maximumColumns} columns, {TableExtraction.maximumRows} rows
        {CellReader.maximumTextCharacters} characters a cell
        {TableExtraction.maximumTableBytes} MiB of text in one table
        {DocumentWorkerHost.maximumSheets} sheets, {DocumentWorkerHost.maximumRows} rows
        rows of {DocumentWorkerHost.maximumColumns} cells, {DocumentWorkerHost.maximumWarnings} warnings""",
    "docs/cleaning.md": """
        {WorksheetWalk.maximumWorksheetCells} cells with content a sheet, {CleaningCoding.maximumReportedSheets} sheets
        {SharedStrings.maximumItems} shared strings of {SharedStrings.maximumCharacters} characters
        {BoundedXML.maximumXMLBytes} MiB and {XMLTree.maximumXMLElements} elements a
        {BoundedZIP.maximumExpandedBytes} MiB in all, {BoundedZIP.maximumArchiveBytes} MiB for the archive
        at most {WorksheetCleaner.maximumFormulaCharacters} characters""",
    "docs/research-data.md": """
        | `--scope` of check, workbook, presentation | {ResearchInput.maximumFileMebibytes:d} MiB
        | `columns` | list of columns | yes | 2 to {Spreadsheet.maximumColumns}
        | `rows` | list of rows | yes | 1 to {Spreadsheet.maximumRows}
        0 to {Spreadsheet.maximumCharts}; `--require-chart`
        1 to {Spreadsheet.maximumSeries} different number columns
        | 0 to {FormulaEvaluator.maximumCalculations}
        {FormulaEvaluator.maximumNodes} nodes
        | `label` | string | yes | {HostFileLimits.maximumTextCharacters} characters
        Every text of a scope has at most {HostFileLimits.maximumTextBytes} bytes
        | `datasets` | list of `id`, `content` | no | {Presentation.maximumDatasets};
        2 to {ReportTable.maximumRows} rows, 2 to {ReportTable.maximumCells} cells in each row
        at most {ReportTable.maximumCellCharacters} characters a cell
        up to {ReportWorkbook.maximumWholeDigits} digits before the mark""",
}


def value(match):
    """A constant as documents write it: with commas, or in MiB; with ":d" as digits."""
    file, name, digits, unit = match.groups()
    paths = ROOT.glob(f"[A-Zz]*/**/{file}.[ch]pp")
    found = [text for path in paths for text in re.findall(rf"\b{name} = ([^;,]+)[;,]", path.read_text())]
    number = eval(re.sub(r"std::size_t|[{}']", "", found[0]), {})  # digits and operators of the project's code
    return (f"{number}" if digits else f"{number // 2**20}" if unit else f"{number:,}") + unit


def main():
    failures = []
    for document, phrases in PHRASES.items():
        text = re.sub(r"\s+", " ", (ROOT / document).read_text())
        for phrase in map(str.strip, phrases.strip().splitlines()):
            phrase = re.sub(r"\{(\w+)\.(\w+)(:d)?\}( MiB|)", value, phrase)
            failures += [f"{document} does not say: {phrase}"] * (phrase not in text)
    return "\n".join(failures) or None


if __name__ == "__main__":
    sys.exit(main())
