#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelvo::Cleaning {

/// What a formula needs that a cleaned workbook does not have, or should not be given when it is calculated.
struct FormulaUses {
  bool otherWorkbooks = false;
  bool definedNames = false;
  bool tables = false;
  bool droppedSheets = false;
  bool outside = false;  ///< functions that reach the network, other programs or their code
};

/// Tells what formulas use. Knows the sheets that are kept.
class FormulaUsesReader {
 public:
  explicit FormulaUsesReader(const std::vector<std::string>& keptSheets);

  FormulaUses read(std::string_view formula);

 private:
  void readSheet(std::string_view prefix, FormulaUses& uses);
  bool isKept(std::string_view sheet) const;

  std::vector<std::string> keptSheets_;  ///< in lower case, sorted
  std::string keptPrefix_;               ///< the last that named kept sheets: most formulas repeat it
};

}  // namespace zelvo::Cleaning
