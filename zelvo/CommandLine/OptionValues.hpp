#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The values of options exactly as they were given, past the conversions of the command line's parser.
namespace zelvo {

/// An argument as the parser must see it to leave it alone.
std::string guarded(std::string_view value);
/// The value again, or a message that quotes it.
std::string withoutGuards(std::string text);

/// A list's values.
std::vector<std::string> values(const CLI::Option& option);
/// Empty for none.
std::string value(const CLI::Option& option);

/// Lets only UTF-8 pass: what goes into records and documents. File names may be any bytes.
CLI::Option* requireText(CLI::Option* option);
CLI::Option* addText(CLI::App& command, const std::string& name, const std::string& description);
CLI::Option* addFlag(CLI::App& command, const std::string& name, const std::string& description);

}  // namespace zelvo
