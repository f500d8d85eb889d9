#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

constexpr std::int64_t maximumCount = std::int64_t{1} << 31;

std::optional<std::int64_t> count(std::string_view text) {
  return wholeNumber(text, maximumCount);
}

struct Shard {
  std::int64_t index = 1;
  std::int64_t count = 1;
};

/// "2/3"
std::optional<Shard> shard(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const auto index = count(text.substr(0, slash));
  const auto shards = count(text.substr(slash + 1));
  if (!index || !shards || *index > *shards) return std::nullopt;
  return Shard{*index, *shards};
}

}  // namespace

struct BatchParser::Options {
  CLI::App* command;
  BatchArguments::Operation operation;
  std::vector<std::string> bound;  ///< tells CLI11 that there may be several paths
  CLI::Option* paths;
  CLI::Option* filesFrom;
  CLI::Option* nulSeparated;
  CLI::Option* shardOption;
  CLI::Option* jobs;
  CLI::Option* resume;
  CLI::Option* quiet;
  CLI::Option* output;
  CLI::Option* noClobber;
  // Of `clean` only.
  CLI::Option* outputFolder = nullptr;
  CLI::Option* unmerge = nullptr;
  CLI::Option* plainFormats = nullptr;

  Options(CLI::App& batch, BatchArguments::Operation what, const std::string& name,
          const std::string& description)
      : command(batch.add_subcommand(name, description)),
        operation(what),
        paths(command->add_option("PATH", bound, "Workbooks, and folders to search for workbooks")
                  ->type_name("")),
        filesFrom(command->add_option("--files-from", "A file with a path a line; - is standard input")
                      ->type_name("FILE")),
        nulSeparated(addFlag(*command, "-0,--null", "The paths in that file end in NUL")->needs(filesFrom)),
        shardOption(
            command->add_option("--shard", "Take only every Nth of the names, by their hash: shard I of N")
                ->type_name("I/N")
                ->check([](const std::string& text) {
                  return shard(text) ? "" : "The shard must be given as I/N, with I from 1 to N";
                })),
        jobs(command->add_option("-j,--jobs", "Files at once; without it, as many as there are processors")
                 ->type_name("N")
                 ->check([](const std::string& text) {
                   return count(text) ? "" : "The number of jobs must be at least 1";
                 })),
        resume(addFlag(*command, "--resume",
                       "Continue the results file: skip what is answered or refused in it")),
        quiet(addFlag(*command, "-q,--quiet", "No progress and no totals")),
        output(command->add_option("-o,--output", "The results; without it standard output")
                   ->type_name("RESULTS.jsonl")),
        noClobber(addFlag(*command, "--no-clobber", "Do not write over files that exist")) {
    resume->needs(output);
    if (what != BatchArguments::Operation::clean) return;
    outputFolder = command->add_option("--output-dir", "The folder for the cleaned workbooks")->required();
    outputFolder->type_name("DIR");
    unmerge = addFlag(*command, "--unmerge", "Split merged cells");
    plainFormats = addFlag(*command, "--plain-formats", "Replace number formats that are not read");
  }

  BatchArguments arguments() const {
    BatchArguments given{.operation = operation,
                         .paths = values(*paths),
                         .filesFrom = value(*filesFrom),
                         .nulSeparated = !nulSeparated->empty(),
                         .resume = !resume->empty(),
                         .quiet = !quiet->empty(),
                         .output = {.file = value(*output), .noClobber = !noClobber->empty()}};
    if (const auto part = shard(value(*shardOption))) {
      given.shard = part->index;
      given.shards = part->count;
    }
    given.jobs = count(value(*jobs)).value_or(0);
    if (operation == BatchArguments::Operation::clean) {
      given.outputFolder = value(*outputFolder);
      given.unmerge = !unmerge->empty();
      given.plainFormats = !plainFormats->empty();
    }
    return given;
  }
};

BatchParser::BatchParser(CLI::App& tool) {
  CLI::App* batch = tool.add_subcommand("batch", "Inspect or clean many workbooks, several at once");
  batch->require_subcommand(1);
  using enum BatchArguments::Operation;
  inspect_ = std::make_unique<const Options>(*batch, inspect, "inspect", "Print one JSON line a workbook");
  clean_ = std::make_unique<const Options>(*batch, clean, "clean", "Write a cleaned copy of each workbook");
}

BatchParser::~BatchParser() = default;

std::optional<Command> BatchParser::command() const {
  for (const auto* options : {inspect_.get(), clean_.get()}) {
    if (options->command->parsed()) return options->arguments();
  }
  return std::nullopt;
}

}  // namespace zelvo
