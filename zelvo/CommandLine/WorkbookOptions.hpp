#pragma once

#include <string>

#include "zelvo/CommandLine/Arguments.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

/// The options that the commands on workbooks share.
namespace zelvo {

/// What is wrong with the name of a workbook that is written; empty if nothing.
std::string checkWorkbookName(const std::string& path);

/// `remark` is the end of the description.
CLI::Option* addUnmerge(CLI::App& command, const std::string& remark = "");
CLI::Option* addPlainFormats(CLI::App& command, const std::string& remark = "");

/// A workbook and a table in it.
class SelectionOptions {
 public:
  explicit SelectionOptions(CLI::App& command);

  // After parsing.
  std::string workbook() const;
  TableSelection selection() const;

 private:
  CLI::Option* workbook_;
  CLI::Option* sheet_;
  CLI::Option* range_;
  CLI::Option* noHeader_;
  CLI::Option* hidden_;
  CLI::Option* cached_;
};

/// How the workbook is cleaned first.
class CleaningOptions {
 public:
  /// A command that writes a document has --no-clobber already.
  explicit CleaningOptions(CLI::App& command, bool writesDocument = false);

  /// After parsing.
  CleaningArguments arguments() const;

 private:
  CLI::Option* clean_;
  CLI::Option* unmerge_;
  CLI::Option* plainFormats_;
  CLI::Option* kept_;
  CLI::Option* noClobber_ = nullptr;
};

}  // namespace zelvo
