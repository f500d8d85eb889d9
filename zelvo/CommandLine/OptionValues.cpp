#include "zelvo/CommandLine/OptionValues.hpp"

#include <algorithm>
#include <charconv>
#include <system_error>

#include <CLI/CLI.hpp>

#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// CLI11 splits a list's value that looks like "[a,b]". A NUL, which no argument can contain, hides the
/// bracket.
constexpr char guard = '\0';

}  // namespace

std::string guarded(std::string_view value) {
  std::string text(value);
  if (text.starts_with('[') && text.ends_with(']')) text += guard;
  return text;
}

std::string withoutGuards(std::string text) {
  std::erase(text, guard);
  return text;
}

std::vector<std::string> values(const CLI::Option& option) {
  std::vector<std::string> list = option.results();
  std::transform(list.begin(), list.end(), list.begin(), withoutGuards);
  return list;
}

std::string value(const CLI::Option& option) {
  return option.empty() ? std::string() : withoutGuards(option.results().back());
}

OutputOptions::OutputOptions(CLI::App& command, const std::string& typeName,
                             const std::function<std::string(const std::string&)>& check)
    : output_(command.add_option("-o,--output", "The output file")->type_name(typeName)->check(check)),
      noClobber_(addNoClobber(command, output_)) {}

OutputOptions OutputOptions::required() {
  output_->required();
  return *this;
}

OutputArguments OutputOptions::arguments() const {
  return {.file = value(*output_), .noClobber = !noClobber_->empty()};
}

CLI::Option* addNoClobber(CLI::App& command, CLI::Option* output) {
  return addFlag(command, "--no-clobber", "Do not write over a file that exists")->needs(output);
}

std::optional<std::int64_t> wholeNumber(std::string_view text, std::int64_t maximum) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || behind != end || number < 1 || number > maximum) return std::nullopt;
  return number;
}

CLI::Option* addList(CLI::App& command, const std::string& name, const std::string& description) {
  constexpr int anyNumber = CLI::detail::expected_max_vector_size;
  return command.add_option(name, description)->expected(1, anyNumber)->allow_extra_args()->type_name("");
}

std::string checkNotEmpty(const std::string& text) {
  return text.empty() ? "The text is empty" : "";
}

CLI::Option* requireText(CLI::Option* option) {
  return option->check([](const std::string& text) {
    return Unicode::isValid(text) ? std::string() : std::string("The text is not UTF-8");
  });
}

CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& description) {
  return requireText(command.add_option(name, description)->type_name("TEXT"));
}

CLI::Option* addFlag(CLI::App& command, const std::string& name, const std::string& description) {
  return command.add_flag(name, description);
}

}  // namespace zelvo
