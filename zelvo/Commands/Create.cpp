#include "zelvo/CreateCommand.hpp"

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "zelvo/ChartColumns.hpp"
#include "zelvo/DocumentOutput.hpp"
#include "zelvo/DocumentText.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Why there is no document, if so.
using Failure = std::optional<Complaint>;

/// Has one document made, step by step; what a step finds stands in fields for the next.
class Creation {
 public:
  Creation(const DocumentWorkerHost& host, const CreateArguments& arguments)
      : host_(host), arguments_(arguments) {}

  Failure run() {
    if (Failure failure = DocumentOutput::check(arguments_.output)) return failure;
    auto request = requestAbout(arguments_.workbook);
    if (auto* complaint = std::get_if<Complaint>(&request)) return *complaint;
    request_ = std::move(*std::get_if<DocumentWorkerRequest>(&request));
    request_.selection = arguments_.selection;
    if (Failure failure = chooseChart()) return failure;
    if (Failure failure = create()) return failure;
    return deliver();
  }

 private:
  /// The columns' titles are the table's.
  Failure chooseChart() {
    if (!arguments_.chart || arguments_.format != DocumentFormat::pptx) return {};
    request_.operation = Operation::extract;
    const auto answer = ask(host_, request_);
    if (const auto* complaint = std::get_if<Complaint>(&answer)) return *complaint;
    auto chart = chosenChart(*arguments_.chart, std::get_if<DocumentWorkerResponse>(&answer)->table->columns);
    if (auto* complaint = std::get_if<Complaint>(&chart)) return *complaint;
    request_.chart = *std::get_if<ChartSelection>(&chart);
    return {};
  }

  Failure create() {
    request_.operation = Operation::create;
    request_.format = arguments_.format;
    request_.title = arguments_.title;
    auto answer = ask(host_, request_);
    if (auto* complaint = std::get_if<Complaint>(&answer)) return *complaint;
    response_ = std::move(*std::get_if<DocumentWorkerResponse>(&answer));
    return {};
  }

  Failure deliver() const {
    const GeneratedDocument& document = *response_.document;
    return DocumentOutput::deliver(arguments_.output, document.data.view(),
                                   describe(document, *response_.table));
  }

  const DocumentWorkerHost& host_;
  const CreateArguments& arguments_;
  DocumentWorkerRequest request_;
  DocumentWorkerResponse response_;
};

}  // namespace

ExitStatus create(const DocumentWorkerHost& host, const CreateArguments& arguments) {
  const Failure failure = Creation(host, arguments).run();
  return failure ? complain(*failure) : ExitStatus::success;
}

}  // namespace zelvo
