#pragma once

#include <exception>
#include <string>

namespace zelvo {

/// The engine's only error type: why a document, a selection or a request was refused (rejected).
///
/// Every case carries one detail: a short phrase that names the rule that failed, or, for
/// `formulaValueUnavailable`, the address of the cell. Two errors are equal when case and detail are.
class DocumentError : public std::exception {
 public:
  enum class Case {
    invalidArchive,
    unsupported,
    resourceLimit,
    unsafeContent,
    invalidSelection,
    formulaValueUnavailable,
    validationFailed,
  };

  static DocumentError invalidArchive(std::string detail);
  static DocumentError unsupported(std::string detail);
  static DocumentError resourceLimit(std::string detail);
  static DocumentError unsafeContent(std::string detail);
  static DocumentError invalidSelection(std::string detail);
  static DocumentError formulaValueUnavailable(std::string address);
  static DocumentError validationFailed(std::string detail);

  Case errorCase() const { return errorCase_; }
  const std::string& detail() const { return detail_; }

  /// The message for the user, UTF-8: the case's fixed text and the detail.
  const std::string& errorDescription() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

  friend bool operator==(const DocumentError& a, const DocumentError& b) {
    return a.errorCase_ == b.errorCase_ && a.detail_ == b.detail_;
  }

 protected:
  DocumentError(Case errorCase, std::string detail);

 private:
  Case errorCase_;
  std::string detail_;
  std::string description_;
};

/// resourceLimit "response size": the result is larger than any response. A separate type, because the worker
/// then ends without a response, as it does if an encoded response is too large.
class ResponseTooLarge final : public DocumentError {
 public:
  ResponseTooLarge();
};

}  // namespace zelvo
