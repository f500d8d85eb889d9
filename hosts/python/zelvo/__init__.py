"""Reads and writes office documents in confined worker processes, one process a request.

    import zelvo

    worker = zelvo.Worker()
    for sheet in worker.inspect("sales.xlsx").sheets:
        print(sheet.name, sheet.populated_range)
    table = worker.extract("sales.xlsx", "Orders", "A1:D20")
    print(table.records()[0])

A document is a path (``str`` or ``os.PathLike``) or ``bytes``. `Refused` is raised for a document that the worker
refuses, with a sentence for the user; `WorkerFailed` when there is no answer. Objects may be used by several threads.
"""

from __future__ import annotations

import base64
import binascii
import dataclasses
import datetime
import json
import os
import re
import resource
import selectors
import signal
import subprocess
import threading
import time
from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple, Union

__all__ = ["Cell", "Cleaned", "Cleaner", "Document", "Inspection", "Refused", "Sheet", "Table", "Validation", "Worker",
           "WorkerFailed"]

DocumentSource = Union[str, "os.PathLike[str]", bytes]
Value = Union[None, bool, str, int, float, datetime.date, datetime.datetime, "ErrorValue"]

MAXIMUM_MESSAGE_BYTES = 41943040  # of a request and of a response
_MAXIMUM_DOCUMENT_BYTES = MAXIMUM_MESSAGE_BYTES // 4 * 3  # base64 alone would fill the request
_INSTALLED = ("/usr/libexec/zelvo", "/usr/local/libexec/zelvo")


class Refused(Exception):
    """The worker refused the document or the request. The text is a sentence for the user; it can quote the document."""


class WorkerFailed(Exception):
    """There is no answer. `kind` names the way: "not found", "not started", "timed out", "too large", "no response",
    "not confined", "processor time", "killed", "forbidden call", "crashed", "status" or "unreadable response"."""

    def __init__(self, kind: str, message: str):
        super().__init__(message)
        self.kind = kind


@dataclasses.dataclass(frozen=True)
class ErrorValue:
    """An error of a cell, such as "#DIV/0!"."""
    code: str


@dataclasses.dataclass(frozen=True)
class Sheet:
    name: str
    hidden: bool
    populated_range: Optional[str]  # "A1:D20"; None for a sheet without cells
    populated_cell_count: int
    formula_cell_count: int
    formulas_missing_cache: int
    has_hidden_rows_or_columns: bool
    has_auto_filter: bool


@dataclasses.dataclass(frozen=True)
class Inspection:
    source_name: str
    source_sha256: str
    sheets: List[Sheet]
    date_system: str  # "1900" or "1904"
    calculation_mode: str
    warnings: List[str]
    raw: Dict[str, Any] = dataclasses.field(repr=False, compare=False)  # the record of the protocol


@dataclasses.dataclass(frozen=True)
class Cell:
    address: str
    kind: str  # "text", "number", "boolean", "date", "error" or "missing"
    stored: Union[None, bool, str]  # exactly as the workbook has it: the digits of a number, never a float
    formula: Optional[str]
    uses_cached_formula_value: bool
    number_format: Optional[str]
    hidden: bool

    @property
    def value(self) -> Value:
        """As a Python value. A number becomes an int if it is written as one, else the nearest float."""
        if self.kind == "number":
            text = str(self.stored)
            return int(text) if re.fullmatch(r"-?\d{1,15}", text) else float(text)
        if self.kind == "date":
            text = str(self.stored)
            return datetime.date.fromisoformat(text) if len(text) == 10 else _date_time(text)
        if self.kind == "error":
            return ErrorValue(str(self.stored))
        return self.stored


@dataclasses.dataclass(frozen=True)
class Table:
    source_name: str
    source_sha256: str
    sheet_name: str
    selected_range: str
    columns: List[str]
    cells: List[List[Cell]]
    warnings: List[str]
    header_uses_cached_formula_values: bool
    raw: Dict[str, Any] = dataclasses.field(repr=False, compare=False)  # as `expected_table` takes it

    def rows(self) -> List[List[Value]]:
        return [[cell.value for cell in row] for row in self.cells]

    def records(self) -> List[Dict[str, Value]]:
        """A dictionary a row, keyed by column title. The last of several columns with one title wins."""
        return [dict(zip(self.columns, row)) for row in self.rows()]


