#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr std::string_view transitionalNamespace =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

/// Resolves each target once: any number of sheets may share a relationship with a very long target.
class SheetPaths {
 public:
  const std::string& of(std::string_view target) {
    const auto [path, isNew] = paths_.try_emplace(target.data());
    if (isNew) path->second = OOXML::resolve(target, WorkbookParts::relationships);
    return path->second;
  }

 private:
  std::map<const char*, std::string> paths_;  ///< by the address of the target
};

}  // namespace

WorkbookStructure WorkbookStructure::read(XMLTree& tree) {
  const XMLNode root = tree.root();
  // The Strict dialect has another namespace and other date texts.
  if (root.name() != "workbook" || root.attribute("xmlns") != transitionalNamespace) {
    throw DocumentError::unsupported(RefusalDetail::notTransitional);
  }
  const auto properties = root.child("workbookPr");
  const auto calculation = root.child("calcPr");
  const std::string_view mode =
      calculation ? calculation->attribute("calcMode").value_or("auto") : std::string_view("auto");
  return {.uses1904Dates = properties && xmlFlag(properties->attribute("date1904")),
          .calculationMode = std::string(mode),
          .tree = std::move(tree)};
}

std::vector<Sheet> listSheets(const WorkbookStructure& structure, const RelationshipTargets& targets) {
  std::vector<Sheet> sheets;
  std::size_t count = 0;
  std::set<std::string> namesInUse;
  SheetPaths paths;
  const auto list = structure.tree.root().child("sheets");
  if (!list) throw DocumentError::resourceLimit(RefusalDetail::sheetCount);
  for (const XMLNode sheet : list->all("sheet")) {
    const auto name = sheet.attribute("name");
    const auto identifier = sheet.attribute("r:id");
    const auto target = identifier ? targets.find(*identifier) : std::nullopt;
    if (!name || Unicode::exceeds(*name, maximumSheetNameCharacters) ||
        !namesInUse.insert(Unicode::lowercased(*name)).second || !target) {
      throw DocumentError::invalidArchive("worksheet identity");
    }
    // Sheets above the limit are still checked, because an invalid one has priority over too many.
    if (++count > maximumSheets) continue;
    const bool hidden = sheet.attribute("state").value_or("visible") != "visible";
    sheets.push_back({std::string(*name), hidden, paths.of(*target)});
  }
  if (count == 0 || count > maximumSheets) throw DocumentError::resourceLimit(RefusalDetail::sheetCount);
  return sheets;
}

}  // namespace zelvo
