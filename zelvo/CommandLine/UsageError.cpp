#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

constexpr const char* seeHelp = " (see zelvo --help)";

/// The command that was given, or the tool.
const CLI::App& givenCommand(const CLI::App& tool) {
  const std::vector<CLI::App*> given = tool.get_subcommands();
  return given.empty() ? tool : givenCommand(*given.back());
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(command->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames())
      names.push_back("--" + name);
  }
  return names;
}

/// "a, b, c"
std::string listOf(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  return list;
}

CommandError errorOf(const CLI::App& tool, std::string message) {
  const CLI::App& command = givenCommand(tool);
  const std::vector<std::string> wrong = tool.remaining(/*recurse=*/true);
  const auto isOption = [](const std::string& argument) { return argument.starts_with('-'); };

  const std::vector<std::string> commands = commandNames(command);
  const auto name = std::ranges::find_if_not(wrong, isOption);
  if (!commands.empty() && name != wrong.end()) return unknownName("command", withoutGuards(*name), commands);

  CommandError error = {.status = ExitStatus::usage, .message = std::move(message)};
  const auto option = std::ranges::find_if(wrong, isOption);
  if (option == wrong.end()) return error;
  const std::string nearest = nearestName(*option, optionNames(command));
  if (nearest == *option && &command != &tool) {
    error.hints.push_back("Write " + nearest + " after " + command.get_name() + ".");
  } else if (!nearest.empty()) {
    error.hints.push_back("The nearest option is " + nearest + ".");
  }
  return error;
}

}  // namespace

CommandError unknownName(const std::string& kind, const std::string& name,
                         const std::vector<std::string>& known) {
  const std::string nearest = nearestName(name, known);
  return {.status = ExitStatus::usage,
          .message = "There is no " + kind + " \"" + name + '"',
          .hints = {nearest.empty() ? "The " + kind + "s are " + listOf(known) + "."
                                    : "The nearest " + kind + " is " + nearest + "."}};
}

CommandError usageError(const CLI::App& tool, std::string message) {
  CommandError error = errorOf(tool, std::move(message));
  error.message += seeHelp;
  return error;
}

CommandError conflict(const std::string& message) {
  return {ExitStatus::usage, message + seeHelp};
}

}  // namespace zelvo
