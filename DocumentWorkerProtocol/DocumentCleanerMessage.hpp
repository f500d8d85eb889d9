#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Coding/CleaningCoding.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Records/CleaningReport.hpp"

/// The request and the response of the workbook cleaner, as JSON objects of their fields in the order of
/// declaration: `toJson`, `fromJson`. The limits on messages are the worker's.
namespace zelvo {

namespace DocumentCleanerWire {

/// The version of the messages: a cleaner refuses a request of another version.
inline constexpr std::int64_t version = 1;

}  // namespace DocumentCleanerWire

/// A request to the cleaner. Move-only.
struct DocumentCleanerRequest {
  std::int64_t version = DocumentCleanerWire::version;
  std::string sourceName;
  ByteBuffer data;                                 ///< the workbook
  std::optional<std::vector<std::string>> sheets;  ///< the worksheets to keep; all if absent
  std::optional<bool> unmerge;
  std::optional<bool> plainFormats;

  bool operator==(const DocumentCleanerRequest&) const = default;
};

struct CleanedDocument {
  ByteBuffer data;
  std::string sourceSHA256;  ///< 64 lower-case hexadecimal digits
  std::string outputSHA256;

  bool operator==(const CleanedDocument&) const = default;
};

/// The cleaner's response: version, document and report, or the error alone. Move-only.
struct DocumentCleanerResponse {
  std::optional<std::int64_t> version;
  std::optional<CleanedDocument> document;
  std::optional<CleaningReport> report;
  std::optional<std::string> error;  ///< a sentence for the user

  bool operator==(const DocumentCleanerResponse&) const = default;
};

template <ConstOrNot<DocumentCleanerRequest> Record>
void eachField(Record& request, const auto& field) {
  field("version", request.version);
  field("sourceName", request.sourceName);
  field("data", request.data);
  field("sheets", request.sheets);
  field("unmerge", request.unmerge);
  field("plainFormats", request.plainFormats);
}

template <ConstOrNot<CleanedDocument> Record>
void eachField(Record& document, const auto& field) {
  field("data", document.data);
  field("sourceSHA256", document.sourceSHA256);
  field("outputSHA256", document.outputSHA256);
}

template <ConstOrNot<DocumentCleanerResponse> Record>
void eachField(Record& response, const auto& field) {
  field("version", response.version);
  field("document", response.document);
  field("report", response.report);
  field("error", response.error);
}

}  // namespace zelvo
