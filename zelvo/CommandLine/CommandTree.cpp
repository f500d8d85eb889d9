#include "zelvo/CommandLine/CommandTree.hpp"

#include <CLI/CLI.hpp>

namespace zelvo {
namespace {

bool isHidden(const CLI::Option& option) {
  return option.get_group().empty();
}

OptionDescription describeOption(const CLI::Option& option) {
  OptionDescription described = {.names = {}, .value = {}, .description = option.get_description()};
  for (const std::string& name : option.get_snames())
    described.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    described.names.push_back("--" + name);
  if (option.get_items_expected_max() > 0) described.value = option.get_type_name();
  return described;
}

std::string describePositional(const CLI::Option& option) {
  std::string text = option.get_name(/*positional=*/true);
  if (option.get_expected_max() > 1) text += "...";
  return option.get_required() ? text : "[" + text + "]";
}

/// The endings that an argument's name lists, like "DOC.docx|DOC.pptx". Workbooks are of three kinds.
std::vector<std::string> endingsIn(const std::string& name) {
  if (name.starts_with("BOOK")) return {"xlsx", "xlsm", "xltx"};
  std::vector<std::string> endings;
  for (std::size_t dot = name.find('.'); dot != std::string::npos; dot = name.find('.', dot + 1))
    endings.push_back(name.substr(dot + 1, name.find('|', dot) - dot - 1));
  return endings;
}

}  // namespace

CommandDescription describeCommand(const CLI::App& command, const Choices& choices,
                                   const std::string& parent) {
  CommandDescription described;
  described.path = (parent.empty() ? "" : parent + " ") + command.get_name();
  described.description = command.get_description();
  for (const CLI::Option* option : command.get_options()) {
    if (isHidden(*option)) continue;
    if (!option->get_positional()) {
      described.options.push_back(describeOption(*option));
      continue;
    }
    described.endings = endingsIn(option->get_name(/*positional=*/true));
    described.positionals += (described.positionals.empty() ? "" : " ") + describePositional(*option);
    if (const auto known = choices.find(option); known != choices.end()) described.choices = known->second;
  }
  for (const CLI::App* subcommand : command.get_subcommands([](const CLI::App*) { return true; }))
    described.subcommands.push_back(describeCommand(*subcommand, choices, described.path));
  return described;
}

std::vector<const CommandDescription*> flattened(const CommandDescription& command) {
  std::vector<const CommandDescription*> all = {&command};
  for (const CommandDescription& subcommand : command.subcommands) {
    const auto below = flattened(subcommand);
    all.insert(all.end(), below.begin(), below.end());
  }
  return all;
}

}  // namespace zelvo
