#include <string_view>

#include "zelvo/CommandLine/CommandTree.hpp"

namespace zelvo {
namespace {

/// The text without the meaning that scdoc gives to some characters.
std::string plain(std::string_view text) {
  constexpr std::string_view special = "\\*_`#~+|<[";
  std::string escaped;
  for (const char c : text) {
    const bool isFirst = escaped.empty() || escaped.ends_with('\n');  // a "-" begins a list
    if (special.find(c) != std::string_view::npos || (isFirst && c == '-')) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string bold(std::string_view text) {
  return "*" + plain(text) + "*";
}

std::string describeOptions(const CommandDescription& command) {
  std::string text;
  for (const OptionDescription& option : command.options) {
    std::string names;
    for (const std::string& name : option.names)
      names += (names.empty() ? "" : ", ") + bold(name);
    if (!option.value.empty()) names += " _" + plain(option.value) + "_";
    text += names + "\n\t" + plain(option.description) + "\n\n";
  }
  return text;
}

std::string describeExamples(const CommandHelp& help) {
  std::string text;
  for (const auto& [line, purpose] : help.examples)
    text += "# " + std::string(purpose) + "\n" + std::string(line) + "\n";
  return "```\n" + text + "```\n\n";
}

std::string section(const CommandDescription& command) {
  const CommandHelp& help = helpOf(command.path);
  std::string usage = bold(command.path);
  if (!command.options.empty()) usage += " \\[OPTIONS]";
  if (!command.positionals.empty()) usage += " " + plain(command.positionals);
  if (!command.subcommands.empty()) usage += " COMMAND";
  std::string text = "## " + command.path + "\n\n" + usage + "\n\n" + plain(command.description) + ".\n\n";
  text += describeOptions(command);
  if (!help.remarks.empty()) text += plain(help.remarks) + "\n\n";
  return text + describeExamples(help);
}

}  // namespace

std::string manPage(const CommandDescription& tool) {
  const CommandHelp& help = helpOf(tool.path);
  std::string text =
      "zelvo(1)\n\n# NAME\n\nzelvo - reads and writes office documents in a confined worker process\n\n";
  text += "# SYNOPSIS\n\n*zelvo* _COMMAND_ \\[_OPTIONS_] \\[_FILE_...]\n\n";
  text += "# OPTIONS\n\n" + describeOptions(tool) + plain(help.remarks) + "\n\n# COMMANDS\n\n";
  for (const CommandDescription& group : tool.subcommands) {
    for (const CommandDescription* command : flattened(group))
      text += section(*command);
  }
  text += "# EXIT STATUS\n\n" + plain(exitStatusHelp) + "\n\n# EXAMPLES\n\n" + describeExamples(help);
  return text;
}

}  // namespace zelvo
