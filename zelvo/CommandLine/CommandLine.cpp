#include "zelvo/CommandLine/CommandLine.hpp"

#include <sstream>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

class DoctorParser {
 public:
  explicit DoctorParser(CLI::App& tool)
      : command_(tool.add_subcommand("doctor", "Check that confined processes can run here")),
        request_(command_->add_option("--request", "Check a request to the worker or the cleaner instead")) {
    request_->type_name("FILE")->check(checkNotEmpty);
  }

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const { return Command(DoctorArguments{.request = value(*request_)}); }

 private:
  CLI::App* command_;
  CLI::Option* request_;
};

using ParsedCommandLine = std::variant<Invocation, Information>;

/// The options of every command that starts a process.
class HostOptions {
 public:
  explicit HostOptions(CLI::App& tool) { addTo(tool); }

  HostArguments arguments() const {
    HostArguments given;
    for (const auto& [libexec, timeout] : options_) {
      if (!libexec->empty()) given.libexec = value(*libexec);
      if (!timeout->empty()) given.timeoutSeconds = wholeNumber(value(*timeout), maximumSeconds).value();
    }
    return given;
  }

 private:
  static constexpr std::int64_t maximumSeconds = 86'400;

  /// To the commands without subcommands.
  void addTo(CLI::App& command) {
    const auto subcommands = command.get_subcommands([](CLI::App*) { return true; });
    for (CLI::App* subcommand : subcommands)
      addTo(*subcommand);
    if (!subcommands.empty()) return;
    CLI::Option* libexec = command.add_option("--libexec", "The folder of the worker and the cleaner");
    CLI::Option* timeout =
        command.add_option("--timeout", "Time for each process by the wall clock; 180 without it");
    timeout->type_name("SECONDS")->check([](const std::string& text) {
      return wholeNumber(text, maximumSeconds) ? "" : "The time must be 1 to 86400 seconds";
    });
    options_.emplace_back(libexec->type_name("DIR"), timeout);
  }

  std::vector<std::pair<CLI::Option*, CLI::Option*>> options_;
};

/// CLI11 reports a request for help as an error, too.
Result<ParsedCommandLine> resultOf(const CLI::App& tool, const CLI::ParseError& end) {
  std::ostringstream output;
  std::ostringstream errors;
  if (tool.exit(end, output, errors) == 0) return ParsedCommandLine(Information{output.str()});
  return usageError(tool, withoutGuards(end.what()));
}

}  // namespace

Result<ParsedCommandLine> parseCommandLine(int count, const char* const* arguments) {
  CLI::App tool("Reads and writes office documents in a confined worker process.", "zelvo");
  tool.set_help_flag("-h,--help", "Print this help");
  tool.set_version_flag("-V,--version", "zelvo " ZELVO_VERSION, "Print the version");
  tool.require_subcommand(1);
  // In the order of the help.
  const CommandReader commands =
      firstOf({addInspect(tool), addExtract(tool), addCreate(tool), addValidate(tool), addClean(tool),
               addBatch(tool), addResearch(tool), readerOf(DoctorParser(tool))});
  const HostOptions hosts(tool);
  const InformationParser information(tool);

  std::vector<std::string> reversed;  // the order that CLI11 requires
  for (int i = count - 1; i > 0; --i)
    reversed.push_back(guarded(arguments[i]));
  try {
    tool.parse(std::move(reversed));
  } catch (const CLI::ParseError& end) {
    return resultOf(tool, end);
  }
  if (auto given = information.information()) {
    if (*given) return ParsedCommandLine(**std::move(given));
    return given->error();
  }
  auto command = commands().value();
  if (!command) return command.error();
  return ParsedCommandLine(Invocation{*std::move(command), hosts.arguments()});
}

CommandReader firstOf(std::vector<CommandReader> commands) {
  return [commands = std::move(commands)]() -> std::optional<Result<Command>> {
    for (const CommandReader& command : commands) {
      if (auto given = command()) return given;
    }
    return std::nullopt;
  };
}

}  // namespace zelvo
