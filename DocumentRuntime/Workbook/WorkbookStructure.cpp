#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"

#include <algorithm>
#include <set>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Workbook/WorkbookParts.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr std::string_view transitionalNamespace =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

std::optional<std::string> owned(std::optional<std::string_view> text) {
  if (!text) return std::nullopt;
  return std::string(*text);
}

}  // namespace

WorkbookStructure WorkbookStructure::read(XMLNode root) {
  // The Strict dialect has another namespace and other date texts.
  if (root.name() != "workbook" || root.attribute("xmlns") != transitionalNamespace) {
    throw DocumentError::unsupported("only Transitional XLSX is supported");
  }
  WorkbookStructure structure;
  const auto properties = root.child("workbookPr");
  structure.uses1904Dates = properties && xmlFlag(properties->attribute("date1904"));
  const auto calculation = root.child("calcPr");
  structure.calculationMode =
      calculation ? calculation->attribute("calcMode").value_or("auto") : std::string_view("auto");
  if (const auto sheets = root.child("sheets")) {
    for (const XMLNode sheet : sheets->all("sheet")) {
      structure.sheets.push_back({.name = owned(sheet.attribute("name")),
                                  .relationshipID = owned(sheet.attribute("r:id")),
                                  .hidden = sheet.attribute("state").value_or("visible") != "visible"});
    }
  }
  return structure;
}

RelationshipTargets RelationshipTargets::read(XMLNode root) {
  RelationshipTargets targets;
  for (const XMLNode relationship : root.all("Relationship")) {
    const auto identifier = relationship.attribute("Id");
    const auto target = relationship.attribute("Target");
    if (identifier && target) targets.entries_.push_back({std::string(*identifier), std::string(*target)});
  }
  std::ranges::sort(targets.entries_, {}, &Entry::identifier);
  return targets;
}

std::optional<std::string_view> RelationshipTargets::find(std::string_view identifier) const {
  const auto found = std::ranges::lower_bound(entries_, identifier, {}, &Entry::identifier);
  if (found == entries_.end() || found->identifier != identifier) return std::nullopt;
  return found->target;
}

std::vector<Sheet> listSheets(const WorkbookStructure& structure, const RelationshipTargets& targets) {
  std::vector<Sheet> sheets;
  std::set<std::string> namesInUse;
  for (const auto& entry : structure.sheets) {
    const auto target =
        entry.relationshipID ? targets.find(*entry.relationshipID) : std::optional<std::string_view>();
    if (!entry.name || Unicode::exceeds(*entry.name, maximumSheetNameCharacters) ||
        !namesInUse.insert(Unicode::lowercased(*entry.name)).second || !target) {
      throw DocumentError::invalidArchive("worksheet identity");
    }
    sheets.push_back({*entry.name, entry.hidden, OOXML::resolve(*target, WorkbookParts::relationships)});
  }
  if (sheets.empty() || sheets.size() > maximumSheets) throw DocumentError::resourceLimit("worksheet count");
  return sheets;
}

}  // namespace zelvo
