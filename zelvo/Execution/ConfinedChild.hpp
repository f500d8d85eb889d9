#pragma once

#include <functional>
#include <string>
#include <variant>

#include "zelvo/Complaint.hpp"

namespace zelvo {

/// Runs `work` in a forked child that has confined itself as a worker does, within a worker's time, and gives
/// the bytes that it returned. This is where untrusted input is parsed that no worker operation takes; the
/// parent only carries bytes. A `DocumentError` or `DecodingError` that comes out of `work` is a refusal. A
/// complaint's status is `refused` or `usage`.
///
/// `work` reads what is in memory already; it can neither open nor start anything.
std::variant<std::string, Complaint> runConfined(
    const std::function<std::variant<std::string, Complaint>()>& work);

}  // namespace zelvo
