#include "zelvo/CommandLine/CommandHelp.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace zelvo {
namespace {

constexpr std::array tool = {
    CommandExample{"zelvo inspect book.xlsx", "what sheets there are"},
    CommandExample{"zelvo extract book.xlsx --sheet Orders --cached-formulas --csv", "a sheet as CSV"},
    CommandExample{"zelvo help extract", "more about a command"}};

constexpr std::array inspect = {CommandExample{"zelvo inspect book.xlsx", "for reading"},
                                CommandExample{"zelvo inspect --json *.xlsx", "a record for each workbook"},
                                CommandExample{"zelvo inspect --keep-cleaned cells.xlsx book.xlsx",
                                               "without pictures, links and macros"}};

constexpr std::array extract = {
    CommandExample{"zelvo extract book.xlsx --sheet Orders --cached-formulas --csv", "a sheet as CSV"},
    CommandExample{"zelvo extract book.xlsx --sheet 3 --cached-formulas --jsonl", "one JSON object per row"},
    CommandExample{
        "zelvo extract book.xlsx --sheet Quarter --range A1:B5 --cached-formulas --json > table.json",
        "a table with its provenance"}};

constexpr std::array create = {
    CommandExample{
        "zelvo create book.xlsx --sheet Quarter --range A1:B5 --cached-formulas --title Orders -o table.docx",
        "a Word document"},
    CommandExample{"zelvo create book.xlsx --sheet Quarter --range A1:B5 --cached-formulas --title Orders "
                   "--chart Region:Orders -o chart.pptx",
                   "a presentation with a chart"}};

constexpr std::array validate = {
    CommandExample{"zelvo validate table.docx --expect table.json", "it shows this table"},
    CommandExample{"zelvo validate chart.pptx --expect table.json --chart Region:Orders", "and this chart"}};

constexpr std::array clean = {
    CommandExample{"zelvo clean book.xlsx -o cells.xlsx", "all worksheets"},
    CommandExample{"zelvo clean book.xlsx --sheet Orders --unmerge --json -o orders.xlsx",
                   "one, with a report"}};

constexpr std::array batch = {
    CommandExample{"zelvo batch inspect uploads -o results.jsonl", "a line for each workbook in a folder"},
    CommandExample{"zelvo help batch clean", "more about a command"}};

constexpr std::array batchInspect = {
    CommandExample{"zelvo batch inspect uploads -o inspected.jsonl", "a folder"},
    CommandExample{"zelvo batch inspect uploads -o inspected.jsonl --resume",
                   "continue after an interruption"},
    CommandExample{"find uploads -name '*.xlsx' -print0 | zelvo batch inspect --files-from - --null --quiet",
                   "a list of files"}};

constexpr std::array batchClean = {
    CommandExample{"zelvo batch clean uploads --output-dir cleaned -o cleaned.jsonl", "a folder"},
    CommandExample{"zelvo batch clean uploads --output-dir again --shard 1/2 --jobs 2",
                   "its first half; another machine does --shard 2/2"}};

constexpr std::array research = {CommandExample{"zelvo research check dataset.json", "validate a dataset"},
                                 CommandExample{"zelvo help research presentation", "more about a command"}};

constexpr std::array researchCheck = {
    CommandExample{"zelvo research check dataset.json", "with any sources"},
    CommandExample{"zelvo research check dataset.json --require-chart > checked.json",
                   "with a chart at least"}};

constexpr std::array researchWorkbook = {
    CommandExample{"zelvo research workbook dataset.json --title Results --theme -o results.xlsx",
                   "to a file"},
    CommandExample{"zelvo research workbook dataset.json --title Results -o - > results.xlsx", "to a pipe"}};

constexpr std::array researchReport = {
    CommandExample{"zelvo research report report.md --title Report -o report.xlsx", "without sources"},
    CommandExample{
        "zelvo research report report.md --title Report --source https://example.com/ -o report.xlsx",
        "with a source"}};

constexpr std::array researchPresentation = {
    CommandExample{"zelvo research presentation deck.json --datasets datasets.json -o deck.pptx", "write it"},
    CommandExample{"zelvo research presentation deck.json --datasets datasets.json > checked.json",
                   "validate it only"}};

constexpr std::array doctor = {
    CommandExample{"zelvo doctor", "does everything work here?"},
    CommandExample{"zelvo doctor --request request.json", "why does a worker end with status 65?"}};

constexpr std::array help = {CommandExample{"zelvo help extract", "a command"},
                             CommandExample{"zelvo help research check", "a command in a group"}};

constexpr std::array schema = {
    CommandExample{"zelvo schema", "their names"},
    CommandExample{"zelvo schema worker-request > request.schema.json", "one of them"}};

constexpr std::array completion = {
    CommandExample{"eval \"$(zelvo completion bash)\"", "in ~/.bashrc"},
    CommandExample{"zelvo completion fish > zelvo.fish", "for ~/.config/fish/completions"}};

constexpr std::array all = {
    CommandHelp{
        "zelvo", tool,
        R"("-" as a file is standard input, and for -o standard output, which must not be a terminal. create -o -
writes a presentation with --chart, and a Word document without. "--" ends the options.)"},
    CommandHelp{"zelvo inspect", inspect},
    CommandHelp{
        "zelvo extract", extract,
        R"(Rows are printed as they are, from a range of any size up to 250,000 cells. The first row has the titles, with
--no-header data. Hidden columns are left out, hidden rows unless they are included; both are named on standard
error. --json prints a table of at most 8 columns and 200 data rows, with the provenance of every cell.

Spreadsheet programs take a text that begins with = + - @, tab or carriage return for a formula and run it when
they open CSV. --escape-formulas puts a ' before such texts, never before numbers.)"},
    CommandHelp{"zelvo create", create},
    CommandHelp{"zelvo validate", validate},
    CommandHelp{
        "zelvo clean", clean,
        R"(Writes a new workbook that holds only what the other commands read: sheets, cells with their saved values,
formulas and number formats, hidden rows and columns, merged areas. Pictures, comments, links, macros, printer
settings and all else are left out and reported. Every value is compared with the source before the file is
written. The result is for programs that read cells, not for opening in an office program: formulas are kept
as text, and some reach out of the workbook when an office program calculates them. Records of the cleaned
workbook name its digest; --json prints that and the digest of the source.)"},
    CommandHelp{"zelvo batch", batch},
    CommandHelp{"zelvo batch inspect", batchInspect},
    CommandHelp{"zelvo batch clean", batchClean},
    CommandHelp{"zelvo research", research},
    CommandHelp{"zelvo research check", researchCheck},
    CommandHelp{"zelvo research workbook", researchWorkbook},
    CommandHelp{"zelvo research report", researchReport},
    CommandHelp{"zelvo research presentation", researchPresentation},
    CommandHelp{
        "zelvo doctor", doctor,
        R"(Takes the steps of the confinement in a child process and names the one that fails, then has worker and cleaner
refuse an empty document. With --request, decodes the request as they do and names the first key that is wrong
or missing. Nothing of its document is printed. The status is 3 if a process cannot run, and 1 for a request
that they cannot use.)"},
    CommandHelp{"zelvo help", help},
    CommandHelp{"zelvo schema", schema},
    CommandHelp{"zelvo completion", completion}};

}  // namespace

const std::string_view exitStatusHelp =
    R"(Exit status: 0 success, 1 a document was refused or a file could not be read or written, 2 invalid command
line, 3 the worker could not be run or failed; with several files the highest.)";

const CommandHelp& helpOf(std::string_view command) {
  const auto found = std::ranges::find(all, command, &CommandHelp::command);
  if (found == all.end()) throw std::out_of_range("a command without help");
  return *found;
}

std::string footer(const CommandHelp& command) {
  std::size_t width = 0;
  for (const CommandExample& example : command.examples)
    width = std::max(width, example.line.size());
  constexpr std::size_t widestAligned = 70;
  std::string text = "Examples:\n";
  for (const auto& [line, why] : command.examples) {
    const std::size_t aligned = std::max(std::min(width, widestAligned), line.size());
    text += "  " + std::string(line) + std::string(aligned - line.size() + 2, ' ') + "# " + std::string(why) +
            "\n";
  }
  if (!command.remarks.empty()) text += "\n" + std::string(command.remarks) + "\n";
  return text + "\n" + std::string(exitStatusHelp);
}

}  // namespace zelvo
