#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "DocumentRuntime/Cleaning/ResultPackage.hpp"
#include "DocumentRuntime/Cleaning/SourcePackage.hpp"
#include "DocumentRuntime/Cleaning/StringCleaner.hpp"
#include "DocumentRuntime/Cleaning/StyleCleaner.hpp"
#include "DocumentRuntime/Cleaning/WorksheetCleaner.hpp"
#include "DocumentRuntime/CleaningReadBack/CleaningReadBack.hpp"
#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace Cleaning {
namespace {

using Entry = OOXML::ArchiveTrees::Entry;

/// A sheet as listed in the workbook part.
struct SourceSheet {
  std::string name;
  std::string state;
  std::string relationshipID;
};

/// A worksheet of the result.
struct KeptSheet {
  std::string name;
  std::string state;
  const Entry* part;
  std::size_t number = 0;  ///< of the result's part, from 1; sheets may share a part
};

/// Relationship types of sheets that are not worksheets.
constexpr std::pair<std::string_view, CleaningKind> otherSheetTypes[] = {
    {"chartsheet", CleaningKind::chartSheets},
    {"dialogsheet", CleaningKind::dialogSheets},
    {"xlMacrosheet", CleaningKind::macroSheets},
    {"xlIntlMacrosheet", CleaningKind::macroSheets},
};

class Cleaner {
 public:
  Cleaner(OOXML::ArchiveTrees& source, const CleaningOptions& options, const std::stop_token& stop)
      : source_(source), package_(source), options_(options), stop_(stop) {}

  ByteBuffer run();
  CleaningReport report() { return findings_.report(); }

 private:
  void readWorkbook();
  void readSheet(const NamespaceScope& sheet);
  void chooseSheets();
  std::optional<CleaningKind> otherSheetKind(const SourceSheet& sheet) const;
  const Entry& partOf(const SourceSheet& sheet) const;
  void checkNames() const;
  XMLNode read(const Entry& part, std::string_view place);
  void writeSharedParts();
  void writeSheet(KeptSheet& sheet);
  void writeWorkbook();

  OOXML::ArchiveTrees& source_;
  SourcePackage package_;
  const CleaningOptions& options_;
  const std::stop_token& stop_;

  std::optional<std::string> date1904_;
  std::optional<std::string> calculationMode_;
  std::vector<SourceSheet> sourceSheets_;
  std::vector<KeptSheet> sheets_;

