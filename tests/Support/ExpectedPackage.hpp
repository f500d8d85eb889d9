#pragma once

#include <filesystem>
#include <string>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::testing {

/// How a package differs from a folder of its parts: the parts that do, as text, or that it is no archive as
/// the tests' own writer makes of the folder: stored, sorted, UTF-8 names, one date. Empty if it does not
/// differ. A folder named like a workbook stands for an archive within.
std::string differences(const ByteBuffer& bytes, const std::filesystem::path& folder);

}  // namespace zelvo::testing
