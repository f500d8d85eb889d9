#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Workbook/WorkbookParts.hpp"

namespace zelvo {
namespace {

std::string_view lastPathComponent(std::string_view path) {
  if (path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);  // npos + 1 is 0: the whole name
}

}  // namespace

/// What the parts said as the gate let them pass, in the order of their names, not of the rules.
struct WorkbookReader::PassedParts {
  std::optional<Deferred<WorkbookStructure>> structure;
  std::optional<Deferred<RelationshipTargets>> relationships;
  std::optional<Deferred<SharedStrings>> sharedStrings;
  std::optional<Deferred<CellStyles>> styles;
  std::vector<WorksheetPart> worksheets;

  void visit(std::string_view name, XMLNode root) {
    if (name == WorkbookParts::workbook) read(structure, root);
    if (name == WorkbookParts::relationships) read(relationships, root);
    if (name == WorkbookParts::sharedStrings) read(sharedStrings, root);
    if (name == WorkbookParts::styles) read(styles, root);
    if (root.name() == "worksheet") {
      worksheets.push_back(
          {std::string(name), Deferred<WorksheetFacts>::of([&] { return WorksheetFacts::read(root); })});
    }
  }

 private:
  template <typename Value>
  static void read(std::optional<Deferred<Value>>& outcome, XMLNode root) {
    outcome = Deferred<Value>::of([&] { return Value::read(root); });
  }
};

WorkbookReader::WorkbookReader(ByteBuffer data, std::string_view sourceName, const std::stop_token& stop) {
  if (sourceName.size() > maximumSourceNameBytes) throw DocumentError::resourceLimit("source name");
  sourceName_ = lastPathComponent(sourceName);
  sourceSHA256_ = OOXML::hash(data.view());

  PassedParts passed = readParts(std::move(data), stop);
  if (!passed.structure || !passed.relationships) throw DocumentError::unsupported("XLSX workbook structure");
  WorkbookStructure structure = passed.structure->take();
  uses1904Dates_ = structure.uses1904Dates;
  calculationMode_ = std::move(structure.calculationMode);
  sheets_ = listSheets(structure, passed.relationships->get());
  if (passed.sharedStrings) sharedStrings_ = passed.sharedStrings->take();
  if (passed.styles) styles_ = passed.styles->take();
  worksheets_ = std::move(passed.worksheets);
}

WorkbookReader::PassedParts WorkbookReader::readParts(ByteBuffer data, const std::stop_token& stop) {
  PartMap parts = BoundedZIP::read(data.view(), stop);
  data = {};
  PassedParts passed;
  parts_ = OOXML::vetted(
      std::move(parts), {}, [&](std::string_view name, XMLTree& tree) { passed.visit(name, tree.root()); },
      stop);
  return passed;
}

WorkbookInspection WorkbookReader::inspection() const {
  WorkbookInspection inspection;
  inspection.sourceName = sourceName_;
  inspection.sourceSHA256 = sourceSHA256_;
  for (const Sheet& sheet : sheets_) {
    const WorksheetFacts& facts = factsOf(sheet);
    inspection.sheets.push_back(
        {.name = sheet.name,
         .hidden = sheet.hidden,
         .populatedRange = facts.populatedRange ? std::optional(facts.populatedRange->name()) : std::nullopt,
         .populatedCellCount = facts.populatedCellCount,
         .formulaCellCount = facts.formulaCellCount,
         .formulasMissingCache = facts.formulasMissingCache,
         .hasHiddenRowsOrColumns = facts.hasHiddenRowsOrColumns,
         .hasAutoFilter = facts.hasAutoFilter});
  }
  inspection.dateSystem = uses1904Dates_ ? "1904" : "1900";
  inspection.calculationMode = calculationMode_;
  inspection.warnings = {"Reads the saved file snapshot. Unsaved Office edits are not included.",
                         "Formula caches are never treated as freshly recalculated values."};
  return inspection;
}

const WorksheetFacts& WorkbookReader::factsOf(const Sheet& sheet) const {
  if (!parts_.contains(sheet.path)) throw DocumentError::invalidArchive("missing worksheet");
  // Parts come by in the order of their names, so that the list is sorted.
  const auto found = std::ranges::lower_bound(worksheets_, sheet.path, {}, &WorksheetPart::name);
  if (found == worksheets_.end() || found->name != sheet.path)
    throw DocumentError::unsupported("worksheet type");
  return found->facts.get();
}

}  // namespace zelvo
