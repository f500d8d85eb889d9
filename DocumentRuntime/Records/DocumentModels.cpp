#include "DocumentRuntime/Records/DocumentModels.hpp"

#include <algorithm>

namespace zelvo {

bool SourceTable::usesCachedFormulaValues() const {
  return headerUsesCachedFormulaValues || std::any_of(rows.begin(), rows.end(), [](const auto& row) {
           return std::any_of(row.begin(), row.end(),
                              [](const SourceCell& cell) { return cell.usesCachedFormulaValue; });
         });
}

}  // namespace zelvo
