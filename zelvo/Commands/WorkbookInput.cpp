#include "zelvo/Commands/WorkbookInput.hpp"

#include <utility>

#include "DocumentRuntime/Coding/CleaningCoding.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/RefusalHints.hpp"

namespace zelvo {

Failure checkKeptFile(const std::string& workbook, const CleaningArguments& cleaning) {
  if (cleaning.kept.file.empty()) return std::nullopt;
  return DocumentOutput::check(cleaning.kept, {workbook});
}

Result<WorkbookInput> readWorkbook(const Hosts& hosts, const std::string& path,
                                   const CleaningArguments& cleaning) {
  auto request = requestAbout(path);
  if (!request) return request.error();
  if (!cleaning.clean) return WorkbookInput{*std::move(request), std::nullopt};

  const DocumentCleanerRequest dirty = {.sourceName = request->sourceName,
                                        .data = std::move(request->data),
                                        .unmerge = cleaning.unmerge,
                                        .plainFormats = cleaning.plainFormats};
  auto cleaned = ask(hosts.cleaner, dirty);
  if (!cleaned) return withHints(cleaned.error(), Stage::cleaning, dirty.data.view());
  request->data = std::move(cleaned->document->data);
  return WorkbookInput{*std::move(request), cleaningRecord(*std::move(cleaned))};
}

Result<DocumentWorkerResponse> ask(const Hosts& hosts, WorkbookInput& workbook) {
  auto response = ask(hosts.worker, workbook.request);
  if (response) return response;
  const Stage stage = workbook.cleaning ? Stage::readingCleaned : Stage::reading;
  return withHints(response.error(), hosts, std::move(workbook.request), stage);
}

CleaningRecord cleaningRecord(DocumentCleanerResponse response) {
  return {.sourceSHA256 = std::move(response.document->sourceSHA256),
          .outputSHA256 = std::move(response.document->outputSHA256),
          .report = *std::move(response.report)};
}

Failure keepCleaned(const WorkbookInput& workbook, const CleaningArguments& cleaning) {
  if (cleaning.kept.file.empty()) return std::nullopt;
  return DocumentOutput::writeFile(cleaning.kept, workbook.request.data.view());
}

std::string withCleaning(const std::optional<CleaningRecord>& cleaning, std::string record) {
  if (!cleaning) return record;
  return R"({"cleaning":)" + toJson(*cleaning) + R"(,"record":)" + record + "}";
}

std::string toJson(const CleaningRecord& cleaning) {
  JsonWriter writer;
  const FieldEncoder field(writer);
  writer.beginObject();
  field("sourceSHA256", cleaning.sourceSHA256);
  field("outputSHA256", cleaning.outputSHA256);
  // The report's members follow those of the open object.
  return writer.take() + "," + toJson(cleaning.report).substr(1);
}

}  // namespace zelvo
