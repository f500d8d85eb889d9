#pragma once

#include <filesystem>
#include <string>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::testing {

/// How a package differs from a folder of its parts: the first part that does, or that it is no archive as
/// the tests' own writer makes of the folder: stored, sorted, UTF-8 names, one date. Empty if it does not
/// differ. A folder named like a workbook is an archive within.
///
/// With ZELVO_UPDATE_GOLDENS in the environment the folder is written from the package instead.
std::string differences(const ByteBuffer& package, const std::filesystem::path& folder);

}  // namespace zelvo::testing
