#include <optional>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"
#include "zelvo/CommandLine/WorkbookOptions.hpp"

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

class BatchParser {
 public:
  BatchParser(CLI::App& batch, BatchArguments::Operation what, const std::string& name,
              const std::string& description)
      : command_(batch.add_subcommand(name, description)),
        operation_(what),
        paths_(addList(*command_, "PATH", "Workbooks, and folders to search for workbooks")),
        filesFrom_(command_->add_option("--files-from", "A file with a path a line; - is standard input")
                       ->type_name("FILE")),
        nulSeparated_(
            addFlag(*command_, "-0,--null", "The paths in that file end in NUL")->needs(filesFrom_)),
        shardOption_(
            command_->add_option("--shard", "Take only every Nth of the names, by their hash: shard I of N")
                ->type_name("I/N")
                ->check([](const std::string& text) {
                  return shard(text) ? "" : "The shard must be given as I/N, with I from 1 to N";
                })),
        jobs_(command_->add_option("-j,--jobs", "Files at once; without it, as many as there are processors")
                  ->type_name("N")
                  ->check([](const std::string& text) {
                    return count(text) ? "" : "The number of jobs must be at least 1";
                  })),
        resume_(addFlag(*command_, "--resume",
                        "Continue the results file: skip what is answered or refused in it")),
        quiet_(addFlag(*command_, "-q,--quiet", "No progress and no totals")),
        output_(command_->add_option("-o,--output", "The results; without it standard output")
                    ->type_name("RESULTS.jsonl")),
        noClobber_(addFlag(*command_, "--no-clobber", "Do not write over files that exist")) {
    resume_->needs(output_);
    if (what != BatchArguments::Operation::clean) return;
    outputFolder_ = command_->add_option("--output-dir", "The folder for the cleaned workbooks")->required();
    outputFolder_->type_name("DIR");
    unmerge_ = addUnmerge(*command_);
    plainFormats_ = addPlainFormats(*command_);
  }

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    BatchArguments given{.operation = operation_,
                         .paths = values(*paths_),
                         .filesFrom = value(*filesFrom_),
                         .nulSeparated = !nulSeparated_->empty(),
                         .resume = !resume_->empty(),
                         .quiet = !quiet_->empty(),
                         .output = {.file = value(*output_), .noClobber = !noClobber_->empty()}};
    if (const auto part = shard(value(*shardOption_))) {
      given.shard = part->index;
      given.shards = part->count;
    }
    given.jobs = count(value(*jobs_)).value_or(0);
    if (operation_ == BatchArguments::Operation::clean) {
      given.outputFolder = value(*outputFolder_);
      given.unmerge = !unmerge_->empty();
      given.plainFormats = !plainFormats_->empty();
    }
    return Command(std::move(given));
  }

 private:
  CLI::App* command_;
  BatchArguments::Operation operation_;
  CLI::Option* paths_;
  CLI::Option* filesFrom_;
  CLI::Option* nulSeparated_;
  CLI::Option* shardOption_;
  CLI::Option* jobs_;
  CLI::Option* resume_;
  CLI::Option* quiet_;
  CLI::Option* output_;
  CLI::Option* noClobber_;
  // Of `clean` only.
  CLI::Option* outputFolder_ = nullptr;
  CLI::Option* unmerge_ = nullptr;
  CLI::Option* plainFormats_ = nullptr;
};

}  // namespace

CommandReader addBatch(CLI::App& tool) {
  CLI::App* batch = tool.add_subcommand("batch", "Inspect or clean many workbooks, several at once");
  batch->require_subcommand(1);
  using enum BatchArguments::Operation;
  return firstOf({readerOf(BatchParser(*batch, inspect, "inspect", "Print one JSON line a workbook")),
                  readerOf(BatchParser(*batch, clean, "clean", "Write a cleaned copy of each workbook"))});
}

}  // namespace zelvo
