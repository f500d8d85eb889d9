#include "zelvo/Batch/Batch.hpp"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "System/OutputFile.hpp"
#include "zelvo/Batch/BatchFiles.hpp"
#include "zelvo/Batch/BatchResults.hpp"
#include "zelvo/Batch/FileOutcome.hpp"
#include "zelvo/Batch/Progress.hpp"
#include "zelvo/Execution/InputFile.hpp"
#include "zelvo/Hints/HintTable.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

namespace fs = std::filesystem;
using Operation = BatchArguments::Operation;

bool isOurs(const BatchArguments& arguments, std::string_view path) {
  return arguments.shards == 1 || isInShard(path, arguments.shard, arguments.shards);
}

/// Opening anything else could wait for ever.
Failure checkRegular(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!error && !fs::is_regular_file(status)) error = std::make_error_code(std::errc::invalid_argument);
  if (!error) return std::nullopt;
  return CommandError{ExitStatus::refused, "The file cannot be read: " + path + ": " + error.message()};
}

/// Inspects or cleans one file.
class FileWork {
 public:
  FileWork(const Hosts& hosts, const BatchArguments& arguments) : hosts_(hosts), arguments_(arguments) {}

  FileOutcome operator()(const BatchFile& file) const {
    FileOutcome outcome(file.path);
    Failure failure = file.error ? Failure(file.error) : checkRegular(file.path);
    if (!failure) {
      failure = arguments_.operation == Operation::inspect ? inspect(file, outcome) : clean(file, outcome);
    }
    if (failure) outcome.setError(*failure);
    return outcome;
  }

 private:
  Failure inspect(const BatchFile& file, FileOutcome& outcome) const {
    const auto request = requestAbout(file.path);
    if (!request) return request.error();
    WorkerReply reply = hosts_.worker.send(*request);
    if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return errorWithoutExplanation(*failure);
    auto& response = std::get<DocumentWorkerResponse>(reply);
    if (response.error) return refusal(*std::move(response.error), Stage::reading);
    outcome.inspection = std::move(response.inspection);
    return std::nullopt;
  }

  Failure clean(const BatchFile& file, FileOutcome& outcome) const {
    // The name was checked before the first file.
    const fs::path output = fs::path(arguments_.outputFolder) / cleanedName(file.relative).value();
    std::error_code ignored;
    if (arguments_.output.noClobber && fs::exists(output, ignored))
      return unwritable(output, std::make_error_code(std::errc::file_exists));
    auto input = readFile(file.path, DocumentWorkerHost::unsendableBytes);
    if (!input) return input.error();
    DocumentCleanerRequest request{.sourceName = std::move(input->sourceName),
                                   .data = std::move(input->data)};
    if (arguments_.unmerge) request.unmerge = true;
    if (arguments_.plainFormats) request.plainFormats = true;
    CleanerReply reply = hosts_.cleaner.send(request);
    if (const auto* failure = std::get_if<WorkerFailure>(&reply))
      return errorWithoutExplanation(*failure, "The cleaner");
    auto& response = std::get<DocumentCleanerResponse>(reply);
    if (response.error) return refusal(*std::move(response.error), Stage::cleaning);
    outcome.report = std::move(response.report);
    return write(output, response.document->data);
  }

  /// Hints of the table alone: a look at the file takes a child process, whose parent may have only one
  /// thread.
  static CommandError refusal(std::string message, Stage stage) {
    const Advice advice = adviceFor(message, stage);
    CommandError error{ExitStatus::refused, std::move(message)};
    error.hints.assign(advice.hints.begin(), advice.hints.end());
    if (advice.tryCleaning)
      error.hints.emplace_back("A cleaned copy may be accepted: see zelvo batch clean --help.");
    return error;
  }

  Failure write(const fs::path& path, const ByteBuffer& document) const {
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    const auto existing = arguments_.output.noClobber ? ExistingFile::kept : ExistingFile::replaced;
    if (!error) error = {writeOutputFile(path.string(), document.text(), existing), std::generic_category()};
    if (!error) return std::nullopt;
    return unwritable(path, error);
  }

  /// A full disk says nothing about the document, so that its outcome is "failed".
  static CommandError unwritable(const fs::path& path, const std::error_code& error) {
    return {error == std::errc::file_exists ? ExitStatus::refused : ExitStatus::workerFailed,
            "The file cannot be written: " + path.string() + ": " + error.message()};
  }

  const Hosts& hosts_;
  const BatchArguments& arguments_;
};

/// Distributes the files over threads. All members that threads share are used under the lock.
class BatchRun {
 public:
  BatchRun(const BatchArguments& arguments, BatchFiles files, BatchResults results, const FileWork& work)
      : arguments_(arguments),
        files_(std::move(files)),
        results_(std::move(results)),
        work_(work),
        display_(arguments.quiet),
        worst_(results_.worst()) {}

  ExitStatus run() {
    std::jthread counter;
    if (display_.isShown()) counter = std::jthread([this](const std::stop_token& stop) { countFiles(stop); });
    {
      std::vector<std::jthread> threads;
      for (std::int64_t i = 1; i < jobs(); ++i)
        threads.emplace_back([this] { workThrough(); });
      workThrough();
    }
    display_.clear();
    if (!failure_) failure_ = files_.error();
    if (failure_) worst_ = std::max(worst_, Console::report(*failure_));
    if (!arguments_.quiet) Console::printNote(totalsLine(counts_, display_.elapsed()));
    return worst_;
  }