  Findings findings_;
  PartWriter writer_;
  ResultPackage result_;
  PlainFormats plainFormats_;
  std::optional<FormulaUsesReader> formulaUses_;
  /// By source part: the number of its part in the result, and the index of the sheet that it was written
  /// for.
  std::map<const Entry*, std::pair<std::size_t, std::size_t>> written_;
};

ByteBuffer Cleaner::run() {
  readWorkbook();
  chooseSheets();
  writeSharedParts();
  for (KeptSheet& sheet : sheets_)
    writeSheet(sheet);
  writeWorkbook();
  plainFormats_.report(findings_);
  package_.reportUnread(findings_);
  return result_.finish(writer_, stop_);
}

void Cleaner::readWorkbook() {
  if (!package_.isPlainWorkbook()) findings_.add(CleaningKind::workbookType);
  const NamespaceScope root(read(package_.workbook(), "the workbook"));
  const OOXML::Namespace main = mainNamespace(root, rule(Tag::workbook).name, "the workbook");
  if (main == OOXML::Namespace::strictMain) findings_.add(CleaningKind::strictConformance);
  const auto place = [] { return "the workbook"; };
  const auto owned = [](std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
  };
  eachChild(root, Tag::workbook, main, findings_, place, [&](const NamespaceScope& child, Tag tag) {
    if (tag == Tag::workbookProperties)
      date1904_ = owned(KeptAttributes(child, tag, findings_)[Attribute::date1904]);
    if (tag == Tag::calculationProperties)
      calculationMode_ = owned(KeptAttributes(child, tag, findings_)[Attribute::calculationMode]);
    if (tag != Tag::sheets) return;
    eachChild(child, tag, main, findings_, place,
              [&](const NamespaceScope& sheet, Tag) { readSheet(sheet); });
  });
}

void Cleaner::readSheet(const NamespaceScope& sheet) {
  const KeptAttributes attributes(sheet, Tag::sheet, findings_);
  const auto name = attributes[Attribute::name];
  const auto relationshipID = attributes[Attribute::relationshipID];
  if (!name || !relationshipID || attributes.refused())
    throw DocumentError::invalidArchive("worksheet identity");
  // Fail-safe: an unknown state may mean hidden.
  std::string_view state = sheet.element().attribute("state").value_or("visible");
  if (!matches(Grammar::sheetState, state)) {
    findings_.add(CleaningKind::sheetStates);
    state = "hidden";
  }
  sourceSheets_.push_back({.name = std::string(*name),
                           .state = std::string(state),
                           .relationshipID = std::string(*relationshipID)});
}

void Cleaner::chooseSheets() {
  std::set<std::string_view> wanted;
  if (options_.sheets) wanted.insert(options_.sheets->begin(), options_.sheets->end());
  std::set<std::string_view> missing = wanted;
  for (const SourceSheet& sheet : sourceSheets_) {
    if (const auto kind = otherSheetKind(sheet)) {
      findings_.addSheet(*kind, sheet.name);
    } else if (options_.sheets && !wanted.contains(sheet.name)) {
      findings_.addSheet(CleaningKind::worksheets, sheet.name);
    } else {
      missing.erase(sheet.name);
      sheets_.push_back({.name = sheet.name, .state = sheet.state, .part = &partOf(sheet)});
    }
  }
  if (!missing.empty())
    throw DocumentError::invalidSelection(RefusalDetail::noSuchWorksheet + std::string(*missing.begin()));
  if (sheets_.empty()) throw DocumentError::unsupported(RefusalDetail::noWorksheet);
  if (sheets_.size() > maximumSheets) throw DocumentError::resourceLimit("more than 64 worksheets");
  checkNames();

  std::vector<std::string> names;
  for (const KeptSheet& sheet : sheets_)
    names.push_back(sheet.name);
  formulaUses_.emplace(names);
}

std::optional<CleaningKind> Cleaner::otherSheetKind(const SourceSheet& sheet) const {
  const auto& relationships = package_.workbookRelationships().byIdentifier();
  const auto relationship = relationships.find(sheet.relationshipID);
  if (relationship == relationships.end()) return std::nullopt;
  for (const auto& [type, kind] : otherSheetTypes) {
    if (relationship->second.type == type) return kind;
  }
  return std::nullopt;
}

const Entry& Cleaner::partOf(const SourceSheet& sheet) const {
  const SourceRelationships& relationships = package_.workbookRelationships();
  const auto relationship = relationships.byIdentifier().find(sheet.relationshipID);
  if (relationship == relationships.byIdentifier().end())
    throw DocumentError::invalidArchive("worksheet identity of sheet " + sheet.name);
  return relationships.target(relationship->second, source_.archive());
}

/// The strict reader's rules on names.
void Cleaner::checkNames() const {
  std::set<std::string> namesInUse;
  for (const KeptSheet& sheet : sheets_) {
    if (Unicode::exceeds(sheet.name, maximumSheetNameCharacters) ||
        !namesInUse.insert(Unicode::lowercased(sheet.name)).second) {
      throw DocumentError::invalidArchive("too long or repeated name of sheet " + sheet.name);
    }
  }
}

/// Reads a part. Errors name it by `place`.
XMLNode Cleaner::read(const Entry& part, std::string_view place) {
  package_.markRead(part);
  try {
    return source_.root(part);
  } catch (const DocumentError& error) {
    const std::string detail = error.detail() + " in " + std::string(place);
    switch (error.errorCase()) {
      case DocumentError::Case::resourceLimit:
        throw DocumentError::resourceLimit(detail);
      case DocumentError::Case::unsupported:
        throw DocumentError::unsupported(detail);
      case DocumentError::Case::unsafeContent:
        throw DocumentError::unsafeContent(detail);
      default:
        throw DocumentError::invalidArchive(detail);
    }
  }
}

void Cleaner::writeSharedParts() {
  if (package_.styles() != nullptr) {
    const XMLNode root = read(*package_.styles(), "the styles");
    writeStyles(root, findings_, writer_, options_.plainFormats, plainFormats_);
    result_.relate("rIdStyles", "styles", "styles.xml");
    result_.add("styles.xml", "styles", writer_.finish(), "the styles");
  }
  throwIfCancelled(stop_);
  if (package_.sharedStrings() != nullptr) {
    const XMLNode root = read(*package_.sharedStrings(), "the shared strings");
    writer_.begin(Tag::strings, "the shared strings");
    writeSharedStrings(root, findings_, writer_);
    result_.relate("rIdStrings", "sharedStrings", "sharedStrings.xml");
    result_.add("sharedStrings.xml", "sharedStrings", writer_.finish(), "the shared strings");
  }
}

void Cleaner::writeSheet(KeptSheet& sheet) {
  throwIfCancelled(stop_);
  const auto index = static_cast<std::size_t>(&sheet - sheets_.data());
  findings_.enterSheet(sheet.name);
  const auto [known, isNew] = written_.try_emplace(sheet.part, written_.size() + 1, index);
  sheet.number = known->second.first;
  if (!isNew) {
    findings_.copyCounts(known->second.second);
    findings_.leaveSheet();
    return;
  }
  plainFormats_.enterSheet(static_cast<std::int64_t>(index));

  const std::string place = RefusalDetail::sheetPlace + sheet.name;
  const XMLNode root = read(*sheet.part, place);
  WorksheetCleaner(sheet.name, {.findings = findings_,
                                .writer = writer_,
                                .formulaUses = *formulaUses_,
                                .plainFormats = plainFormats_,
                                .removesMerges = options_.unmerge,
                                .stop = stop_})
      .write(root);
  result_.add(ResultPackage::worksheetPart(sheet.number), "worksheet", writer_.finish(), place);
  findings_.leaveSheet();
}

void Cleaner::writeWorkbook() {
  writer_.begin(Tag::workbook, "the workbook");
  if (date1904_) {
    writer_.start(Tag::workbookProperties);
    writer_.attribute(Attribute::date1904, *date1904_);
    writer_.end(Tag::workbookProperties);
  }
  const auto firstVisible = std::ranges::find(sheets_, "visible", &KeptSheet::state);
  writer_.start(Tag::bookViews);
  writer_.start(Tag::workbookView);
  writer_.attribute(Attribute::activeTab, firstVisible == sheets_.end() ? 0 : firstVisible - sheets_.begin());
  writer_.end(Tag::workbookView);
  writer_.end(Tag::bookViews);
  writer_.start(Tag::sheets);
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    const KeptSheet& sheet = sheets_[i];
    const std::string identifier = "rId" + std::to_string(i + 1);
    result_.relate(identifier, "worksheet", ResultPackage::worksheetPart(sheet.number));
    writer_.start(Tag::sheet);
    writer_.attribute(Attribute::name, sheet.name);
    writer_.attribute(Attribute::sheetId, i + 1);
    if (sheet.state != "visible") writer_.attribute(Attribute::state, sheet.state);
    writer_.attribute(Attribute::relationshipID, identifier);
    writer_.end(Tag::sheet);
  }
  writer_.end(Tag::sheets);
  if (calculationMode_) {
    writer_.start(Tag::calculationProperties);
    writer_.attribute(Attribute::calculationMode, *calculationMode_);
    writer_.end(Tag::calculationProperties);
  }
  result_.add("workbook.xml", "sheet.main", writer_.finish(), "the workbook");
}

