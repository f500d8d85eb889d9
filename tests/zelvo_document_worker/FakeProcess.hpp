#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

namespace zelvo::testing {

/// Decodes, and fails at once in the dispatcher, with that answer.
inline const std::string smallRequest = R"({"operation":"extract","data":"","sourceName":"a.xlsx"})";
inline const std::string smallResponse = R"({"error":"The selected table cannot be used: Choose a table."})";

/// A process as the worker sees it. What the worker does to it is written down, one event a call.
class FakeProcess : private EntitlementReader, private Limits, private Input, private Output {
 public:
  std::map<std::string, EntitlementValue, std::less<>> entitlements = {
      {std::string(entitlement::appSandbox), EntitlementValue::granted}};
  std::string input = smallRequest;
  std::size_t bytesPerRead = 65'536;
  std::size_t readsUntilFailure = ~std::size_t{0};
  std::string failingEvent;  ///< the call that fails

  std::vector<std::string> events;
  std::string output;

  int run() { return runWorker(*this, *this, *this, *this, answerDocumentRequest); }

  std::size_t count(std::string_view event) const {
    return static_cast<std::size_t>(std::count(events.begin(), events.end(), event));
  }

 private:
  bool note(std::string event) {
    events.push_back(std::move(event));
    return events.back() != failingEvent;
  }

  EntitlementValue value(std::string_view key) override {
    note("entitlement " + std::string(key));
    const auto found = entitlements.find(key);
    return found == entitlements.end() ? EntitlementValue::absent : found->second;
  }

  bool apply(const ResourceLimit& limit) override {
    static const std::map<Resource, std::string> names = {{Resource::cpuSeconds, "cpu seconds"},
                                                          {Resource::fileBytes, "file bytes"},
                                                          {Resource::processes, "processes"}};
    return note("limit " + names.at(limit.resource) + " " + std::to_string(limit.soft) + "/" +
                std::to_string(limit.hard));
  }

  bool seal() override { return note("seal"); }

  std::optional<std::size_t> read(std::span<char> buffer) override {
    note("read " + std::to_string(buffer.size()));
    if (readsUntilFailure-- == 0) return std::nullopt;
    const std::size_t size = std::min({buffer.size(), bytesPerRead, input.size() - position_});
    std::copy_n(input.begin() + static_cast<std::ptrdiff_t>(position_), size, buffer.begin());
    position_ += size;
    return size;
  }

  bool write(std::string_view bytes) override {
    output += bytes;
    return note("write");
  }

  std::size_t position_ = 0;
};

}  // namespace zelvo::testing
