#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zelvo/CommandLine/Arguments.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The values of options exactly as they were given, without the conversions of CLI11.
namespace zelvo {

/// Marks an argument so that CLI11 does not split it.
std::string guarded(std::string_view value);
/// Removes the marks from a value, or from a message that quotes it.
std::string withoutGuards(std::string text);

/// All values of an option.
std::vector<std::string> values(const CLI::Option& option);
/// The last value of an option; empty if there is none.
std::string value(const CLI::Option& option);

/// The option `-o, --output` and what goes with it.
class OutputOptions {
 public:
  /// `check` returns what is wrong with a file's name, or an empty text.
  OutputOptions(CLI::App& command, const std::string& typeName,
                const std::function<std::string(const std::string&)>& check);

  OutputOptions required();
  /// After parsing.
  OutputArguments arguments() const;

 private:
  CLI::Option* output_;
  CLI::Option* noClobber_;
};

/// Adds `--no-clobber`, which needs `output`.
CLI::Option* addNoClobber(CLI::App& command, CLI::Option* output);

/// A number of decimal digits alone, 1 to `maximum`; nullopt for any other text.
std::optional<std::int64_t> wholeNumber(std::string_view text, std::int64_t maximum);

/// A positional argument of one or more values.
CLI::Option* addList(CLI::App& command, const std::string& name, const std::string& description);

/// What is wrong with a text that must not be empty.
std::string checkNotEmpty(const std::string& text);

/// Makes the option accept only UTF-8, as records and documents need it. File names may be any bytes.
CLI::Option* requireText(CLI::Option* option);
CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& description);
CLI::Option* addFlag(CLI::App& command, const std::string& name, const std::string& description);

}  // namespace zelvo