@dataclasses.dataclass(frozen=True)
class Validation:
    structurally_valid: bool
    source_values_verified: bool
    visually_verified: bool
    validator_version: str
    warnings: List[str]
    output_sha256: str


@dataclasses.dataclass(frozen=True)
class Document:
    data: bytes
    format: str  # "docx" or "pptx"
    source_sha256: str
    validation: Validation
    table: Table


@dataclasses.dataclass(frozen=True)
class Cleaned:
    data: bytes
    source_sha256: str
    output_sha256: str
    report: Dict[str, Any]  # "sheets", "dropped", "changed"


class _Host:
    """Starts a program for each request, within a wall-clock time in seconds."""

    _program = ""

    def __init__(self, path: Union[None, str, "os.PathLike[str]"] = None, timeout: float = 180):
        self.path = os.fspath(path) if path is not None else self._find()
        self.timeout = timeout

    @classmethod
    def _find(cls) -> str:
        folders = [os.environ["ZELVO_LIBEXEC"]] if os.environ.get("ZELVO_LIBEXEC") else []
        for folder in [*folders, *_INSTALLED]:
            path = os.path.join(folder, cls._program)
            if os.access(path, os.X_OK):
                return path
        raise WorkerFailed("not found", f"{cls._program} is neither in $ZELVO_LIBEXEC nor in {' or '.join(_INSTALLED)}.")

    def _ask(self, document: DocumentSource, source_name: Optional[str], fields: Mapping[str, Any]) -> Dict[str, Any]:
        data, name = _read(document)
        if len(data) >= _MAXIMUM_DOCUMENT_BYTES:
            raise Refused("The document is too large: a request to the worker carries less than 30 MiB.")
        request = {**fields, "data": base64.b64encode(data).decode(), "sourceName": source_name or name}
        output = self._run(json.dumps(request, ensure_ascii=False).encode())
        try:
            response = json.loads(output)
            if isinstance(response.get("error"), str):
                raise Refused(response["error"])
            return self._decode(response)
        except (ValueError, KeyError, TypeError, AttributeError, binascii.Error) as error:
            raise WorkerFailed("unreadable response", f"The worker's response cannot be read: {error!r}") from error

    def _decode(self, response: Dict[str, Any]) -> Any:
        raise NotImplementedError

    def _run(self, request: bytes) -> bytes:
        """Writes the request while it reads the answer, so that neither side waits for the other."""
        if len(request) > MAXIMUM_MESSAGE_BYTES:
            raise Refused("The request is larger than 40 MiB.")
        try:
            process = subprocess.Popen([self.path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, env={}, close_fds=True)
        except FileNotFoundError as error:
            raise WorkerFailed("not found", f"The worker was not found. ({self.path})") from error
        except OSError as error:
            raise WorkerFailed("not started", f"The worker could not be run: {error}") from error
        deadline = time.monotonic() + self.timeout
        try:
            output, problem = self._exchange(process, request, deadline)
            if problem:
                _kill(process)
        except BaseException:
            _kill(process)
            process.wait()
            raise
        finally:
            for stream in (process.stdin, process.stdout):
                if stream is not None and not stream.closed:
                    stream.close()
        usage = _wait(process, deadline)
        if problem or time.monotonic() >= deadline:
            raise problem or _timed_out()
        _check_status(process.returncode, usage.ru_utime + usage.ru_stime)
        return output

    @staticmethod
    def _exchange(process: "subprocess.Popen[bytes]", request: bytes,
                  deadline: float) -> Tuple[bytes, Optional[WorkerFailed]]:
        stdin, stdout = process.stdin, process.stdout
        assert stdin is not None and stdout is not None
        os.set_blocking(stdin.fileno(), False)
        os.set_blocking(stdout.fileno(), False)
        output, rest = bytearray(), memoryview(request)
        with selectors.DefaultSelector() as selector:
            selector.register(stdin, selectors.EVENT_WRITE)
            selector.register(stdout, selectors.EVENT_READ)
            while True:
                left = deadline - time.monotonic()
                if left <= 0:
                    return b"", _timed_out()
                for key, _ in selector.select(left):
                    if key.fileobj is stdin:
                        try:
                            rest = rest[os.write(stdin.fileno(), rest):]
                        except BlockingIOError:
                            continue
                        except BrokenPipeError:  # it ended early: its status tells why
                            rest = rest[len(rest):]
                        if not rest:
                            selector.unregister(stdin)
                            stdin.close()
                        continue
                    chunk = os.read(stdout.fileno(), 1 << 20)
                    if not chunk:
                        return bytes(output), None
                    output += chunk
                    if len(output) > MAXIMUM_MESSAGE_BYTES:
                        return b"", WorkerFailed("too large", "The worker wrote more than the largest response.")


class Worker(_Host):
    """Inspects, extracts, creates and validates. `path` is the worker's executable; without it, `zelvo_document_worker`
    in $ZELVO_LIBEXEC or where packages install it."""

    _program = "zelvo_document_worker"

    def inspect(self, workbook: DocumentSource, *, source_name: Optional[str] = None) -> Inspection:
        return self._ask(workbook, source_name, {"operation": "inspect"})  # type: ignore[return-value]

    def extract(self, workbook: DocumentSource, sheet: str, range: str, *, header: bool = True,
                include_hidden: bool = False, cached_formulas: bool = False,
                source_name: Optional[str] = None) -> Table:
        """At most 8 columns and 200 rows below the header."""
        selection = _selection(sheet, range, header, include_hidden, cached_formulas)
        return self._ask(workbook, source_name,  # type: ignore[return-value]
                         {"operation": "extract", "selection": selection})

    def create(self, workbook: DocumentSource, sheet: str, range: str, *, title: str, format: str = "docx",
               chart: Optional[Mapping[str, Any]] = None, header: bool = True, include_hidden: bool = False,
               cached_formulas: bool = False, source_name: Optional[str] = None) -> Document:
        """`chart`: {"categoryColumn": 0, "valueColumn": 1, "title": "…"}, zero-based, of a presentation."""
        fields: Dict[str, Any] = {"operation": "create", "title": title, "format": format,
                                  "selection": _selection(sheet, range, header, include_hidden, cached_formulas)}
        if chart is not None:
            fields["chart"] = dict(chart)
        return self._ask(workbook, source_name, fields)  # type: ignore[return-value]

    def validate(self, document: DocumentSource, format: str, *, expected_table: Optional[Table] = None,
                 chart: Optional[Mapping[str, Any]] = None, source_name: Optional[str] = None) -> Validation:
        fields: Dict[str, Any] = {"operation": "validate", "format": format}
        if expected_table is not None:
            fields["expectedTable"] = expected_table.raw
        if chart is not None:
            fields["chart"] = dict(chart)
        return self._ask(document, source_name, fields)  # type: ignore[return-value]

    def _decode(self, response: Dict[str, Any]) -> Any:
        if "inspection" in response:
            return _inspection(response["inspection"])
        if "document" in response:
            document = response["document"]
            return Document(base64.b64decode(document["data"], validate=True), document["format"],
                            document["sourceSHA256"], _fields(Validation, document["validation"]),
                            _table(response["table"]))
        if "table" in response:
            return _table(response["table"])
        return _fields(Validation, response["validation"])


class Cleaner(_Host):
    """Writes workbooks anew with only what is understood. `path` is the cleaner's executable, found like the worker's."""

    _program = "zelvo_document_cleaner"

    def clean(self, workbook: DocumentSource, *, sheets: Optional[Sequence[str]] = None, unmerge: bool = False,
              plain_formats: bool = False, source_name: Optional[str] = None) -> Cleaned:
        fields: Dict[str, Any] = {"version": 1, "unmerge": unmerge, "plainFormats": plain_formats}
        if sheets is not None:
            fields["sheets"] = list(sheets)
        return self._ask(workbook, source_name, fields)  # type: ignore[return-value]

    def _decode(self, response: Dict[str, Any]) -> Any:
        document = response["document"]
        return Cleaned(base64.b64decode(document["data"], validate=True), document["sourceSHA256"],
                       document["outputSHA256"], response["report"])


def _read(document: DocumentSource) -> Tuple[bytes, str]:
    if isinstance(document, bytes):
        return document, "document"
    with open(document, "rb") as file:
        return file.read(_MAXIMUM_DOCUMENT_BYTES), os.path.basename(os.fspath(document))


def _selection(sheet: str, cells: str, header: bool, include_hidden: bool, cached_formulas: bool) -> Dict[str, Any]:
    return {"sheetName": sheet, "range": cells, "firstRowIsHeader": header, "includeHiddenRows": include_hidden,
            "allowCachedFormulaValues": cached_formulas}


def _fields(record: Any, values: Mapping[str, Any], **others: Any) -> Any:
    """A record from the keys of the protocol: `sourceSHA256` is the field `source_sha256`."""
    for field in dataclasses.fields(record):
        if field.name not in others:
            key = re.sub(r"_(\w)", lambda match: match.group(1).upper(), field.name).replace("Sha256", "SHA256")
            optional = field.type.startswith("Optional")
            others[field.name] = values.get(key) if optional else values[key]
    return record(**others)


def _inspection(value: Dict[str, Any]) -> Inspection:
    return _fields(Inspection, value, sheets=[_fields(Sheet, sheet) for sheet in value["sheets"]], raw=value)


def _cell(value: Mapping[str, Any]) -> Cell:
    [(kind, content)] = value["value"].items()
    return _fields(Cell, value, kind=kind, stored=content.get("_0"))


def _table(value: Dict[str, Any]) -> Table:
    return _fields(Table, value, cells=[[_cell(cell) for cell in row] for row in value["rows"]], raw=value)


def _date_time(text: str) -> Value:
    """A date with a time, or a time alone, which is a text in Python's types too."""
    try:
        return datetime.datetime.fromisoformat(text.rstrip("Z"))
    except ValueError:
        return text


def _timed_out() -> WorkerFailed:
    return WorkerFailed("timed out", "The worker did not end in time and was stopped.")


def _kill(process: "subprocess.Popen[bytes]") -> None:
    """Not `Popen.kill`, which may wait for a process that has ended: `_wait` does that, and needs its usage."""
    os.kill(process.pid, signal.SIGKILL)


def _wait(process: "subprocess.Popen[bytes]", deadline: float) -> "resource.struct_rusage":
    """Waits for a program that has closed its output, and kills one that does not end."""
    timer = threading.Timer(max(deadline - time.monotonic(), 0), _kill, [process])
    timer.start()
    try:
        _, status, usage = os.wait4(process.pid, 0)
    finally:
        timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    return usage


_CPU_SECONDS_OF_LIMIT = 35  # the limit is 45; what is reported afterwards may be less


def _check_status(code: int, cpu_seconds: float) -> None:
    if code == 0:
        return
    if code == 65:
        raise WorkerFailed("no response", "The worker gave no response (status 65): it could not use the request, the "
                           "response was too large, or memory ran out.")
    if code == 78:
        raise WorkerFailed("not confined", "The worker refused to work because it could not confine itself (status 78).")
    if code > 0:
        raise WorkerFailed("status", f"The worker ended with the unknown status {code}.")
    if code == -signal.SIGXCPU or code == -signal.SIGKILL and cpu_seconds >= _CPU_SECONDS_OF_LIMIT:
        raise WorkerFailed("processor time", "The worker used up its processor time.")
    if code == -signal.SIGKILL:
        raise WorkerFailed("killed", "The worker was killed (SIGKILL). Memory may have run out.")
    if code == -signal.SIGSYS:
        raise WorkerFailed("forbidden call", "The worker was killed by a seccomp filter (SIGSYS).")
    raise WorkerFailed("crashed", f"The worker crashed (signal {-code}).")
