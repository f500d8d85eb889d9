#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/CommandTree.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"
#include "zelvo/Schemas/Schemas.hpp"

namespace zelvo {
namespace {

const std::vector<std::string> shells = {"bash", "zsh", "fish"};

std::vector<const CLI::App*> subcommandsOf(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<std::string> namesOf(const std::vector<const CLI::App*>& commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const CLI::App* command : commands)
    names.push_back(command->get_name());
  return names;
}

std::vector<std::string> schemaNames() {
  std::vector<std::string> names;
  for (const Schema& schema : schemas())
    names.emplace_back(schema.name);
  return names;
}

void addFooters(CLI::App& command, const std::string& path) {
  command.footer(footer(helpOf(path)));
  for (CLI::App* subcommand : command.get_subcommands([](CLI::App*) { return true; }))
    addFooters(*subcommand, path + " " + subcommand->get_name());
}

}  // namespace

struct InformationParser::Options {
  CLI::App& tool;
  CLI::App* help;
  CLI::Option* manSource;
  CLI::Option* commands;
  CLI::App* schema;
  CLI::Option* schemaName;
  CLI::App* completion;
  CLI::Option* shell;

  explicit Options(CLI::App& app)
      : tool(app),
        help(app.add_subcommand("help", "Describe a command")),
        manSource(addFlag(*help, "--man-source", "Print the source of the man page")->group("")),
        commands(addList(*help, "COMMAND", "Its name; without it, the tool")),
        schema(app.add_subcommand("schema", "Print the JSON Schema of a message or a file")),
        schemaName(schema->add_option("NAME", "Its name; without it, all names")->type_name("")),
        completion(app.add_subcommand("completion", "Print a completion script for a shell")),
        shell(completion->add_option("SHELL", "bash, zsh or fish")->type_name("")->required()) {
    // CLI11 prints an empty line for a hidden option unless it is the first one.
    help->set_help_flag("-h,--help", "Print this help");
    addFooters(app, app.get_name());
  }

  CommandDescription description() const {
    return describeCommand(
        tool, {{commands, namesOf(subcommandsOf(tool))}, {schemaName, schemaNames()}, {shell, shells}});
  }

  Result<Information> helpText() const {
    if (!manSource->empty()) return Information{manPage(description())};
    const CLI::App* command = &tool;
    std::string path;
    for (const std::string& name : values(*commands)) {
      const auto known = subcommandsOf(*command);
      const auto found = std::ranges::find(known, name, [](const CLI::App* app) { return app->get_name(); });
      if (found == known.end()) return unknownName("command", name, namesOf(known));
      path += (path.empty() ? "" : " ") + command->get_name();
      command = *found;
    }
    // The tool's own help would be that of the command that was given.
    return Information{command == &tool
                           ? command->get_formatter()->make_help(command, "zelvo", CLI::AppFormatMode::Normal)
                           : command->help(path)};
  }

  Result<Information> schemaText() const {
    std::string list;
    for (const auto& [name, text] : schemas()) {
      if (name == value(*schemaName)) return Information{std::string(text)};
      list += std::string(name) + "\n";
    }
    if (schemaName->empty()) return Information{list};
    return unknownName("schema", value(*schemaName), schemaNames());
  }

  Result<Information> completionText() const {
    const std::string name = value(*shell);
    if (std::ranges::find(shells, name) == shells.end()) return unknownName("shell", name, shells);
    return Information{completionScript(description(), name)};
  }
};

InformationParser::InformationParser(CLI::App& tool) : options_(std::make_unique<const Options>(tool)) {}

InformationParser::~InformationParser() = default;

std::optional<Result<Information>> InformationParser::information() const {
  if (options_->help->parsed()) return options_->helpText();
  if (options_->schema->parsed()) return options_->schemaText();
  if (options_->completion->parsed()) return options_->completionText();
  return std::nullopt;
}

}  // namespace zelvo