 private:
  std::int64_t jobs() const {
    if (arguments_.jobs > 0) return arguments_.jobs;
    return std::max<std::int64_t>(std::thread::hardware_concurrency(), 1);
  }

  void workThrough() {
    try {
      while (const auto file = nextFile())
        record(work_(*file));
    } catch (...) {
      const std::lock_guard lock(lock_);
      if (!failure_) failure_ = CommandError{ExitStatus::workerFailed, "Out of memory."};
    }
  }

  std::optional<BatchFile> nextFile() {
    const std::lock_guard lock(lock_);
    while (!failure_) {
      auto file = files_.next();
      if (!file) return std::nullopt;
      if (!isOurs(arguments_, file->path)) continue;
      if (!results_.isFinal(file->path)) return file;
      ++counts_.skipped;
    }
    return std::nullopt;
  }

  void record(const FileOutcome& outcome) {
    const std::string line = toJson(outcome);
    const std::lock_guard lock(lock_);
    if (failure_) return;
    failure_ = results_.append(line);
    if (failure_) return;
    worst_ = std::max(worst_, static_cast<ExitStatus>(outcome.status));
    ++(outcome.outcome == FileOutcome::answered  ? counts_.answered
       : outcome.outcome == FileOutcome::refused ? counts_.refused
                                                 : counts_.failed);
    const std::int64_t total = total_;
    display_.update(counts_, total >= 0 ? std::optional(total - counts_.skipped) : std::nullopt);
  }

  /// The number of files for the progress, from a second walk beside the work. A list on standard input
  /// cannot be read twice.
  void countFiles(const std::stop_token& stop) {
    if (arguments_.filesFrom == "-") return;
    auto files = BatchFiles::open(arguments_, false);
    if (!files) return;
    std::int64_t count = 0;
    while (const auto file = files->next()) {
      if (stop.stop_requested()) return;
      if (isOurs(arguments_, file->path)) ++count;
    }
    total_ = count;
  }

  const BatchArguments& arguments_;
  std::mutex lock_;
  BatchFiles files_;
  BatchResults results_;
  const FileWork& work_;
  ProgressDisplay display_;
  BatchCounts counts_;
  ExitStatus worst_;
  Failure failure_;                       ///< ends the batch
  std::atomic<std::int64_t> total_ = -1;  ///< of this shard; -1 until it is known
};

CommandError usageError(const std::string& message) {
  return {ExitStatus::usage, message};
}

CommandError sameOutput(BatchFiles& files, const NameDigest& digest) {
  std::string inputs;
  files.rewind();
  while (const auto file = files.next()) {
    const auto name = cleanedName(file->relative);
    if (name && nameDigest(*name) == digest) inputs += (inputs.empty() ? "" : ", ") + file->path;
  }
  return usageError("These inputs have the same output: " + inputs);
}

/// Refuses what would lose a cleaned workbook or overwrite an input, before the first file. Keeps 16 bytes a
/// file. Looks at all shards, since they share the output folder.
Failure checkOutputs(BatchFiles& files, const std::string& outputFolder) {
  std::vector<NameDigest> outputs;
  while (const auto file = files.next()) {
    if (file->error) continue;
    const auto name = cleanedName(file->relative);
    if (!name) return usageError("The file has no place in the output folder: " + file->path);
    const fs::path output = fs::path(outputFolder) / *name;
    std::error_code ignored;  // one of the two does not exist
    if (fs::equivalent(output, file->path, ignored)) {
      return usageError("The output is one of the inputs: " + output.string());
    }
    outputs.push_back(nameDigest(*name));
  }
  std::ranges::sort(outputs);
  const auto repeated = std::ranges::adjacent_find(outputs);
  if (repeated != outputs.end()) return sameOutput(files, *repeated);
  files.rewind();
  return files.error();
}

}  // namespace

ExitStatus batch(const Hosts& hosts, const BatchArguments& arguments) {
  if (arguments.paths.empty() && arguments.filesFrom.empty()) {
    return Console::report(usageError("PATH or --files-from is required (see zelvo --help)"));
  }
  const bool cleans = arguments.operation == Operation::clean;
  auto files = BatchFiles::open(arguments, cleans);
  if (!files) return Console::report(files.error());
  if (cleans) {
    if (const Failure failure = checkOutputs(*files, arguments.outputFolder))
      return Console::report(*failure);
  }
  const auto& [resultsFile, noClobber] = arguments.output;
  std::error_code ignored;
  if (noClobber && !arguments.resume && resultsFile != "-" && fs::exists(resultsFile, ignored)) {
    return Console::report({.status = ExitStatus::refused,
                            .message = "The file cannot be written: " + resultsFile + ": " +
                                       std::make_error_code(std::errc::file_exists).message()});
  }
  auto results = BatchResults::open(resultsFile, arguments.resume);
  if (!results) return Console::report(results.error());
  const FileWork work(hosts, arguments);
  return BatchRun(arguments, *std::move(files), *std::move(results), work).run();
}

}  // namespace zelvo
