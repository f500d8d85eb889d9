#include <algorithm>
#include <iterator>
#include <string_view>

#include "zelvo/CommandLine/CommandTree.hpp"

namespace zelvo {
namespace {

using Commands = std::vector<const CommandDescription*>;

/// As one word of each of the shells.
std::string shellQuoted(std::string_view text) {
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') word += "'\\'";
    word += c;
  }
  return word + "'";
}

/// The names of its subcommands, or the values of its argument, each with a description or without.
std::vector<OptionDescription> wordsOf(const CommandDescription& command) {
  std::vector<OptionDescription> words;
  for (const CommandDescription& subcommand : command.subcommands)
    words.push_back({.names = {subcommand.name()}, .value = {}, .description = subcommand.description});
  for (const std::string& choice : command.choices)
    words.push_back({.names = {choice}, .value = {}, .description = {}});
  return words;
}

/// The pattern of a `case` for all commands below the tool.
std::string pathPattern(const Commands& commands, const std::string& separator) {
  std::string pattern;
  for (const CommandDescription* command : commands) {
    if (command != commands.front())
      pattern += (pattern.empty() ? "" : separator) + shellQuoted(command->path);
  }
  return pattern;
}

std::string joined(const std::vector<OptionDescription>& words) {
  std::string text;
  for (const OptionDescription& word : words) {
    for (const std::string& name : word.names)
      text += (text.empty() ? "" : " ") + name;
  }
  return shellQuoted(text);
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : separator) + word;
  return text;
}

/// The names of the options that a value follows: it may be a file of any kind.
std::vector<OptionDescription> valuedOptions(const CommandDescription& command) {
  std::vector<OptionDescription> options;
  std::ranges::copy_if(command.options, std::back_inserter(options),
                       [](const OptionDescription& option) { return !option.value.empty(); });
  return options;
}

std::string bash(const Commands& commands) {
  std::string cases;
  for (const CommandDescription* command : commands)
    cases += "    " + shellQuoted(command->path) + ") words=" + joined(wordsOf(*command)) +
             " options=" + joined(command->options) + " valued=" + joined(valuedOptions(*command)) +
             " endings=" + shellQuoted(joined(command->endings, " ")) + " ;;\n";
  return R"(_zelvo() {
  local command=zelvo words= options= valued= endings= current=${COMP_WORDS[COMP_CWORD]} file i
  for ((i = 1; i < COMP_CWORD; i++)); do
    case "$command ${COMP_WORDS[i]}" in
    )" + pathPattern(commands, " | ") +
         R"() command+=" ${COMP_WORDS[i]}" ;;
    esac
  done
  case $command in
)" + cases +
         R"(  esac
  case $current in -*) words=$options ;; esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
  case " $valued " in *" ${COMP_WORDS[COMP_CWORD - 1]} "*) return ;; esac
  case $endings:$current in :* | *:-*) return ;; esac
  compopt -o filenames 2>/dev/null
  while read -r file; do
    case " $endings " in
      *" ${file##*.} "*) COMPREPLY+=("$file") ;;
      *) [ -d "${file/#\~/$HOME}" ] && COMPREPLY+=("$file") ;;
    esac
  done < <(compgen -f -- "$current")
}
complete -o default -F _zelvo zelvo
)";
}

/// Words for `_describe`: 'name:description'.
std::string zshWords(const std::vector<OptionDescription>& words) {
  std::string text;
  for (const OptionDescription& word : words) {
    for (const std::string& name : word.names)
      text += (text.empty() ? "" : " ") +
              shellQuoted(word.description.empty() ? name : name + ":" + word.description);
  }
  return "(" + text + ")";
}

/// The files with the command's endings, as a glob of zsh; empty for files of any kind.
std::string fileGlob(const CommandDescription& command) {
  return command.endings.empty() ? "" : "*.(" + joined(command.endings, "|") + ")(-.)";
}

std::string zsh(const Commands& commands) {
  std::string cases;
  for (const CommandDescription* command : commands)
    cases += "    (" + shellQuoted(command->path) + ") candidates=" + zshWords(wordsOf(*command)) +
             " options=" + zshWords(command->options) + " valued=" + joined(valuedOptions(*command)) +
             " files=" + shellQuoted(fileGlob(*command)) + " ;;\n";
  return R"(#compdef zelvo
_zelvo() {
  local command=zelvo valued= files= i
  local -a candidates options
  for ((i = 2; i < CURRENT; i++)); do
    case "$command ${words[i]}" in
      ()" +
         pathPattern(commands, " | ") +
         R"() command+=" ${words[i]}" ;;
    esac
  done
  case $command in
)" + cases +
         R"(  esac
  if [[ ${words[CURRENT]} == -* ]]; then
    _describe -o option options
  elif (( $#candidates )); then
    _describe command candidates
  elif [[ -n $files && " $valued " != *" ${words[CURRENT-1]} "* ]]; then
    _files -g "$files"
  else
    _files
  fi
}
if [[ $funcstack[1] == _zelvo ]]; then _zelvo "$@"; else compdef _zelvo zelvo; fi
)";
}

std::string fish(const Commands& commands) {
  std::string text = R"(function __zelvo_command
    set -l command zelvo
    for word in (commandline -opc)[2..-1]
        switch "$command $word"
            case )" + pathPattern(commands, " ") +
                     R"(
                set command "$command $word"
        end
    end
    echo $command
end
)";
  for (const CommandDescription* command : commands) {
    const std::string start =
        "complete -c zelvo -n " + shellQuoted("test (__zelvo_command) = \"" + command->path + "\"");
    for (const OptionDescription& word : wordsOf(*command))
      text +=
          start + " -f -a " + shellQuoted(word.names.front()) + " -d " + shellQuoted(word.description) + "\n";
    if (!command->endings.empty())
      text += start + " -f -a " +
              shellQuoted("(__fish_complete_path (commandline -ct) | string match -er \"(?:/|\\.(?:" +
                          joined(command->endings, "|") + R"_())(?:\t.*)?\$"))_") +
              "\n";
    for (const OptionDescription& option : command->options) {
      text += start;
      for (const std::string& name : option.names)
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      text += (option.value.empty() ? "" : " -r -F") + (" -d " + shellQuoted(option.description)) + "\n";
    }
  }
  return text;
}

}  // namespace

std::string completionScript(const CommandDescription& tool, const std::string& shell) {
  const Commands commands = flattened(tool);
  if (shell == "bash") return bash(commands);
  return shell == "zsh" ? zsh(commands) : fish(commands);
}

}  // namespace zelvo