/// Start of a compound file: an encrypted workbook, or one in the older binary format.
constexpr std::string_view compoundFileSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

/// A difference is a defect of the cleaner. So is a result that the strict reader refuses, because the
/// cleaner has checked the reader's rules.
void verify(OOXML::ArchiveTrees& source, ByteView result, const CleaningOptions& options) {
  std::optional<std::string> difference;
  try {
    OOXML::ArchiveTrees resultTrees(result);
    difference = CleaningReadBack::difference(source, resultTrees,
                                              {.sheets = options.sheets ? &*options.sheets : nullptr,
                                               .unmerge = options.unmerge,
                                               .plainFormats = options.plainFormats});
  } catch (const DocumentError& error) {
    difference = error.errorDescription();
  }
  if (difference) throw DocumentError::validationFailed("cleaned workbook: " + *difference);
}

/// Returns the digest of the result.
std::string inspect(ByteView result, std::string_view sourceName, const std::stop_token& stop) {
  try {
    return WorkbookReader(result, sourceName, stop).inspection().sourceSHA256;
  } catch (const DocumentError& error) {
    throw DocumentError::validationFailed("cleaned workbook: " + error.errorDescription());
  }
}

}  // namespace
}  // namespace Cleaning

CleanedWorkbook cleanWorkbook(ByteBuffer source, std::string_view sourceName, const CleaningOptions& options,
                              const std::stop_token& stop) {
  if (sourceName.size() > WorkbookReader::maximumSourceNameBytes)
    throw DocumentError::resourceLimit("source name");
  if (source.text().starts_with(Cleaning::compoundFileSignature))
    throw DocumentError::unsupported(RefusalDetail::compoundFile);

  CleanedWorkbook cleaned;
  cleaned.sourceSHA256 = OOXML::hash(source.view());
  {
    OOXML::ArchiveTrees trees(source.view(), stop);
    {
      Cleaning::Cleaner cleaner(trees, options, stop);
      cleaned.data = cleaner.run();
      cleaned.report = cleaner.report();
    }
    throwIfCancelled(stop);
    Cleaning::verify(trees, cleaned.data.view(), options);
  }
  source = {};
  throwIfCancelled(stop);
  cleaned.outputSHA256 = Cleaning::inspect(cleaned.data.view(), sourceName, stop);
  return cleaned;
}

}  // namespace zelvo
