#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelvo::Cleaning {

/// Features of a formula that a cleaned workbook lacks, or that reach outside it when the formula is
/// calculated.
struct FormulaUses {
  bool otherWorkbooks = false;
  bool definedNames = false;
  bool tables = false;
  bool droppedSheets = false;
  bool outside = false;  ///< functions that reach the network, other programs or their code
};

/// Finds the features that formulas use.
class FormulaUsesReader {
 public:
  explicit FormulaUsesReader(const std::vector<std::string>& keptSheets);

  FormulaUses read(std::string_view formula);

 private:
  void readSheet(std::string_view prefix, FormulaUses& uses);
  bool isKept(std::string_view sheet) const;

  std::vector<std::string> keptSheets_;  ///< in lower case, sorted
  std::string keptPrefix_;               ///< the last prefix of kept sheets: most formulas repeat it
};

}  // namespace zelvo::Cleaning
